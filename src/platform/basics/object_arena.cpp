#include "platform/basics/object_arena.h"

#include <algorithm>

namespace qx {

namespace {

// A field with its operand takes well under a kilobyte; a chunk holds the
// fields of a few dozen messages and stays below the sizes at which the
// system allocator starts to tidy up on every free.
constexpr size_t ChunkSize = 32 * 1024;

thread_local ObjectArena* openArena = nullptr;

}  // namespace

ObjectArena* ObjectArena::current() { return openArena; }

bool ObjectArena::holdsNewest(const void* object) {
    const ObjectArena* arena = openArena;
    if (arena == nullptr || arena->chunks_.empty()) return false;
    const auto* at = static_cast<const std::byte*>(object);
    return at >= arena->chunks_.back().get() && at < arena->next_;
}

void* ObjectArena::allocate(size_t size, size_t alignment) {
    // Alignments are powers of two.
    const size_t padding = (0 - reinterpret_cast<uintptr_t>(next_)) & (alignment - 1);
    if (next_ == nullptr || padding + size > left_) {
        const size_t chunk = std::max(ChunkSize, size + alignment);
        chunks_.push_back(std::make_unique_for_overwrite<std::byte[]>(chunk));
        next_ = chunks_.back().get();
        left_ = chunk;
        return allocate(size, alignment);
    }
    std::byte* at = next_ + padding;
    next_ = at + size;
    left_ -= padding + size;
    ++made_;
    return at;
}

void ObjectArena::release() {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

ScopedObjectArena::ScopedObjectArena() : arena_(new ObjectArena), previous_(openArena) { openArena = arena_; }

ScopedObjectArena::~ScopedObjectArena() {
    openArena = previous_;
    const int64_t delta = arena_->made_ - ObjectArena::ScopeBias;
    if (arena_->references_.fetch_add(delta, std::memory_order_acq_rel) + delta == 0) delete arena_;
}

}  // namespace qx
