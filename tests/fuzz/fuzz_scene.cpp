#include <iterator>

#include "tests/fuzz/read_ground.h"

// The first byte chooses the format, the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr const char* kNames[] = {"a.ply", "a.stl", "a.dae", "a.3ds", "a.fbx"};
    if (size == 0) return 0;
    tavrik::test::ReadAnyGround(kNames[data[0] % std::size(kNames)], data + 1, size - 1);
    return 0;
}
