#include "tests/rig/failing_memory.h"

#include <cstdlib>
#include <new>

namespace tavrik::test {

int allocationsLeft = -1;

}  // namespace tavrik::test

// Away from the tests that allocate: a compiler that sees both sides takes the pair of new and free for a mistake.

void* operator new(std::size_t size) {
    int& left = tavrik::test::allocationsLeft;
    if (left == 0) throw std::bad_alloc();
    if (left > 0) --left;
    if (void* const block = std::malloc(size != 0 ? size : 1)) return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t /*size*/) noexcept { std::free(block); }
