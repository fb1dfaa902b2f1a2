#include "host/side_path.h"

#include <algorithm>
#include <cstdint>
#include <system_error>

namespace tavrik {
namespace {

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// Addresses are written with '/'. A colon begins a scheme or ends a drive letter, a backslash parts folders elsewhere.
bool StaysBelow(std::string_view path) {
    if (path.empty() || path.front() == '/') return false;
    if (std::any_of(path.begin(), path.end(), [](char c) { return c == ':' || c == '\\' || std::uint8_t(c) < 0x20; }))
        return false;
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        if (path.substr(at, end - at) == "..") return false;
        at = end + 1;
    }
    return true;
}

/// Links can lead out of a folder although names don't.
bool LiesIn(const std::filesystem::path& folder, const std::filesystem::path& file) {
    std::error_code error;
    const std::filesystem::path home = std::filesystem::weakly_canonical(folder, error);
    if (error) return false;
    const std::filesystem::path place = std::filesystem::weakly_canonical(file, error);
    if (error) return false;
    return std::mismatch(home.begin(), home.end(), place.begin(), place.end()).first == home.end();
}

}  // namespace

std::string PercentDecoded(std::string_view uri) {
    std::string text;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        const bool encoded = uri[i] == '%' && i + 2 < uri.size() && HexDigit(uri[i + 1]) >= 0 && HexDigit(uri[i + 2]) >= 0;
        text += encoded ? char(HexDigit(uri[i + 1]) * 16 + HexDigit(uri[i + 2])) : uri[i];
        if (encoded) i += 2;
    }
    return text;
}

bool FindSideFile(const std::filesystem::path& home, std::string_view uri, std::filesystem::path& file) {
    const std::string path = PercentDecoded(uri);
    const std::filesystem::path folder = home.has_parent_path() ? home.parent_path() : ".";
    file = folder / path;
    return StaysBelow(path) && LiesIn(folder, file);
}

}  // namespace tavrik
