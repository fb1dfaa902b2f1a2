#include "tests/host/temp_folder.h"

#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>

namespace tavrik::test {

TempFolder::TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "tavrik-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for temporary files");
    path_ = name;
}

TempFolder::~TempFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
}

std::filesystem::path TempFolder::Write(std::string_view name, std::string_view bytes) const {
    const std::filesystem::path file = path_ / name;
    std::ofstream(file, std::ios::binary) << bytes;
    return file;
}

std::string TempFolder::List() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) names.insert(entry.path().filename().string());
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "" : " ") + name;
    return list;
}

std::string FileBytes(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace tavrik::test
