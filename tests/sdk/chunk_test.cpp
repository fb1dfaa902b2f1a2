#include <gtest/gtest.h>

#include "host/sdk/standin.h"
#include "tests/sdk/test_target.h"

namespace tavrik_host::test {
namespace {

/// Saves what it is given, and loads as it is told.
class Keeper final : public TestTarget {
 public:
    std::function<IOResult(ISave&)> save;
    std::function<IOResult(ILoad&)> load;
    IOResult Save(ISave* isave) override { return save(*isave); }
    IOResult Load(ILoad* iload) override { return load(*iload); }
};

const std::vector<Chunk> kChunks = {{7, "first"}, {9, ""}, {7, "third"}};

TEST(Chunks, AreSavedInTheirOrderWithAllTheirBytes) {
    Keeper keeper;
    keeper.save = [](ISave& save) {
        ULONG written = 0;
        save.BeginChunk(20);
        save.Write("ab", 2, &written);
        EXPECT_EQ(written, 2u);
        save.Write("\0c", 2, nullptr);
        save.EndChunk();
        save.BeginChunk(3);
        save.EndChunk();
        return IO_OK;
    };
    EXPECT_EQ(SaveChunks(keeper), (std::vector<Chunk>{{20, std::string("ab\0c", 4)}, {3, ""}}));
}

TEST(Chunks, ThingThatSavesNothingHasNone) {
    TestTarget target;
    EXPECT_TRUE(SaveChunks(target).empty());
}

TEST(Chunks, AreLoadedInTheirOrderUntilNoneIsLeft) {
    Keeper keeper;
    std::vector<Chunk> seen;
    keeper.load = [&](ILoad& load) {
        IOResult result;
        while ((result = load.OpenChunk()) == IO_OK) {
            char bytes[5] = {};
            ULONG read = 0;
            load.Read(bytes, 5, &read);
            seen.push_back({load.CurChunkID(), std::string(bytes, read)});
            load.CloseChunk();
        }
        EXPECT_EQ(result, IO_END);
        return IO_OK;
    };
    SceneLoad load;
    EXPECT_TRUE(load.LoadChunks(keeper, kChunks));
    EXPECT_EQ(seen, kChunks);
}

TEST(Chunks, ReadBeyondTheEndIsAnErrorAndGivesWhatThereWas) {
    Keeper keeper;
    keeper.load = [](ILoad& load) {
        load.OpenChunk();
        char bytes[8] = "-------";
        ULONG read = 99;
        EXPECT_EQ(load.Read(bytes, 7, &read), IO_ERROR);
        EXPECT_EQ(read, 5u);
        EXPECT_STREQ(bytes, "first--");
        EXPECT_EQ(load.Read(bytes, 1, &read), IO_ERROR);
        EXPECT_EQ(read, 0u);
        EXPECT_EQ(load.Read(bytes, 0, nullptr), IO_OK);
        return load.CloseChunk();
    };
    SceneLoad load;
    EXPECT_TRUE(load.LoadChunks(keeper, kChunks));
}

TEST(Chunks, RestOfAClosedChunkIsSkipped) {
    Keeper keeper;
    keeper.load = [](ILoad& load) {
        char bytes[2];
        load.OpenChunk();
        EXPECT_EQ(load.Read(bytes, 2, nullptr), IO_OK);
        load.CloseChunk();
        EXPECT_EQ(load.OpenChunk(), IO_OK);
        EXPECT_EQ(load.CurChunkID(), 9);
        return load.CloseChunk();
    };
    SceneLoad load;
    EXPECT_TRUE(load.LoadChunks(keeper, kChunks));
}

TEST(Chunks, NothingIsReadOrClosedOutsideOfOne) {
    Keeper keeper;
    keeper.load = [](ILoad& load) {
        char byte = 'x';
        EXPECT_EQ(load.Read(&byte, 1, nullptr), IO_ERROR);
        EXPECT_EQ(load.Read(&byte, 0, nullptr), IO_ERROR);
        EXPECT_EQ(byte, 'x');
        EXPECT_EQ(load.CloseChunk(), IO_ERROR);
        return IO_OK;
    };
    SceneLoad load;
    EXPECT_TRUE(load.LoadChunks(keeper, kChunks));
}

TEST(Chunks, RefusalOfTheThingIsPassedOn) {
    Keeper keeper;
    keeper.load = [](ILoad&) { return IO_ERROR; };
    SceneLoad load;
    EXPECT_FALSE(load.LoadChunks(keeper, kChunks));
}

class Callback final : public PostLoadCallback {
 public:
    static inline int living = 0;
    Callback(int priority, int name, std::vector<int>& order) : priority_(priority), name_(name), order_(order) { ++living; }
    ~Callback() override { --living; }
    void proc(ILoad* load) override {
        order_.push_back(name_);
        if (name_ == 100) load->RegisterPostLoadCallback(new Callback(2, 101, order_));
        delete this;
    }
    int Priority() override { return priority_; }

 private:
    int priority_, name_;
    std::vector<int>& order_;
};

/// The names in the order in which they are called.
std::vector<int> CallOrder(const std::vector<std::pair<int, int>>& prioritiesAndNames, bool run = true) {
    std::vector<int> order;
    Keeper keeper;
    keeper.load = [&](ILoad& load) {
        for (const auto& [priority, name] : prioritiesAndNames) {
            load.RegisterPostLoadCallback(new Callback(priority, name, order));
        }
        return IO_OK;
    };
    SceneLoad load;
    EXPECT_TRUE(load.LoadChunks(keeper, {}));
    EXPECT_TRUE(order.empty());
    if (run) load.RunCallbacks();
    return order;
}

TEST(PostLoadCallbacks, RunByPriorityAndThenInTheOrderOfRegistration) {
    EXPECT_EQ(CallOrder({{5, 1}, {3, 2}, {5, 3}, {0, 4}, {3, 5}}), (std::vector<int>{4, 2, 5, 1, 3}));
    EXPECT_EQ(Callback::living, 0);
}

TEST(PostLoadCallbacks, OneMayRegisterAnotherWhichTakesItsTurn) {
    EXPECT_EQ(CallOrder({{1, 100}, {3, 2}}), (std::vector<int>{100, 101, 2}));
}

TEST(PostLoadCallbacks, AreDroppedWithoutACallWhereNobodyRunsThem) {
    EXPECT_TRUE(CallOrder({{5, 1}, {3, 2}}, false).empty());
    EXPECT_EQ(Callback::living, 0);
}

}  // namespace
}  // namespace tavrik_host::test
