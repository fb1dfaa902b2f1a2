#pragma once
/// Binary glTF 2.0, put together piece by piece. The same pieces in the same order give the same bytes.

#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace tavrik {

class GlbWriter {
 public:
    GlbWriter() = default;
    /// Goes on from pieces that stand already.
    /// @param existing  without "buffers"; its views are in `binary`
    GlbWriter(nlohmann::ordered_json existing, std::string binary);

    /// What an accessor is for: vertices and indices are marked for the graphics card, animation keys aren't.
    enum class Use { Vertices, Keys };

    /// Appends numbers to the binary chunk.
    /// @param components  1 (SCALAR), 2 (VEC2), 3 (VEC3) or 4 (VEC4)
    /// @param bounds      whether `min` and `max` are written, as positions and key times need
    /// @return index of the accessor
    int AddFloats(std::span<const float> values, int components, Use use, bool bounds);
    int AddIndices(std::span<const std::uint32_t> values);
    /// Appends bytes that no accessor reads, at least one. @return index of their buffer view
    int AddBytes(std::string_view bytes);
    /// What a buffer view shows. Gone with the next addition.
    std::string_view ViewBytes(const nlohmann::ordered_json& view) const;

    /// Appends `object` to one of the top lists ("nodes", "meshes", ...). @return its index
    int Add(const char* list, nlohmann::ordered_json object);

    /// Hands over the finished file.
    /// @param problem  on false: a number wasn't finite, or the file would pass the 4 GB that the format can count
    bool Finish(std::string& bytes, std::string& problem);

    /// The binary chunk so far; the writer is done with it.
    std::string TakeBinary() { return std::move(binary_); }

    /// All but "asset", "buffers", "bufferViews" and "accessors" is the caller's.
    nlohmann::ordered_json json = nlohmann::ordered_json::object();

 private:
    int AddView(const void* data, std::size_t size, int target);
    int AddAccessor(const void* data, std::size_t size, int target, nlohmann::ordered_json accessor);

    std::string binary_;
    bool finite_ = true;
};

}  // namespace tavrik
