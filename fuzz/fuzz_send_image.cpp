// Fuzz target of the Send image reader and writer (clsProtocolSendSrv's
// BinaryData). See image_round_trip.h for the input layout and the check.
#include <cstddef>
#include <cstdint>

#include "image_round_trip.h"
#include "sets/send_set.h"

namespace {

// Offsets 6 and 7 of a constant message number hold its place in the host's
// constant table, which every load gives anew; only the value is the image's.
bool isConstantAddress(const qx::Bytes& image, size_t offset) {
    if (offset != 6 && offset != 7) return false;
    switch (image[0]) {
        case 34:
        case 35:
        case 37:
        case 38:
            return true;
        default:
            return false;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    qx::fuzz::roundTrip<qx::clsProtocolSendSrv>(data, size, isConstantAddress);
    return 0;
}
