#include "platform/basics/object_count.h"

namespace qx {

namespace {
std::atomic<int64_t> liveObjects{0};
}

int64_t liveObjectCount() { return liveObjects.load(); }
CountedObject::CountedObject() { ++liveObjects; }
CountedObject::CountedObject(const CountedObject&) { ++liveObjects; }
CountedObject::~CountedObject() { --liveObjects; }

}  // namespace qx
