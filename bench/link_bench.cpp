// Frames from a socket: how many frames a second a listener takes from a
// TCP connection on the loopback, cuts as they arrive and recognises against
// a Scan of 255 messages; and how long it takes from the last byte of a
// frame handed to the socket to the frame's recognition (the goal is under
// 1 ms). Both run on the link library, the frame stream and the matcher, as
// qxfb listen does.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "bench_support.h"
#include "link/link.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "runtime_model/frame_stream.h"
#include "runtime_model/scan_recognizer.h"
#include "support/twin_sets.h"

namespace qx::bench {
namespace {

using namespace std::chrono_literals;
constexpr int32_t Messages = 255;

struct Loopback {
    std::unique_ptr<link::TcpServer> server = link::listenTcp(0);
    std::unique_ptr<link::Link> client = link::connectTcp("127.0.0.1", server->Port());
    Loopback() { server->waitForPeer(5000ms); }
};

void DecodeFramesFromASocket255Messages(benchmark::State& state) {
    ScopedHostContext host;
    clsProtocolSendSrv send;
    clsProtocolScanSrv scan;
    test::fillTwinSets(send, scan, Messages);
    // About 1 MB of frames, every message in turn.
    std::vector<uint8_t> capture;
    size_t framesPerCapture = 0;
    for (int32_t n = 1; capture.size() < (1u << 20); n = n % Messages + 1, ++framesPerCapture) {
        const std::vector<uint8_t> frame = test::renderTwin(send, {n, n * 37 - 4000, 99999 - n});
        capture.insert(capture.end(), frame.begin(), frame.end());
    }
    Loopback line;
    std::atomic<bool> stop = false;
    std::thread writer([&] {
        try {
            while (!stop) line.client->write(capture);
        } catch (const RuntimeError&) {
            // The reader closed the line: the run is over.
        }
    });
    const model::ChecksumTable checksums = model::ChecksumTable::Default();
    const model::ScanMatcher matcher(scan, checksums);
    model::FrameStream stream(scan);
    std::vector<uint8_t> buffer(65536);
    size_t frames = 0, recognised = 0;
    const model::FrameStream::Sink sink = [&](const model::StreamFrame& frame) {
        ++frames;
        if (matcher.Recognize(frame.Bytes).MessageNumber != 0) ++recognised;
    };
    for (auto _ : state) {
        const size_t target = frames + framesPerCapture;
        while (frames < target) {
            const link::ReadResult got = line.server->read(buffer, 5000ms);
            if (got.Status != link::ReadStatus::Data) {
                state.SkipWithError("the socket gave no data");
                break;
            }
            stream.Feed(std::span(buffer).subspan(0, got.Count), std::chrono::steady_clock::now(), sink);
        }
    }
    stop = true;
    line.server->close();
    writer.join();
    if (recognised != frames) state.SkipWithError("a frame was not recognised");
    state.counters["frames_per_s"] = benchmark::Counter(static_cast<double>(frames), benchmark::Counter::kIsRate);
    state.counters["high_water_bytes"] = static_cast<double>(stream.HighWater());
    state.SetBytesProcessed(static_cast<int64_t>(frames / std::max<size_t>(1, framesPerCapture)) *
                            static_cast<int64_t>(capture.size()));
}
QXFB_BENCHMARK(DecodeFramesFromASocket255Messages)->Unit(benchmark::kMillisecond)->UseRealTime();

// One frame at a time: the writer hands it to the socket while the listener
// waits in its read; the time runs from just before the write to the
// frame's recognition, so it holds the write, the wake-up, the read, the cut
// and the match.
void LatencyLastByteToRecognisedFrame(benchmark::State& state) {
    ScopedHostContext host;
    clsProtocolSendSrv send;
    clsProtocolScanSrv scan;
    test::fillTwinSets(send, scan, Messages);
    const std::vector<uint8_t> frame = test::renderTwin(send, {200, -12345, 54321});
    Loopback line;
    std::atomic<int64_t> wanted = 0;
    std::atomic<bool> stop = false;
    std::atomic<std::chrono::steady_clock::rep> sentAt = 0;
    std::thread writer([&] {
        int64_t done = 0;
        while (!stop) {
            if (wanted.load() == done) {
                std::this_thread::yield();
                continue;
            }
            sentAt = std::chrono::steady_clock::now().time_since_epoch().count();
            line.client->write(frame);
            ++done;
        }
    });
    const model::ChecksumTable checksums = model::ChecksumTable::Default();
    const model::ScanMatcher matcher(scan, checksums);
    model::FrameStream stream(scan);
    std::vector<uint8_t> buffer(4096);
    int32_t message = 0;
    bool heard = false;
    const model::FrameStream::Sink sink = [&](const model::StreamFrame& whole) {
        message = matcher.Recognize(whole.Bytes).MessageNumber;
        heard = true;
    };
    double worst = 0;
    for (auto _ : state) {
        heard = false;
        ++wanted;
        while (!heard) {
            const link::ReadResult got = line.server->read(buffer, 5000ms);
            if (got.Status != link::ReadStatus::Data) break;
            stream.Feed(std::span(buffer).subspan(0, got.Count), std::chrono::steady_clock::now(), sink);
        }
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::duration(now - sentAt)).count();
        worst = std::max(worst, seconds);
        state.SetIterationTime(seconds);
        if (!heard || message != 200) {
            state.SkipWithError("the frame was not recognised");
            break;
        }
    }
    stop = true;
    writer.join();
    state.counters["worst_us"] = worst * 1e6;
}
QXFB_BENCHMARK(LatencyLastByteToRecognisedFrame)->Unit(benchmark::kMicrosecond)->UseManualTime();

}  // namespace
}  // namespace qx::bench
