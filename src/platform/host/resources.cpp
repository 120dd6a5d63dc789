#include "platform/host/resources.h"

#include <cstring>

#include "platform/basics/bytes.h"
#include "platform/basics/runtime_error.h"

namespace qx {

namespace generated {
struct ResourceEntry {
    const char* name;
    const uint8_t* data;
    size_t size;
};
extern const ResourceEntry resourceTable[];
}  // namespace generated

ResourceData findResource(const std::string& name) {
    for (const auto* entry = generated::resourceTable; entry->name; ++entry)
        if (name == entry->name) return {entry->data, entry->size};
    return {};
}

PicturePtr loadBitmapResource(const std::string& name) {
    ResourceData resource = findResource(name);
    if (!resource.Data) return nullptr;
    try {
        ByteReader in(resource.Data, resource.Size);
        if (in.u8(0) != 'B' || in.u8(1) != 'M' || in.u16(28) != 24) return nullptr;
        uint32_t pixelOffset = in.u32(10);
        int32_t width = in.i32(18);
        int32_t height = in.i32(22);
        if (width <= 0 || width > 256 || height <= 0 || height > 256) return nullptr;
        size_t stride = (static_cast<size_t>(width) * 3 + 3) & ~size_t{3};
        auto picture = std::make_shared<Picture>();
        picture->Width = width;
        picture->Height = height;
        picture->Pixels.resize(static_cast<size_t>(width) * height * 3);
        for (int32_t y = 0; y < height; ++y)  // rows are stored bottom-up
            for (int32_t x = 0; x < width * 3; ++x)
                picture->Pixels[static_cast<size_t>(y) * width * 3 + x] =
                    in.u8(pixelOffset + static_cast<int64_t>((height - 1 - y) * stride) + x);
        return picture;
    } catch (const RuntimeError&) {
        return nullptr;
    }
}

}  // namespace qx
