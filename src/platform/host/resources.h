// The library's own resources (its bitmaps), embedded at build time.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/host/host_context.h"

namespace qx {

// The bytes of the named resource; nullptr and size 0 when there is none.
struct ResourceData {
    const uint8_t* Data = nullptr;
    size_t Size = 0;
};
ResourceData findResource(const std::string& name);

// A 24-bit bitmap resource decoded into a picture; nullptr when the
// resource does not exist or is no such bitmap.
PicturePtr loadBitmapResource(const std::string& name);

}  // namespace qx
