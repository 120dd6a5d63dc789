// Fuzz target of the Scan image reader and writer (clsProtocolScanSrv's
// BinaryData). See image_round_trip.h for the input layout and the check.
#include <cstddef>
#include <cstdint>

#include "image_round_trip.h"
#include "sets/scan_set.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    qx::fuzz::roundTrip<qx::clsProtocolScanSrv>(data, size);
    return 0;
}
