// Random valid Send and Scan message sets for property tests, seed corpora
// and the like. Every set the generator makes is one the dialogs could have
// produced and the image can hold: at most 255 messages, 50 fields and 500
// positions a message, runs of fixed text of at most 255 values, no empty
// message before the last one to download, a Scan message length that fits
// its byte with the frame, and an image of at most MaxImageSize bytes.
//
// The set must be created inside the host context it is filled in: the
// generator asks IsExtendedOperandsEnabled which operand types to link, as
// the field constructors do. The same seed gives the same set.
#pragma once
#include <cstddef>
#include <cstdint>
#include <random>

namespace qx {
class clsProtocolSendSrv;
class clsProtocolScanSrv;
}  // namespace qx

namespace qx::test {

struct RandomSetShape {
    // Messages to download, 0 to 255; the set may hold a few empty ones
    // behind them. Fewer than MinMessages only when the image is full.
    int32_t MinMessages = 0;
    int32_t MaxMessages = 10;
    // Fields in one message, 0 to 50.
    int32_t MaxFieldsPerMessage = 10;
    // Longest run of fixed text between two fields, 0 to 255.
    int32_t MaxTextRun = 40;
    // Empty messages appended behind the last one to download; no image holds them.
    int32_t MaxTrailingEmpty = 2;
    // Messages stop being added before the image could pass this size. The
    // offsets of both images are 16-bit, so 65535 is the most there is.
    size_t MaxImageSize = 65535;
};

// Fills a new set (one empty message) with messages, frame, end-of-message
// checksum, copy-after-ETX settings and message-number operand.
void fillRandomSendSet(clsProtocolSendSrv& set, std::mt19937& random, const RandomSetShape& shape = {});

// Fills a new set (one empty message) with messages, frame, terminators and
// end-of-message checksum.
void fillRandomScanSet(clsProtocolScanSrv& set, std::mt19937& random, const RandomSetShape& shape = {});

}  // namespace qx::test
