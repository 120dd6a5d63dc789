// A listener on a link: the bytes read are cut into frames as they arrive
// and held against the Scan. A stream of 10,000 frames, sent in chunks of
// any size (frames split across reads and glued together), with noise
// between frames, a frame cut by the sender's pause and, over TCP, a peer
// that leaves in the middle of a frame and comes back, gives every frame
// whole with its message and numbers. A flood of 10 MB in bursts loses no
// frame, and what the listener holds stays under a bound.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <random>
#include <thread>

#include "link/link.h"
#include "link/link_fixtures.h"
#include "platform/host/host_context.h"
#include "runtime_model/frame_stream.h"
#include "runtime_model/scan_recognizer.h"

namespace qx {
namespace {

using namespace std::chrono_literals;
using test::TwinFrame;
using test::Wire;

// What the listener made of the line.
struct Heard {
    std::vector<TwinFrame> Frames;
    size_t Unmatched = 0, Cut = 0, Dropped = 0, Closed = 0;
    size_t HighWater = 0;
};

// Reads until `frames` frames were recognised or nothing came for a few
// seconds; a line that closes is flushed and opened again.
Heard listen(link::Link& line, const clsProtocolScanSrv& scan, size_t frames, size_t readSize = 4096) {
    Heard heard;
    const model::ChecksumTable checksums = model::ChecksumTable::Default();
    const model::ScanMatcher matcher(scan, checksums);
    model::FrameStream stream(scan, {.CutAfter = 300ms});
    const model::FrameStream::Sink sink = [&](const model::StreamFrame& frame) {
        if (frame.EndedBy == model::FrameEnd::Timeout) ++heard.Cut;
        if (frame.EndedBy == model::FrameEnd::TooLong) ++heard.Dropped;
        if (frame.EndedBy != model::FrameEnd::Terminator) return;
        const model::Recognition got = matcher.Recognize(frame.Bytes);
        if (got.MessageNumber == 0 || got.Fields.size() != 2) {
            ++heard.Unmatched;
            return;
        }
        heard.Frames.push_back({got.MessageNumber, got.Fields[0].Values.at(0), got.Fields[1].Values.at(0)});
    };
    std::vector<uint8_t> buffer(readSize);
    auto quietSince = std::chrono::steady_clock::now();
    while (heard.Frames.size() < frames && std::chrono::steady_clock::now() - quietSince < 5s) {
        const link::ReadResult got = line.read(buffer, 50ms);
        const auto now = std::chrono::steady_clock::now();
        if (got.Status == link::ReadStatus::Data) {
            quietSince = now;
            stream.Feed(std::span(buffer).subspan(0, got.Count), now, sink);
        } else if (got.Status == link::ReadStatus::Timeout) {
            stream.Idle(now, sink);
        } else {
            ++heard.Closed;
            stream.Flush(sink);
            line.reopen();
        }
    }
    heard.HighWater = stream.HighWater();
    return heard;
}

class ListenerTest : public ::testing::Test {
protected:
    ScopedHostContext host;
    clsProtocolSendSrv send;
    clsProtocolScanSrv scan;
    std::mt19937 random{2026};
    std::vector<TwinFrame> frames;

    ListenerTest() { test::fillTwinSets(send, scan, 20); }

    void makeFrames(size_t count) {
        for (size_t i = 0; i < count; ++i)
            frames.push_back({static_cast<int32_t>(1 + random() % 20), static_cast<int64_t>(random() % 199999) - 99999,
                              static_cast<int64_t>(random() % 199999) - 99999});
    }
    // Noise that holds no end characters: letters, and now and then a start
    // character, which begins a frame that the next start cuts off.
    Wire noise() {
        Wire out(1 + random() % 8, 'n');
        if (random() % 3 == 0) out[random() % out.size()] = 0x02;
        return out;
    }

