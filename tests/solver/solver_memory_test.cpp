#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "rig/stock_car.h"
#include "solver/world_step.h"
#include "tests/solver/solver_scene.h"

namespace {

bool counting = false;
int allocations = 0;

void* CountedNew(std::size_t size) {
    if (counting) ++allocations;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}

}  // namespace

// Every allocation of the program comes by here. The aligned forms are left alone: nothing of the solver asks for them.
void* operator new(std::size_t size) { return CountedNew(size); }
void* operator new[](std::size_t size) { return CountedNew(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace tavrik::test {
namespace {

/// Bytes of the world's pages that the machine had to find memory for.
std::size_t ResidentBytes(const CarWorld& world) {
    const std::uintptr_t page = std::uintptr_t(sysconf(_SC_PAGESIZE));
    const std::uintptr_t from = std::uintptr_t(&world) / page * page;
    const std::size_t pages = (std::uintptr_t(&world + 1) - from + page - 1) / page;
    std::vector<unsigned char> state(pages);
    if (mincore(reinterpret_cast<void*>(from), pages * page, state.data()) != 0) return 0;
    std::size_t resident = 0;
    for (const unsigned char flags : state) resident += flags & 1u;
    return resident * page;
}

TEST(SolverMemory, CarsThatAreNotThereCostNone) {
    EXPECT_GT(sizeof(CarWorld), 100u << 20);
    auto rig = std::make_unique<CarRig>();
    MakeStockCar(*rig, FrameAt({0, 0, StockCarStandingHeight()}));
    DriveAlone(*rig, FlatGround(), StockInput(), 0.1);
    const std::size_t resident = ResidentBytes(EmptyWorld());
    EXPECT_GT(resident, 0u);
    // A few pages of the first car's arrays and the counts at the end; room is left for a machine with pages of 2 MB.
    EXPECT_LT(resident, 10u << 20);  // measured 0.1 MB with pages of 4 KB
    RecordProperty("residentBytes", int(resident));
}

TEST(SolverMemory, AStepAllocatesNothing) {
    auto first = std::make_unique<CarRig>(), second = std::make_unique<CarRig>();
    MakeStockCar(*first, FrameAt({0, 0, 52}));
    MakeStockCar(*second, FrameAt({0, -460, 52}));
    TestPush push;
    CarWorld& world = EmptyWorld();
    world.rigs[world.carCount++] = first.get();
    world.rigs[world.carCount++] = second.get();
    world.joints[world.jointCount++] = {&first->chassisBody, &second->chassisBody, {0, -230, 0}, {0, 230, 0}, 5e5, 14142.0};
    world.pushes[world.pushCount++] = {&push, &first->chassisBody};
    DriveInput input = StockInput();
    input.throttle = 4.0f;
    const SurfaceTree& ground = Hills();

    allocations = 0;
    counting = true;
    auto seen = std::make_unique<int>(0);  // the counter works
    const int before = allocations;
    for (int i = 0; i < 100; ++i) WorldStep(world, i * kDt, kDt, ground, kGravity, input);
    counting = false;

    EXPECT_EQ(before, 1);
    EXPECT_EQ(allocations, before);
}

}  // namespace
}  // namespace tavrik::test
