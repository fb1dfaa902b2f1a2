#include "tests/fuzz/read_ground.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavrik::test::ReadAnyGround("a.obj", data, size);
    return 0;
}
