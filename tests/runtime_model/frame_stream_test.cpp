// Frames cut from bytes as they arrive: split across chunks, glued
// together, with noise between them, cut by a timeout, ended by a silence,
// too long for the set; and the same frames as splitFrames finds in the
// whole capture, however the bytes are chunked.
#include "runtime_model/frame_stream.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "message/protocol_cs_var.h"
#include "message/protocol_message.h"
#include "platform/host/host_context.h"
#include "runtime_model/scan_recognizer.h"
#include "sets/scan_set.h"

namespace qx::model {
namespace {

using namespace std::chrono_literals;
using Wire = std::vector<uint8_t>;

Wire ascii(const std::string& text) { return {text.begin(), text.end()}; }
Wire operator+(Wire a, const Wire& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

struct Seen {
    Wire Bytes;
    FrameEnd EndedBy;
    size_t SkippedBefore;
    size_t DroppedBytes;
};

class FrameStreamTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    clsProtocolScanSrv set;
    const FrameStream::TimePoint t0{};
    std::vector<Seen> seen;
    FrameStream::Sink sink = [this](const StreamFrame& frame) {
        seen.push_back(
            {Wire(frame.Bytes.begin(), frame.Bytes.end()), frame.EndedBy, frame.SkippedBefore, frame.DroppedBytes});
    };

    FrameStreamTest() {
        set.MessageLengthValue(0);
        frame({0x02}, {0x0D, 0x0A});
    }
    void frame(const Wire& stx, const Wire& etx, int32_t endType = 1) {
        set.ScanSTXLength(static_cast<int32_t>(stx.size()));
        for (size_t i = 0; i < stx.size(); ++i) set.SetScanSTXValue(static_cast<int32_t>(i), stx[i], false);
        set.ScanETXLength(static_cast<int32_t>(etx.size()));
        for (size_t i = 0; i < etx.size(); ++i) set.SetScanETXValue(static_cast<int32_t>(i), etx[i], false);
        set.EndOfScanMessageType(endType);
    }
    static Wire framed(const std::string& text) { return Wire{0x02} + ascii(text) + Wire{0x0D, 0x0A}; }
};

TEST_F(FrameStreamTest, AFrameSplitAcrossChunksComesOutWhenItsEndArrives) {
    FrameStream stream(set);
    const Wire whole = framed("W+00012");
    stream.Feed(std::span(whole).subspan(0, 3), t0, sink);
    stream.Feed(std::span(whole).subspan(3, 5), t0 + 1ms, sink);
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(stream.Pending(), 8u);
    stream.Feed(std::span(whole).subspan(8), t0 + 2ms, sink);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].Bytes, whole);
    EXPECT_EQ(seen[0].EndedBy, FrameEnd::Terminator);
    EXPECT_EQ(stream.Pending(), 0u);
}

TEST_F(FrameStreamTest, GluedFramesAndNoiseBetweenThemComeOutOneByOneWithTheNoiseCounted) {
    FrameStream stream(set);
    stream.Feed(ascii("xy") + framed("A") + framed("B") + ascii("zzz") + framed("C") + Wire{0x02, 'D'}, t0, sink);
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0].Bytes, framed("A"));
    EXPECT_EQ(seen[0].SkippedBefore, 2u);
    EXPECT_EQ(seen[1].Bytes, framed("B"));
    EXPECT_EQ(seen[1].SkippedBefore, 0u);
    EXPECT_EQ(seen[2].Bytes, framed("C"));
    EXPECT_EQ(seen[2].SkippedBefore, 3u);
    EXPECT_EQ(stream.Pending(), 2u);
    EXPECT_EQ(stream.SkippedBytes(), 5u);
}

TEST_F(FrameStreamTest, AFrameNotFinishedInTimeIsCutAndTheNextOneIsWhole) {
    FrameStream stream(set, {.CutAfter = 100ms});
    stream.Feed(Wire{0x02} + ascii("T-00"), t0, sink);
    ASSERT_TRUE(stream.Deadline());
    EXPECT_EQ(*stream.Deadline(), t0 + 100ms);
    stream.Idle(t0 + 99ms, sink);
    EXPECT_TRUE(seen.empty());
    stream.Idle(t0 + 100ms, sink);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].EndedBy, FrameEnd::Timeout);
    EXPECT_EQ(seen[0].Bytes, Wire{0x02} + ascii("T-00"));
    // The rest arriving late is noise; a cut frame arriving late is cut on arrival of the next.
    stream.Feed(ascii("25") + Wire{0x0D, 0x0A} + Wire{0x02, 'X'}, t0 + 300ms, sink);
    stream.Feed(framed("W"), t0 + 500ms, sink);
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[1].EndedBy, FrameEnd::Timeout);
    EXPECT_EQ(seen[1].Bytes, (Wire{0x02, 'X'}));
    EXPECT_EQ(seen[1].SkippedBefore, 4u);
    EXPECT_EQ(seen[2].Bytes, framed("W"));
    EXPECT_EQ(seen[2].EndedBy, FrameEnd::Terminator);
    EXPECT_EQ(stream.CutFrames(), 2u);
}

