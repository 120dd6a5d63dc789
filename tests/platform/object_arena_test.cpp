#include "platform/basics/object_arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include "platform/basics/object_count.h"
#include "platform/host/operand.h"

namespace qx {
namespace {

// Counts its own destruction, so that a test sees every object go.
struct Tracked {
    explicit Tracked(int* gone) : gone(gone) {}
    ~Tracked() { ++*gone; }
    int* gone;
    alignas(32) std::byte payload[40]{};
};

bool isAligned(const void* p, size_t alignment) { return reinterpret_cast<uintptr_t>(p) % alignment == 0; }

TEST(ObjectArena, NoArenaIsOpenOutsideAScope) {
    EXPECT_EQ(ObjectArena::current(), nullptr);
    {
        ScopedObjectArena outer;
        ObjectArena* first = ObjectArena::current();
        ASSERT_NE(first, nullptr);
        {
            ScopedObjectArena inner;
            EXPECT_NE(ObjectArena::current(), first);
        }
        EXPECT_EQ(ObjectArena::current(), first);
    }
    EXPECT_EQ(ObjectArena::current(), nullptr);
}

TEST(ObjectArena, ObjectsOfAScopeLieSideBySideAndAreAligned) {
    int gone = 0;
    std::vector<std::shared_ptr<Tracked>> made;
    {
        ScopedObjectArena scope;
        for (int i = 0; i < 3; ++i) made.push_back(makeShared<Tracked>(&gone));
    }
    for (const auto& object : made) EXPECT_TRUE(isAligned(object.get(), alignof(Tracked)));
    // One after the other in one chunk: no more apart than an object and its control block.
    const auto distance =
        reinterpret_cast<const std::byte*>(made[1].get()) - reinterpret_cast<const std::byte*>(made[0].get());
    EXPECT_GT(distance, 0);
    EXPECT_LT(distance, 256);
    made.clear();
    EXPECT_EQ(gone, 3);
}

TEST(ObjectArena, AnObjectOutsideAScopeIsAnOrdinaryOne) {
    int gone = 0;
    auto object = makeShared<Tracked>(&gone);
    EXPECT_EQ(ObjectArena::current(), nullptr);
    object.reset();
    EXPECT_EQ(gone, 1);
}

TEST(ObjectArena, ObjectsOutliveTheScopeAndManyFillMoreThanOneChunk) {
    int gone = 0;
    std::vector<std::shared_ptr<Tracked>> made;
    {
        ScopedObjectArena scope;
        for (int i = 0; i < 2000; ++i) made.push_back(makeShared<Tracked>(&gone));
        // Some dropped while the load still runs never free the arena under it.
        for (int i = 0; i < 1000; ++i) made[static_cast<size_t>(i)].reset();
        EXPECT_EQ(gone, 1000);
        made.push_back(makeShared<Tracked>(&gone));
    }
    for (const auto& object : made) {
        if (object) {
            EXPECT_TRUE(isAligned(object.get(), alignof(Tracked)));
        }
    }
    made.clear();
    EXPECT_EQ(gone, 2001);
}

TEST(ObjectArena, AScopeWhoseObjectsAreAllGoneFreesItsArenaWhenItCloses) {
    const int64_t before = liveObjectCount();
    int gone = 0;
    {
        ScopedObjectArena scope;
        EXPECT_EQ(liveObjectCount(), before + 1);  // the arena itself
        makeShared<Tracked>(&gone).reset();
    }
    EXPECT_EQ(gone, 1);
    EXPECT_EQ(liveObjectCount(), before);
    { ScopedObjectArena empty; }
    EXPECT_EQ(liveObjectCount(), before);
}

TEST(ObjectArena, TheArenaCountsOnceForAllItsOperandsUntilTheLastIsGone) {
    const int64_t before = liveObjectCount();
    std::vector<OperandPtr> operands;
    {
        ScopedObjectArena scope;
        for (int i = 0; i < 10; ++i) operands.push_back(newOperand());
    }
    EXPECT_EQ(liveObjectCount(), before + 1);
    operands.resize(1);
    EXPECT_EQ(liveObjectCount(), before + 1);
    operands.clear();
    EXPECT_EQ(liveObjectCount(), before);

    // Made outside a scope, an operand counts itself.
    OperandPtr alone = newOperand();
    EXPECT_EQ(liveObjectCount(), before + 1);
    alone.reset();
    EXPECT_EQ(liveObjectCount(), before);
}

TEST(ObjectArena, TheLastObjectMayGoOnAnotherThread) {
    const int64_t before = liveObjectCount();
    int gone = 0;
    std::vector<std::shared_ptr<Tracked>> made;
    {
        ScopedObjectArena scope;
        for (int i = 0; i < 100; ++i) made.push_back(makeShared<Tracked>(&gone));
    }
    std::thread other([moved = std::move(made)]() mutable { moved.clear(); });
    other.join();
    EXPECT_EQ(gone, 100);
    EXPECT_EQ(liveObjectCount(), before);
}

TEST(ObjectArena, ScopesOnTwoThreadsAreApart) {
    ObjectArena* mine = nullptr;
    ObjectArena* theirs = nullptr;
    ScopedObjectArena scope;
    mine = ObjectArena::current();
    std::thread other([&] {
        EXPECT_EQ(ObjectArena::current(), nullptr);
        ScopedObjectArena own;
        theirs = ObjectArena::current();
    });
    other.join();
    EXPECT_NE(theirs, nullptr);
    EXPECT_NE(theirs, mine);
    EXPECT_EQ(ObjectArena::current(), mine);
}

}  // namespace
}  // namespace qx
