// Counts the library's live objects, so that the in-process server can tell
// the host whether it may unload the component.
#pragma once
#include <atomic>
#include <cstdint>

namespace qx {

int64_t liveObjectCount();

// Base of every class the host can hold: counts itself in and out. One
// made in an object arena leaves that to the arena, which counts for all
// of its objects.
class CountedObject {
protected:
    CountedObject();
    CountedObject(const CountedObject&);
    CountedObject& operator=(const CountedObject&) { return *this; }
    ~CountedObject();

private:
    bool counted_;
};

}  // namespace qx
