#include "host/gltf_side_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <system_error>

#include "host/read_file.h"
#include "host/scene_json.h"

namespace tavrik_host {
namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// Decodes once: what is still encoded after that is part of a name.
std::string PercentDecoded(std::string_view uri) {
    std::string text;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        const bool encoded = uri[i] == '%' && i + 2 < uri.size() && HexDigit(uri[i + 1]) >= 0 && HexDigit(uri[i + 2]) >= 0;
        text += encoded ? char(HexDigit(uri[i + 1]) * 16 + HexDigit(uri[i + 2])) : uri[i];
        if (encoded) i += 2;
    }
    return text;
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

std::string Shortened(std::string_view uri) { return std::string(uri.substr(0, 120)) + (uri.size() > 120 ? "..." : ""); }

}  // namespace

bool IsDataUri(std::string_view uri) { return uri.starts_with("data:"); }

bool FromBase64(std::string_view text, std::string& bytes) {
    while (!text.empty() && text.back() == '=') text.remove_suffix(1);
    if (text.size() % 4 == 1) return false;
    bytes.clear();
    bytes.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t bits = 0;
    int have = 0;
    for (const char c : text) {
        const std::size_t digit = kDigits.find(c);
        if (digit == std::string_view::npos) return false;
        bits = bits << 6 | std::uint32_t(digit);
        have += 6;
        if (have < 8) continue;
        have -= 8;
        bytes += char(bits >> have & 0xff);
    }
    return true;
}

std::string ToBase64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t have = std::min<std::size_t>(bytes.size() - i, 3);
        std::uint32_t bits = 0;
        for (std::size_t k = 0; k < 3; ++k) bits = bits << 8 | (k < have ? std::uint8_t(bytes[i + k]) : 0u);
        for (std::size_t k = 0; k < 4; ++k) text += k <= have ? kDigits[bits >> (18 - 6 * k) & 63] : '=';
    }
    return text;
}

std::string ReadUri(const std::filesystem::path& scene, std::string_view uri, const std::string& what) {
    std::string bytes;
    if (IsDataUri(uri)) {
        const std::size_t comma = uri.find(',');
        if (comma == std::string_view::npos) Refuse(fmt::format("the data of {} has no beginning.", what));
        if (!uri.substr(0, comma).ends_with(";base64")) return PercentDecoded(uri.substr(comma + 1));
        if (!FromBase64(uri.substr(comma + 1), bytes)) Refuse(fmt::format("the data of {} is damaged.", what));
        return bytes;
    }
    const std::string path = PercentDecoded(uri);
    const std::filesystem::path folder = scene.has_parent_path() ? scene.parent_path() : ".";
    if (!StaysBelow(path) || !LiesIn(folder, folder / path)) {
        Refuse(fmt::format("{} is in \"{}\", which is not in the scene's folder; put it there.", what, Shortened(uri)));
    }
    std::string problem;
    if (!tavrik::ReadWholeFile(folder / path, bytes, problem)) {
        // The problem is a sentence of its own, with a full stop.
        while (!problem.empty() && problem.back() == '.') problem.pop_back();
        Refuse(fmt::format("{} can't be read ({}).", what, problem));
    }
    return bytes;
}

}  // namespace tavrik_host
