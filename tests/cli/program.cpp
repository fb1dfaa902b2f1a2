#include "tests/cli/program.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace tavrik::test {
namespace {

std::string ReadAll(int descriptor) {
    std::string bytes;
    char buffer[4096];
    // A terminal whose program has ended gives an error instead of an end.
    for (ssize_t got; (got = ::read(descriptor, buffer, sizeof buffer)) > 0;) bytes.append(buffer, std::size_t(got));
    ::close(descriptor);
    return bytes;
}

ProgramResult Run(const std::string& folder, const std::vector<std::string>& arguments, int errorRead, int errorWrite) {
    int out[2];
    if (::pipe2(out, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    const pid_t child = ::fork();
    if (child == 0) {
        std::vector<char*> words;
        std::string program = TAVRIK_PROGRAM;
        words.push_back(program.data());
        std::vector<std::string> copies = arguments;
        for (std::string& word : copies) words.push_back(word.data());
        words.push_back(nullptr);
        if (::chdir(folder.c_str()) != 0) ::_exit(126);
        ::dup2(out[1], STDOUT_FILENO);
        ::dup2(errorWrite, STDERR_FILENO);
        ::execv(program.c_str(), words.data());
        ::_exit(127);
    }
    ::close(out[1]);
    ::close(errorWrite);
    ProgramResult result;
    std::thread reader([&] { result.error = ReadAll(errorRead); });
    result.out = ReadAll(out[0]);
    reader.join();
    int status = 0;
    ::waitpid(child, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

}  // namespace

ProgramResult RunTavrik(const std::string& folder, const std::vector<std::string>& arguments) {
    int error[2];
    if (::pipe2(error, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    return Run(folder, arguments, error[0], error[1]);
}

ProgramResult RunTavrikOnTerminal(const std::string& folder, const std::vector<std::string>& arguments) {
    int master = -1, slave = -1;
    if (::openpty(&master, &slave, nullptr, nullptr, nullptr) != 0) throw std::runtime_error("no terminal");
    return Run(folder, arguments, master, slave);
}

}  // namespace tavrik::test
