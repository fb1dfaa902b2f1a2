#pragma once
/// Takes the allocator's place in the program it is linked into, so that a test can say when memory runs out.

namespace tavrik::test {

/// Allocations that still succeed, after which each throws std::bad_alloc; below zero, as at the start, all succeed.
extern int allocationsLeft;

}  // namespace tavrik::test
