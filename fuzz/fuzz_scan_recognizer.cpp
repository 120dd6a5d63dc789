// Fuzz target of the runtime model's Scan recognition: a Scan image and a
// capture of received bytes. The image must load (a reader refusal with
// RuntimeError ends the run quietly: the image readers have targets of their
// own); the capture is then cut into frames and every frame recognised, and
// all of it must stay inside the capture and give an answer.
//
// Input layout: bytes 0 and 1 the image's length L (little-endian), then L
// bytes of image, then the capture.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

#include "fuzz_finding.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "runtime_model/scan_recognizer.h"
#include "sets/scan_set.h"

using qx::fuzz::finding;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const size_t imageSize = data[0] | (static_cast<size_t>(data[1]) << 8);
    if (size - 2 < imageSize) return 0;
    const qx::Bytes image(data + 2, data + 2 + imageSize);
    const std::span<const uint8_t> capture(data + 2 + imageSize, size - 2 - imageSize);
    qx::ScopedHostContext host;
    qx::clsProtocolScanSrv set;
    try {
        set.BinaryData(image);
    } catch (const qx::RuntimeError&) {
        return 0;
    }
    const qx::model::ChecksumTable table = qx::model::ChecksumTable::Default();
    try {
        const qx::model::ScanMatcher matcher(set, table);
        size_t leftOver = 0, end = 0;
        for (const qx::model::FrameSpan& frame : qx::model::splitFrames(set, capture, &leftOver)) {
            if (frame.Offset < end || frame.Offset + frame.Length > capture.size())
                finding("a frame outside the capture");
            end = frame.Offset + frame.Length;
            const qx::model::Recognition got = matcher.Recognize(capture.subspan(frame.Offset, frame.Length));
            if (got.BytesReceived != frame.Length) finding("the bytes received are not the frame's");
            if (got.MessageNumber == 0 && got.WhyNot.empty()) finding("no match and no reason");
            if (got.MessageNumber > set.NumberOfMessages()) finding("a message number beyond the set");
        }
        if (end + leftOver > capture.size()) finding("more left over than the capture holds");
        // The whole capture as one frame as well, as a silence would give it.
        matcher.Recognize(capture);
    } catch (const qx::RuntimeError&) {
        // A checksum code out of 1 to 10 in a loaded image is refused with
        // error 9; that is an answer too.
    }
    return 0;
}
