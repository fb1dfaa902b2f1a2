#include "host/gltf_container.h"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>

namespace tavrik {
namespace {

constexpr int kDeepestText = 200;

bool TextIsTooDeep(std::string_view text) {
    int depth = 0;
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted && c == '\\') {
            ++i;
        } else if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && (c == '{' || c == '[')) {
            if (++depth > kDeepestText) return true;
        } else if (!quoted && (c == '}' || c == ']')) {
            --depth;
        }
    }
    return false;
}

std::uint32_t LittleEndian32(std::string_view bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i) value |= std::uint32_t(std::uint8_t(bytes[at + i])) << (8 * i);
    return value;
}

bool SplitBinary(std::string_view bytes, GltfContainer& container, std::string& problem) {
    constexpr std::size_t kHead = 20, kChunkHead = 8;
    if (bytes.size() < kHead) {
        problem = "the file ends within its head; copy or export it again.";
        return false;
    }
    if (LittleEndian32(bytes, 4) != 2) {
        problem = fmt::format("it is glTF {}, but only glTF 2 can be read; export it as glTF 2.0.", LittleEndian32(bytes, 4));
        return false;
    }
    if (LittleEndian32(bytes, 8) > bytes.size()) {
        problem =
            fmt::format("the file ends after {} of {} bytes; copy or export it again.", bytes.size(), LittleEndian32(bytes, 8));
        return false;
    }
    const std::size_t length = LittleEndian32(bytes, 12);
    if (length > bytes.size() - kHead) {
        problem = "its text ends past the file; copy or export it again.";
        return false;
    }
    container.text = bytes.substr(kHead, length);
    const std::string_view rest = bytes.substr(kHead + length);
    if (rest.size() < kChunkHead || rest.substr(4, 4) != std::string_view("BIN\0", 4)) return true;
    if (LittleEndian32(rest, 0) > rest.size() - kChunkHead) {
        problem = "its binary data ends past the file; copy or export it again.";
        return false;
    }
    container.binary = rest.substr(kChunkHead, LittleEndian32(rest, 0));
    return true;
}

}  // namespace

bool SplitGltf(std::string_view bytes, GltfContainer& container, std::string& problem) {
    container = {bytes.starts_with("glTF"), bytes, {}};
    if (container.isBinary && !SplitBinary(bytes, container, problem)) return false;
    if (!container.isBinary && container.text.find('{') == std::string_view::npos) {
        problem = "this is not a glTF file.";
        return false;
    }
    if (bytes.size() >= std::size_t(UINT32_MAX)) {
        problem = "it is larger than the 4 GB that a glTF file may have.";
        return false;
    }
    if (TextIsTooDeep(container.text)) {
        problem = "its text is nested too deeply to be a glTF file.";
        return false;
    }
    return true;
}

}  // namespace tavrik