TEST_F(FrameStreamTest, AFrameLongerThanTheSetAllowsIsDroppedAndTheStreamGoesOn) {
    FrameStream stream(set, {.MaxFrameBytes = 16});
    stream.Feed(Wire{0x02} + Wire(10, 'a'), t0, sink);
    stream.Feed(Wire(10, 'b'), t0 + 1ms, sink);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].EndedBy, FrameEnd::TooLong);
    EXPECT_TRUE(seen[0].Bytes.empty());
    EXPECT_EQ(seen[0].DroppedBytes, 21u);
    EXPECT_LE(stream.Pending(), 16u);
    stream.Feed(Wire(5, 'c') + Wire{0x0D, 0x0A} + framed("OK"), t0 + 2ms, sink);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[1].Bytes, framed("OK"));
    EXPECT_EQ(stream.DroppedFrames(), 1u);
    EXPECT_LE(stream.HighWater(), 16u + 10u);
}

TEST_F(FrameStreamTest, ASetEndedByASilenceHasItsFramesEndedByTheGaps) {
    frame({}, {});
    set.SilenceTimeValue(5);
    FrameStream stream(set);
    stream.Feed(Wire{1, 3, 0}, t0, sink);
    stream.Feed(Wire{0, 0, 10}, t0 + 2ms, sink);
    EXPECT_TRUE(seen.empty());
    stream.Feed(Wire{1, 6}, t0 + 20ms, sink);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].Bytes, (Wire{1, 3, 0, 0, 0, 10}));
    EXPECT_EQ(seen[0].EndedBy, FrameEnd::Silence);
    stream.Idle(t0 + 24ms, sink);
    EXPECT_EQ(seen.size(), 1u);
    stream.Idle(t0 + 25ms, sink);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[1].Bytes, (Wire{1, 6}));
}

TEST_F(FrameStreamTest, TheMessageLengthAndAChecksumBehindTheEndCharactersEndAFrame) {
    frame({0x02}, {});
    set.MessageLengthValue(2);
    {
        FrameStream stream(set);
        stream.Feed(Wire{0x02, 'A'}, t0, sink);
        stream.Feed(Wire{'B', 0x02, 'C', 'D', 0x02}, t0 + 1ms, sink);
        ASSERT_EQ(seen.size(), 2u);
        EXPECT_EQ(seen[1].Bytes, (Wire{0x02, 'C', 'D'}));
    }
    seen.clear();
    set.MessageLengthValue(0);
    frame({0x02}, {0x03}, 3);
    auto& checksum = dynamic_cast<clsProtocolCSVar&>(*set.ScanChecksum());
    checksum.CalculationType(2);
    checksum.FormatView(2);
    FrameStream stream(set);
    const Wire one{0x02, 'A', 'B', 0x03, 'A' ^ 'B' ^ 0x03};
    stream.Feed(std::span(one).subspan(0, 4), t0, sink);
    EXPECT_TRUE(seen.empty());
    stream.Feed(std::span(one).subspan(4), t0, sink);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].Bytes, one);
}

TEST_F(FrameStreamTest, AnyChunkingGivesTheFramesThatSplitFramesFindsInTheWholeCapture) {
    frame({0x02, 0x02}, {0x0D, 0x0A});
    std::mt19937 random(7);
    Wire capture;
    for (int i = 0; i < 500; ++i) {
        if (random() % 5 == 0) capture.push_back(static_cast<uint8_t>(random() % 4 == 0 ? 0x02 : 'n'));
        capture = capture + Wire{0x02, 0x02} + ascii("M" + std::to_string(random() % 100000)) + Wire{0x0D, 0x0A};
    }
    std::vector<Wire> expected;
    for (const FrameSpan& span : splitFrames(set, capture))
        expected.emplace_back(capture.begin() + static_cast<std::ptrdiff_t>(span.Offset),
                              capture.begin() + static_cast<std::ptrdiff_t>(span.Offset + span.Length));
    ASSERT_GT(expected.size(), 450u);
    for (size_t most : {1u, 2u, 3u, 7u, 64u, 4096u}) {
        seen.clear();
        FrameStream stream(set);
        for (size_t at = 0; at < capture.size();) {
            const size_t n = std::min<size_t>(capture.size() - at, 1 + random() % most);
            stream.Feed(std::span(capture).subspan(at, n), t0, sink);
            at += n;
        }
        ASSERT_EQ(seen.size(), expected.size()) << "chunks of up to " << most;
        for (size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(seen[i].Bytes, expected[i]);
    }
}

}  // namespace
}  // namespace qx::model
