// The difference of two images in the words of their dumps: which message,
// which field, which setting; the layout only when nothing else differs.
#include "inspect/image_diff.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "sets/send_set.h"

namespace qx {
namespace {

// The image of the listing test: "AB", CR, and a numeric field of 4 digits
// with a sign, BeforePoint at offset 86; the spare byte at 107.
Bytes sendImage() {
    Bytes image(108, 0);
    auto put = [&](size_t offset, std::initializer_list<uint8_t> bytes) {
        for (uint8_t b : bytes) image.at(offset++) = b;
    };
    put(0, {37});
    put(38, {1});
    put(40, {1, 0, 1});
    put(48, {1, 1});
    put(56, {1});
    put(58, {60, 0});
    put(60, {2});
    put(64, {0, 0, 100, 0});
    put(82, {5, 0, 3, 1, 4, 0, 0, 0, 3, 0, 10, 0});
    put(100, {0, 0, 3, 0, 'A', 'B', 13});
    return image;
}

std::vector<std::string> differences(const Bytes& a, const Bytes& b) {
    std::vector<std::string> lines;
    for (const ImageDifference& d : diffImages(dumpImage(a), dumpImage(b))) lines.push_back(d.Text());
    return lines;
}

TEST(ImageDiff, EqualImagesHaveNoDifference) { EXPECT_TRUE(differences(sendImage(), sendImage()).empty()); }

TEST(ImageDiff, ChangedSettingIsNamedByMessageFieldAndSetting) {
    Bytes changed = sendImage();
    changed[86] = 5;
    EXPECT_EQ(differences(sendImage(), changed),
              std::vector<std::string>{"message 1, field at position 3: BeforePoint 4 -> 5"});
}

TEST(ImageDiff, ChangedFormatIsNamedAsTheDialogNamesIt) {
    Bytes changed = sendImage();
    changed[84] = 1;
    EXPECT_EQ(differences(sendImage(), changed),
              std::vector<std::string>{"message 1, field at position 3: format 3 \"Decimal ASCII, Positive & Negative "
                                       "(+,-)\" -> 1 \"Decimal ASCII, No Prefix\""});
}

TEST(ImageDiff, ChangedTextAndChecksumAreNamedWhereTheyLie) {
    Bytes changed = sendImage();
    changed[105] = 'C';
    changed[48] = 3;
    EXPECT_EQ(differences(sendImage(), changed),
              (std::vector<std::string>{"header, SendChecksum: CalculationType 1 \"SUM-8\" -> 3 \"CRC-16\"",
                                        "message 1, text at position 0, text block: text \"AB<CR>\" -> \"AC<CR>\""}));
}

TEST(ImageDiff, BytesNeverReadCountOnlyWhenNothingElseDiffers) {
    Bytes padded = sendImage();
    padded[107] = 9;  // the spare byte
    padded[44] = 4;   // a reserved byte of the checksum
    EXPECT_EQ(differences(sendImage(), padded),
              (std::vector<std::string>{"header, SendChecksum: reserved #2 0 -> not 0 (never read)",
                                        "unused 0 (never read) -> not 0 (never read)"}));
    padded[86] = 6;
    EXPECT_EQ(differences(sendImage(), padded),
              std::vector<std::string>{"message 1, field at position 3: BeforePoint 4 -> 6"});
}

TEST(ImageDiff, ReservedBytesThatDifferShowTheirBytes) {
    Bytes a = sendImage(), b = sendImage();
    a[44] = 4;
    b[44] = 5;
    EXPECT_EQ(differences(a, b),
              std::vector<std::string>{
                  "header, SendChecksum: reserved #2 not 0 (never read) [04 00] -> not 0 (never read) [05 00]"});
}

TEST(ImageDiff, MessageOfOneImageOnlyIsNamed) {
    ScopedHostContext context;
    clsProtocolSendSrv one;
    std::wstring text(500, L' ');
    text.replace(0, 2, L"AB");
    one.GetMessage(1)->MessageString(text);
    const Bytes before = one.BinaryData();
    clsProtocolSendSrv two;
    two.GetMessage(1)->MessageString(text);
    two.AppendMessage();
    std::wstring second(500, L' ');
    second.replace(0, 3, L"XYZ");
    two.GetMessage(2)->MessageString(second);
    const Bytes after = two.BinaryData();

    const std::vector<std::string> lines = differences(before, after);
    auto has = [&](const std::string& line) { return std::find(lines.begin(), lines.end(), line) != lines.end(); };
    EXPECT_TRUE(has("header: number of messages 1 -> 2")) << ::testing::PrintToString(lines);
    EXPECT_TRUE(has("message 2: only in B (29 bytes, 1 segment, 3 positions)")) << ::testing::PrintToString(lines);
    for (const std::string& line : lines) EXPECT_EQ(line.find("message offsets"), std::string::npos) << line;
}

TEST(ImageDiff, ImagesOfDifferentKindsCannotBeCompared) {
    try {
        diffImages(dumpImage({3, 0}), dumpImage({4, 0}));
        FAIL();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.Number(), err::TypeMismatch);
    }
}

TEST(ImageDiff, DifferenceKnowsItsParts) {
    Bytes changed = sendImage();
    changed[86] = 5;
    const std::vector<ImageDifference> found = diffImages(dumpImage(sendImage()), dumpImage(changed));
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].Path, (std::vector<std::string>{"message 1", "field at position 3"}));
    EXPECT_EQ(found[0].Name, "BeforePoint");
    EXPECT_EQ(found[0].Before, "4");
    EXPECT_EQ(found[0].After, "5");
    EXPECT_FALSE(found[0].Layout);
}

}  // namespace
}  // namespace qx