    // Plays the sender: the frames in chunks of 1 to 3000 bytes with noise
    // before every 7th; at `cutAt` half a frame and a pause longer than the
    // listener waits; at `leaveAt` half a frame and `leave` (the peer goes
    // and comes back). The half frames are not in the frames heard.
    std::vector<TwinFrame> play(const std::function<void(const Wire&)>& write, const std::function<void()>& leave,
                                size_t cutAt, size_t leaveAt) {
        std::vector<TwinFrame> expected;
        Wire pending;
        const auto flush = [&] {
            for (size_t at = 0; at < pending.size();) {
                const size_t n = std::min<size_t>(pending.size() - at, 1 + random() % 3000);
                write(Wire(pending.begin() + static_cast<std::ptrdiff_t>(at),
                           pending.begin() + static_cast<std::ptrdiff_t>(at + n)));
                at += n;
            }
            pending.clear();
        };
        for (size_t i = 0; i < frames.size(); ++i) {
            const Wire frame = test::renderTwin(send, frames[i]);
            if (i % 7 == 0) {
                const Wire junk = noise();
                pending.insert(pending.end(), junk.begin(), junk.end());
            }
            if (i == cutAt || i == leaveAt) {
                pending.insert(pending.end(), frame.begin(), frame.begin() + 6);
                flush();
                if (i == cutAt) std::this_thread::sleep_for(1200ms);
                if (i == leaveAt) leave();
                continue;
            }
            pending.insert(pending.end(), frame.begin(), frame.end());
            expected.push_back(frames[i]);
            if (pending.size() > 20000) flush();
        }
        flush();
        return expected;
    }
};

void expectSame(const std::vector<TwinFrame>& heard, const std::vector<TwinFrame>& expected) {
    ASSERT_EQ(heard.size(), expected.size());
    size_t wrong = 0;
    for (size_t i = 0; i < expected.size(); ++i) {
        if (heard[i].Message == expected[i].Message && heard[i].First == expected[i].First &&
            heard[i].Second == expected[i].Second)
            continue;
        if (++wrong < 5)
            ADD_FAILURE() << "frame " << i << ": message " << heard[i].Message << " (" << heard[i].First << ", "
                          << heard[i].Second << "), expected " << expected[i].Message << " (" << expected[i].First
                          << ", " << expected[i].Second << ")";
    }
    EXPECT_EQ(wrong, 0u);
}

TEST_F(ListenerTest, TenThousandFramesOverTcpWithNoiseACutFrameAndAPeerThatComesBackAreAllDecoded) {
    makeFrames(10000);
    const std::unique_ptr<link::TcpServer> server = link::listenTcp(0);
    const uint16_t port = server->Port();
    std::vector<TwinFrame> expected;
    std::thread sender([&] {
        std::unique_ptr<link::Link> client = link::connectTcp("127.0.0.1", port);
        expected = play([&](const Wire& bytes) { client->write(bytes); },
                        [&] {
                            client->close();
                            client = link::connectTcp("127.0.0.1", port);
                        },
                        3000, 7000);
    });
    const Heard heard = listen(*server, scan, 9998);
    sender.join();
    EXPECT_EQ(heard.Unmatched, 0u);
    EXPECT_EQ(heard.Cut, 2u);  // the pause, and the frame the leaving peer left half
    EXPECT_EQ(heard.Closed, 1u);
    EXPECT_EQ(heard.Dropped, 0u);
    expectSame(heard.Frames, expected);
}

TEST_F(ListenerTest, TenThousandFramesOverAPseudoTerminalWithNoiseAndACutFrameAreAllDecoded) {
    makeFrames(10000);
    test::PtyPair pty;
    ASSERT_TRUE(pty.ok());
    link::SerialSettings settings;
    settings.Device = pty.path();
    settings.Baud = 115200;
    const std::unique_ptr<link::Link> line = link::openSerial(settings);
    std::vector<TwinFrame> expected;
    std::thread sender([&] { expected = play([&](const Wire& bytes) { pty.write(bytes); }, [] {}, 5000, SIZE_MAX); });
    // Small reads: a frame comes in pieces more often than not.
    const Heard heard = listen(*line, scan, 9999, 13);
    sender.join();
    EXPECT_EQ(heard.Unmatched, 0u);
    EXPECT_EQ(heard.Cut, 1u);
    expectSame(heard.Frames, expected);
}

long peakRssKb() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST_F(ListenerTest, TenMegabytesInBurstsLoseNoFrameAndTheListenerHoldsNoMoreThanAFrameAndARead) {
    // About 26 bytes a frame: 400,000 frames, sent as they are rendered.
    constexpr size_t Bytes = 10u << 20;
    constexpr size_t ReadSize = 65536;
    const long rssBefore = peakRssKb();
    const std::unique_ptr<link::TcpServer> server = link::listenTcp(0);
    const uint16_t port = server->Port();
    std::atomic<size_t> sentFrames = 0, sentBytes = 0;
    std::thread sender([&] {
        const std::unique_ptr<link::Link> client = link::connectTcp("127.0.0.1", port);
        std::mt19937 random(11);
        Wire burst;
        size_t frames = 0, bytes = 0;
        while (bytes < Bytes) {
            const TwinFrame frame{static_cast<int32_t>(1 + random() % 20), static_cast<int64_t>(random() % 99999),
                                  -static_cast<int64_t>(random() % 99999)};
            const Wire one = test::renderTwin(send, frame);
            burst.insert(burst.end(), one.begin(), one.end());
            ++frames;
            // Bursts of 64 KB to 1 MB, cut anywhere.
            if (burst.size() >= (64u << 10) + random() % (1u << 20)) {
                client->write(burst);
                bytes += burst.size();
                burst.clear();
            }
        }
        client->write(burst);
        bytes += burst.size();
        sentFrames = frames;
        sentBytes = bytes;
        client->close();
    });
    size_t heardFrames = 0, unmatched = 0, highWater = 0;
    {
        const model::ChecksumTable checksums = model::ChecksumTable::Default();
        const model::ScanMatcher matcher(scan, checksums);
        model::FrameStream stream(scan);
        std::vector<uint8_t> buffer(ReadSize);
        for (;;) {
            const link::ReadResult got = server->read(buffer, 5000ms);
            if (got.Status != link::ReadStatus::Data) break;
            stream.Feed(std::span(buffer).subspan(0, got.Count), std::chrono::steady_clock::now(),
                        [&](const model::StreamFrame& frame) {
                            if (matcher.Recognize(frame.Bytes).MessageNumber == 0) ++unmatched;
                            ++heardFrames;
                        });
        }
        highWater = stream.HighWater();
        EXPECT_LE(stream.MaxFrameBytes(), 2100u);
        // What waits is less than one frame; a read adds at most its buffer.
        EXPECT_LE(highWater, stream.MaxFrameBytes() + ReadSize);
    }
    sender.join();
    EXPECT_GE(sentBytes.load(), Bytes);
    EXPECT_EQ(heardFrames, sentFrames.load());
    EXPECT_EQ(unmatched, 0u);
    RecordProperty("frames", std::to_string(heardFrames));
    RecordProperty("high_water_bytes", std::to_string(highWater));
    RecordProperty("peak_rss_kb_before", std::to_string(rssBefore));
    RecordProperty("peak_rss_kb_after", std::to_string(peakRssKb()));
    std::printf("flood: %zu frames, %zu bytes, listener high water %zu bytes, peak RSS %ld KB (before %ld KB)\n",
                heardFrames, sentBytes.load(), highWater, peakRssKb(), rssBefore);
}

}  // namespace
}  // namespace qx
