#include "tests/fuzz/read_ground.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const bool isText = size > 0 && data[0] == '{';
    tavrik::test::ReadAnyGround(isText ? "a.gltf" : "a.glb", data, size);
    return 0;
}
