#include "host/glb_writer.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

namespace tavrik {
namespace {

static_assert(std::endian::native == std::endian::little,
              "glTF is little-endian, and numbers are copied as they lie in memory");

constexpr int kFloat = 5126, kUnsignedInt = 5125;
constexpr int kArrayBuffer = 34962, kElementArrayBuffer = 34963, kNoTarget = 0;

void Append32(std::string& bytes, std::size_t value) {
    for (int shift = 0; shift < 32; shift += 8) bytes += char((value >> shift) & 0xff);
}

/// Every part of a glTF file starts at a multiple of four.
void Pad(std::string& bytes, char filler) {
    while (bytes.size() % 4 != 0) bytes += filler;
}

}  // namespace

int GlbWriter::Add(const char* list, nlohmann::ordered_json object) {
    nlohmann::ordered_json& entries = json[list];
    entries.push_back(std::move(object));
    return int(entries.size()) - 1;
}

GlbWriter::GlbWriter(nlohmann::ordered_json existing, std::string binary)
    : json(std::move(existing)), binary_(std::move(binary)) {
    Pad(binary_, '\0');
}

int GlbWriter::AddView(const void* data, std::size_t size, int target) {
    nlohmann::ordered_json view = {{"buffer", 0}, {"byteOffset", binary_.size()}, {"byteLength", size}};
    if (target != kNoTarget) view["target"] = target;
    binary_.append(static_cast<const char*>(data), size);
    Pad(binary_, '\0');
    return Add("bufferViews", std::move(view));
}

int GlbWriter::AddAccessor(const void* data, std::size_t size, int target, nlohmann::ordered_json accessor) {
    accessor["bufferView"] = AddView(data, size, target);
    return Add("accessors", std::move(accessor));
}

int GlbWriter::AddBytes(std::string_view bytes) {
    assert(!bytes.empty());
    return AddView(bytes.data(), bytes.size(), kNoTarget);
}

std::string_view GlbWriter::ViewBytes(const nlohmann::ordered_json& view) const {
    return std::string_view(binary_).substr(view.value("byteOffset", std::size_t{0}), view["byteLength"].get<std::size_t>());
}

int GlbWriter::AddFloats(std::span<const float> values, int components, Use use, bool bounds) {
    const std::size_t width = std::size_t(components);
    assert(!values.empty() && values.size() % width == 0);
    finite_ = finite_ && std::all_of(values.begin(), values.end(), [](float v) { return std::isfinite(v); });
    nlohmann::ordered_json accessor = {{"componentType", kFloat},
                                       {"count", values.size() / width},
                                       {"type", components == 1   ? "SCALAR"
                                                : components == 2 ? "VEC2"
                                                : components == 3 ? "VEC3"
                                                                  : "VEC4"}};
    if (bounds) {
        std::vector<double> low(width, std::numeric_limits<double>::infinity());
        std::vector<double> high(width, -std::numeric_limits<double>::infinity());
        for (std::size_t i = 0; i < values.size(); ++i) {
            low[i % width] = std::min(low[i % width], double(values[i]));
            high[i % width] = std::max(high[i % width], double(values[i]));
        }
        accessor["min"] = low;
        accessor["max"] = high;
    }
    return AddAccessor(values.data(), values.size_bytes(), use == Use::Vertices ? kArrayBuffer : kNoTarget,
                       std::move(accessor));
}

int GlbWriter::AddIndices(std::span<const std::uint32_t> values) {
    return AddAccessor(values.data(), values.size_bytes(), kElementArrayBuffer,
                       {{"componentType", kUnsignedInt}, {"count", values.size()}, {"type", "SCALAR"}});
}

bool GlbWriter::Finish(std::string& bytes, std::string& problem) {
    if (!finite_) {
        problem = "a number to be written is not finite.";
        return false;
    }
    nlohmann::ordered_json whole = {{"asset", {{"version", "2.0"}, {"generator", "Tavrik"}}}};
    whole.update(json);
    if (!binary_.empty()) whole["buffers"] = nlohmann::ordered_json::array({{{"byteLength", binary_.size()}}});
    std::string text = whole.dump();
    Pad(text, ' ');
    constexpr std::size_t kHead = 12, kChunkHead = 8;
    const std::size_t size = kHead + kChunkHead + text.size() + (binary_.empty() ? 0 : kChunkHead + binary_.size());
    if (size > std::numeric_limits<std::uint32_t>::max()) {
        problem = "the scene is larger than the 4 GB that a glTF file may have; drive a shorter time, or on less ground.";
        return false;
    }
    bytes.clear();
    bytes.reserve(size);
    bytes += "glTF";
    Append32(bytes, 2);
    Append32(bytes, size);
    Append32(bytes, text.size());
    bytes += "JSON";
    bytes += text;
    if (!binary_.empty()) {
        Append32(bytes, binary_.size());
        bytes += "BIN";
        bytes += '\0';
        bytes += binary_;
    }
    return true;
}

}  // namespace tavrik
