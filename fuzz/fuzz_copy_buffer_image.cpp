// Fuzz target of the two-byte Copy buffer image (clsProtocolCopyToBufferSrv's
// BinaryData). See image_round_trip.h for the input layout and the check.
// Beyond the round trip: the reader takes byte 0 alone, whatever the length,
// so whatever loads is written as exactly that format and a 0.
#include <cstddef>
#include <cstdint>

#include "image_round_trip.h"
#include "serial/protocol_copy_to_buffer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::optional<qx::Bytes> written = qx::fuzz::roundTrip<qx::clsProtocolCopyToBufferSrv>(data, size);
    if (!written) {
        // Only an empty image may be refused.
        if (size > 1)
            qx::fuzz::finding("a Copy buffer image with a format byte was refused", qx::Bytes(data + 1, data + size));
        return 0;
    }
    if (*written != qx::Bytes{data[1], 0})
        qx::fuzz::finding("Copy buffer image not written as its format and 0", *written);
    return 0;
}
