#include "host/gltf_side_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "host/read_file.h"
#include "host/scene_json.h"
#include "host/side_path.h"

namespace tavrik_host {
namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

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
        if (!uri.substr(0, comma).ends_with(";base64")) return tavrik::PercentDecoded(uri.substr(comma + 1));
        if (!FromBase64(uri.substr(comma + 1), bytes)) Refuse(fmt::format("the data of {} is damaged.", what));
        return bytes;
    }
    std::filesystem::path file;
    if (!tavrik::FindSideFile(scene, uri, file)) {
        Refuse(fmt::format("{} is in \"{}\", which is not in the scene's folder; put it there.", what, Shortened(uri)));
    }
    std::string problem;
    if (!tavrik::ReadWholeFile(file, bytes, problem)) {
        // The problem is a sentence of its own, with a full stop.
        while (!problem.empty() && problem.back() == '.') problem.pop_back();
        Refuse(fmt::format("{} can't be read ({}).", what, problem));
    }
    return bytes;
}

}  // namespace tavrik_host
