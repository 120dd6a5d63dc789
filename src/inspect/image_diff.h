// The differences of two images of one kind in the words of their dumps:
// which message, which field, which setting ("message 2, field at position
// 5: BeforePoint 4 -> 5"), not which bytes.
#pragma once
#include <string>
#include <vector>

#include "inspect/image_dump.h"

namespace qx {

struct ImageDifference {
    // The names from the top of the tree down to the parent of the range.
    std::vector<std::string> Path;
    std::string Name;
    // Empty on the side where the range does not exist.
    std::string Before;
    std::string After;
    bool OnlyBefore = false;
    bool OnlyAfter = false;
    // A difference of layout only: offsets, padding, bytes never read.
    bool Layout = false;

    // "message 2, field at position 5: BeforePoint 4 -> 5"
    std::string Text() const;
};

// The differences of what the two dumps say. Where settings differ, only
// those are named; where only the layout differs, the layout is. Two equal
// images have none. Dumps of different kinds raise RuntimeError(13).
std::vector<ImageDifference> diffImages(const ImageDump& before, const ImageDump& after);

}  // namespace qx
