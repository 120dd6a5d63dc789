#include "platform/basics/object_count.h"

#include "platform/basics/object_arena.h"

namespace qx {

namespace {
std::atomic<int64_t> liveObjects{0};
}

int64_t liveObjectCount() { return liveObjects.load(); }
CountedObject::CountedObject() : counted_(!ObjectArena::holdsNewest(this)) {
    if (counted_) ++liveObjects;
}
CountedObject::CountedObject(const CountedObject&) : CountedObject() {}
CountedObject::~CountedObject() {
    if (counted_) --liveObjects;
}

}  // namespace qx
