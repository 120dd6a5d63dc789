// Memory for the many small shared objects one image load makes (its fields
// and their operands). While a ScopedObjectArena is open on a thread,
// makeShared takes memory from large chunks by moving a pointer, instead of
// an allocation each; the chunks are given back together when the last
// object made from them is gone, on whichever thread that is. The price: an
// object dropped early keeps its place until its whole load is gone.
#pragma once
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "platform/basics/object_count.h"

namespace qx {

// The arena counts as one live object of the library for as long as any
// object made from it lives, so that those objects need not count
// themselves one by one.
class ObjectArena : protected CountedObject {
public:
    friend class ScopedObjectArena;

    void* allocate(size_t size, size_t alignment);
    // One object of this arena is gone; the last frees the arena.
    void release();

    // The arena open on this thread, or nullptr.
    static ObjectArena* current();
    // Whether the object lies in memory the open arena has given out from
    // its newest chunk: an object constructed there is one of the arena's.
    static bool holdsNewest(const void* object);

private:
    ObjectArena() = default;
    ~ObjectArena() = default;
    // The scope holds this many references while it is open, so that
    // objects dropped during the load never free the arena under it; it
    // trades them for the count of objects made when it closes.
    static constexpr int64_t ScopeBias = int64_t{1} << 62;

    std::vector<std::unique_ptr<std::byte[]>> chunks_;
    std::byte* next_ = nullptr;
    size_t left_ = 0;
    int64_t made_ = 0;  // touched by the loading thread only
    std::atomic<int64_t> references_{ScopeBias};
};

// Opens an arena on this thread for its lifetime; objects that makeShared
// makes meanwhile come from it.
class ScopedObjectArena {
public:
    ScopedObjectArena();
    ~ScopedObjectArena();
    ScopedObjectArena(const ScopedObjectArena&) = delete;
    ScopedObjectArena& operator=(const ScopedObjectArena&) = delete;

private:
    ObjectArena* arena_;
    ObjectArena* previous_;
};

template <class T>
struct ArenaAllocator {
    using value_type = T;
    explicit ArenaAllocator(ObjectArena* arena) : arena(arena) {}
    template <class U>
    ArenaAllocator(const ArenaAllocator<U>& other) : arena(other.arena) {}
    T* allocate(size_t n) { return static_cast<T*>(arena->allocate(n * sizeof(T), alignof(T))); }
    void deallocate(T*, size_t) { arena->release(); }
    template <class U>
    bool operator==(const ArenaAllocator<U>& other) const {
        return arena == other.arena;
    }
    ObjectArena* arena;
};

// make_shared, from the arena open on this thread when there is one.
template <class T, class... Args>
std::shared_ptr<T> makeShared(Args&&... args) {
    if (ObjectArena* arena = ObjectArena::current())
        return std::allocate_shared<T>(ArenaAllocator<T>(arena), std::forward<Args>(args)...);
    return std::make_shared<T>(std::forward<Args>(args)...);
}

}  // namespace qx
