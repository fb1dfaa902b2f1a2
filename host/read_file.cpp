#include "host/read_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <new>
#include <stdexcept>
#include <system_error>

namespace tavrik {
namespace {

std::string ErrorText(int error) { return std::generic_category().message(error); }

bool ReadTo(std::FILE* stream, std::uintmax_t size, std::string& bytes) {
    // The size is a hint only: the file may grow or shrink while it is read.
    bytes.resize(std::size_t(size) + 1);
    std::size_t length = 0;
    while (true) {
        const std::size_t got = std::fread(bytes.data() + length, 1, bytes.size() - length, stream);
        length += got;
        if (got == 0) break;
        if (length == bytes.size()) bytes.resize(bytes.size() * 2);
    }
    bytes.resize(length);
    return std::ferror(stream) == 0;
}

}  // namespace

bool ReadWholeFile(const std::filesystem::path& file, std::string& bytes, std::string& problem) {
    const std::string name = file.string();
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::not_found) {
        problem = fmt::format("{}: there is no such file.", name);
        return false;
    }
    if (error) {
        problem = fmt::format("{}: can't be read ({}).", name, error.message());
        return false;
    }
    if (std::filesystem::is_directory(status)) {
        problem = fmt::format("{}: this is a folder, not a file.", name);
        return false;
    }
    if (!std::filesystem::is_regular_file(status)) {
        problem = fmt::format("{}: this is a device or a pipe, not a file on disk.", name);
        return false;
    }
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(name.c_str(), "rb"), &std::fclose);
    if (error || stream == nullptr) {
        problem = fmt::format("{}: can't be opened ({}).", name, error ? error.message() : ErrorText(errno));
        return false;
    }
    try {
        if (ReadTo(stream.get(), size, bytes)) return true;
        problem = fmt::format("{}: can't be read to its end ({}).", name, ErrorText(errno));
    } catch (const std::bad_alloc&) {
        problem = fmt::format("{}: is too large for this machine's memory.", name);
    } catch (const std::length_error&) {
        problem = fmt::format("{}: is too large for this machine's memory.", name);
    }
    return false;
}

}  // namespace tavrik
