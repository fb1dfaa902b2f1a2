/// A file of bindings is read whatever its bytes are, and one of the full length comes back byte for byte.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "drive/controls_config.h"

namespace {

struct Params : tavrik::ParamBlock {
    std::array<std::int32_t, 64> values{};  // more than the master object has
    float GetFloat(std::int32_t) const override { return 0.0f; }
    std::int32_t GetInt(std::int32_t id) const override { return values.at(std::size_t(id)); }
    void SetFloat(std::int32_t, float) override {}
    void SetInt(std::int32_t id, std::int32_t value) override { values.at(std::size_t(id)) = value; }
};

/// A file with these bytes, which takes whatever is written.
struct File : tavrik::FileStore {
    std::vector<std::byte> bytes;
    tavrik::FileState Read(std::size_t limit, std::vector<std::byte>& out) override {
        out.assign(bytes.begin(), bytes.begin() + std::ptrdiff_t(std::min(limit, bytes.size())));
        return tavrik::FileState::Read;
    }
    bool Write(std::span<const std::byte> image) override {
        bytes.assign(image.begin(), image.end());
        return true;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto image = std::as_bytes(std::span(data, size));
    File file;
    file.bytes.assign(image.begin(), image.end());
    Params params;
    if (LoadControls(file, params) != tavrik::FileState::Read) std::abort();
    if (!SaveControls(params, file) || file.bytes.size() != tavrik::kControlsImageSize) std::abort();

    // The whole integers of the input come back in their places; after them their last one is repeated.
    const std::size_t whole = std::min(size, tavrik::kControlsImageSize) / 4 * 4;
    if (!std::equal(file.bytes.begin(), file.bytes.begin() + std::ptrdiff_t(whole), image.begin())) std::abort();
    for (std::size_t i = whole; i < tavrik::kControlsImageSize; ++i) {
        if (file.bytes[i] != (whole == 0 ? std::byte(0) : image[whole - 4 + i % 4])) std::abort();
    }
    return 0;
}
