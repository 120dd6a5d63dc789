// Counts the library's live objects, so that the in-process server can tell
// the host whether it may unload the component.
#pragma once
#include <atomic>
#include <cstdint>

namespace qx {

int64_t liveObjectCount();

// Base of every class the host can hold: counts itself in and out.
class CountedObject {
protected:
    CountedObject();
    CountedObject(const CountedObject&);
    CountedObject& operator=(const CountedObject&) = default;
    ~CountedObject();
};

}  // namespace qx
