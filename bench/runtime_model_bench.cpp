// The runtime model against a line: decoding a 10 MB capture against a
// Scan set of 255 messages (cutting it into frames, finding each frame's
// message, reading its fields), against a memcpy of the capture; and
// rendering one Send message. The goal for decoding is above 100 MB/s, far
// above any serial line or a 100 Mbit socket.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "bench_support.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/host/host_context.h"
#include "runtime_model/scan_recognizer.h"
#include "runtime_model/send_renderer.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/twin_sets.h"

namespace qx::bench {
namespace {

constexpr int32_t Messages = 255;
constexpr size_t CaptureBytes = 10u << 20;

// Message n: "Rnnn," a signed number of five digits into MI 100 + n, ",",
// a second into MI 400 + n, framed by STX and CR LF. The Send twin renders
// the same frames.
void fill(clsProtocolScanSrv& scan, clsProtocolSendSrv& send) { test::fillTwinSets(send, scan, Messages); }

void DecodeCaptureOf255Messages(benchmark::State& state) {
    ScopedHostContext host;
    clsProtocolScanSrv scan;
    clsProtocolSendSrv send;
    fill(scan, send);
    const model::ChecksumTable table = model::ChecksumTable::Default();
    model::OperandValues values;
    std::vector<uint8_t> capture;
    for (int32_t n = 1; capture.size() < CaptureBytes; n = n % Messages + 1) {
        values.Set(3, 100 + n, n * 37 - 4000);
        const model::RenderedMessage frame = model::renderSendMessage(send, n, values, model::ModelClock{}, table);
        capture.insert(capture.end(), frame.Bytes.begin(), frame.Bytes.end());
    }
    const model::ScanMatcher matcher(scan, table);
    CopyRatio ratio(state, capture.size());
    size_t matched = 0, frames = 0;
    ratio.start();
    for (auto _ : state) {
        matched = 0;
        const std::vector<model::FrameSpan> spans = model::splitFrames(scan, capture);
        frames = spans.size();
        for (const model::FrameSpan& span : spans)
            if (matcher.Recognize(std::span(capture).subspan(span.Offset, span.Length)).MessageNumber != 0) ++matched;
        benchmark::DoNotOptimize(matched);
    }
    ratio.finish();
    if (matched != frames) state.SkipWithError("a frame of the capture was not recognised");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(capture.size()));
    state.counters["frames"] = static_cast<double>(frames);
}
QXFB_BENCHMARK(DecodeCaptureOf255Messages)->Unit(benchmark::kMillisecond);

void RenderOneSendMessage(benchmark::State& state) {
    ScopedHostContext host;
    clsProtocolScanSrv scan;
    clsProtocolSendSrv send;
    fill(scan, send);
    const model::ChecksumTable table = model::ChecksumTable::Default();
    model::OperandValues values;
    values.Set(3, 228, -1234);
    const size_t size = model::renderSendMessage(send, 128, values, model::ModelClock{}, table).Bytes.size();
    CopyRatio ratio(state, size);
    ratio.start();
    for (auto _ : state) {
        model::RenderedMessage frame = model::renderSendMessage(send, 128, values, model::ModelClock{}, table);
        benchmark::DoNotOptimize(frame.Bytes.data());
    }
    ratio.finish();
}
QXFB_BENCHMARK(RenderOneSendMessage);

}  // namespace
}  // namespace qx::bench
