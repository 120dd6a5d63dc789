// The annotated dump of each image kind: listings written out from the
// documented layouts, the JSON form of the same tree, the recognition of the
// kind, and what a lying or cut image gives (always a RuntimeError naming the
// offset, never a read outside the image).
#include "inspect/image_dump.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/random_sets.h"

namespace qx {
namespace {

// An image of the given size, zero but for the bytes placed at their offsets.
Bytes imageOf(size_t size, std::initializer_list<std::pair<size_t, std::vector<uint8_t>>> parts) {
    Bytes image(size, 0);
    for (const auto& [offset, bytes] : parts)
        for (size_t i = 0; i < bytes.size(); ++i) image.at(offset + i) = bytes[i];
    return image;
}

// One message: "AB", the control character 13, then a numeric field of 4
// digits with a sign (5 positions). The header holds the constant message
// number 0 of a single message and the default end-of-message checksum.
Bytes sendImage() {
    return imageOf(108, {
                            {0, {37}},                                    // OpMessageNumber: constant
                            {6, {5, 0}},                                  // its place in the constant table
                            {38, {1}},                                    // marker
                            {40, {1, 0, 1}},                              // checksum: Decimal ASCII, 1 byte
                            {48, {1, 1}},                                 // SUM-8, modulus 256
                            {56, {1}},                                    // one message
                            {58, {60, 0}},                                // at 60
                            {60, {2}},                                    // two segments
                            {64, {0, 0, 100, 0}},                         // fixed text, block at 100
                            {82, {5, 0, 3, 1, 4, 0, 0, 0, 3, 0, 10, 0}},  // numeric, +/-, 1 x 4 digits, MI 10
                            {100, {0, 0, 3, 0, 'A', 'B', 13}},            // the text block; 107 is the spare byte
                        });
}

// One message of "V=" and a numeric field of 3 digits, negative sign only,
// in a frame of STX and CR, with a message length of 6.
Bytes scanImage() {
    return imageOf(96, {
                           {0, {1, 0, 0, 0}},                // ETX; no typed frame character; version 0
                           {4, {2}},                         // STX character
                           {8, {13}},                        // ETX character
                           {12, {1, 1, 5, 0, 100, 0}},       // frame lengths, MessageLengthValue, SilenceTimeValue
                           {18, {1}},                        // marker
                           {20, {1, 0, 1}},                  // checksum: Decimal ASCII, 1 byte
                           {28, {1, 1}},                     // SUM-8, modulus 256
                           {34, {1}},                        // one message
                           {36, {38, 0}},                    // at 38
                           {38, {2, 1, 8, 0}},               // two segments, fixed text, 6 + 2
                           {42, {0, 0, 0, 0, 90, 0}},        // position 0, fixed text, block at 90
                           {66, {2, 0, 1, 0}},               // position 2, numeric of fixed length
                           {70, {2, 1, 3, 0, 3, 0, 20, 0}},  // Negative Only, 1 x 3 digits, MI 20
                           {90, {0, 0, 2, 0, 'V', '='}},
                       });
}

// Sixteen records: a constant IP and port, an IP and a port in MIs, and
// fourteen as a new Config leaves them (no IP, port 20000, "Address N").
Bytes addressTable() {
    Bytes image = imageOf(418, {
                                   {0, {100, 16}},
                                   {2, {1, 0, 1, 0, 0xC0, 0xA8, 1, 10, 1, 0, 0xF6, 1, 0, 0}},
                                   {16, {'P', 'L', 'C', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' '}},
                                   {28, {1, 0, 0, 0, 200, 0, 0, 0, 0, 0, 204, 0, 0, 0}},
                                   {42, {'S', 'c', 'a', 'l', 'e', ' ', ' ', ' ', ' ', ' ', ' ', ' '}},
                               });
    for (size_t i = 2; i < 16; ++i) {
        const size_t at = 2 + 26 * i;
        const std::vector<uint8_t> record = {0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0x20, 0x4E, 0, 0};
        std::copy(record.begin(), record.end(), image.begin() + static_cast<std::ptrdiff_t>(at));
        std::string description = "Address " + std::to_string(i);
        description.resize(12, ' ');
        std::copy(description.begin(), description.end(), image.begin() + static_cast<std::ptrdiff_t>(at + 14));
    }
    return image;
}

std::string descriptionOf(const RuntimeError& e) { return toUtf8(e.Description()); }

// The description of the error the dump raises; fails when none is raised.
std::string dumpError(const Bytes& image, std::optional<ImageKind> kind) {
    try {
        dumpImage(image, kind);
    } catch (const RuntimeError& e) {
        return descriptionOf(e);
    }
    ADD_FAILURE() << "no error";
    return "";
}

const char* const sendListing = R"L(Send image, 108 bytes (recognised by its content)
offset length
     0     58  header
     0      1    OpMessageNumber type: 37 (constant)  [25]
     1      1    reserved: 0  [00]
     2      4    OpMessageNumber value: 0  [00 00 00 00]
     6      2    OpMessageNumber constant address: 5 (a new one at each load)  [05 00]
     8      1    OpCopyDestination type: 0 (not read: CopyBytesCount 0)  [00]
     9      1    reserved: 0  [00]
    10      2    OpCopyDestination address: 0  [00 00]
    12      4    reserved: 0  [00 00 00 00]
    16      1    OpCopyWhenOn type: 0 (not read: CopyBytesCount 0)  [00]
    17      1    reserved: 0  [00]
    18      2    OpCopyWhenOn address: 0  [00 00]
    20      4    reserved: 0  [00 00 00 00]
    24      1    image version: 0  [00]
    25      1    EndOfSendMessageType: 0 (no ETX: loads as 1 "ETX")  [00]
    26      1    STX typed mask: 0 (none typed)  [00]
    27      1    ETX typed mask: 0 (none typed)  [00]
    28      4    SendSTXChars: none in use
    28      1      STX character 1: 0 <NUL>, from the selector, not in use  [00]
    29      1      STX character 2: 0 <NUL>, from the selector, not in use  [00]
    30      1      STX character 3: 0 <NUL>, from the selector, not in use  [00]
    31      1      STX character 4: 0 <NUL>, from the selector, not in use  [00]
    32      4    SendETXChars: none in use
    32      1      ETX character 1: 0 <NUL>, from the selector, not in use  [00]
    33      1      ETX character 2: 0 <NUL>, from the selector, not in use  [00]
    34      1      ETX character 3: 0 <NUL>, from the selector, not in use  [00]
    35      1      ETX character 4: 0 <NUL>, from the selector, not in use  [00]
    36      1    SendSTXLength: 0  [00]
    37      1    SendETXLength: 0  [00]
    38      1    marker: 1 (always 1, never read)  [01]
    39      1    reserved: 0  [00]
    40     14    SendChecksum: SUM-8, 1 byte
    40      1      FormatView: 1 "Decimal ASCII"  [01]
    41      1      reserved: 0  [00]
    42      1      CSLength: 1  [01]
    43      1      STXInCS: 0 (not in an image of version 0: the reader takes the old default)  [00]
    44      2      reserved: 0  [00 00]
    46      1      OffsetFromForward: 0  [00]
    47      1      OffsetTillBackwards: 0  [00]
    48      1      CalculationType: 1 "SUM-8"  [01]
    49      1      ModulusType: 1 "256 (100H)"  [01]
    50      1      SpecialAddition: 0 (off)  [00]
    51      1      SA_FromValue: 0  [00]
    52      1      SA_ToValue: 0  [00]
    53      1      SA_AddedValue: 0  [00]
    54      1    CopyBytesCount: 0 (no copy after the ETX)  [00]
    55      1    reserved: 0  [00]
    56      1    number of messages: 1  [01]
    57      1    reserved: 0  [00]
    58      2  message offsets
    58      2    message 1: 60  [3C 00]
    60     47  message 1: 47 bytes, 2 segments, 8 positions
    60      1    number of segments: 2  [02]
    61      3    reserved: 0  [00 00 00]
    64     18    text at position 0: "AB<CR>"
    64      1      type: 0 "fixed text"  [00]
    65      1      reserved: 0  [00]
    66      2      block offset: 100  [64 00]
    68     14      reserved: 0  [00 00 00 00 00 00 00 00 00 00 00 00 00 00]
   100      7      text block
   100      2        reserved: 0  [00 00]
   102      1        count: 3  [03]
   103      1        reserved: 0  [00]
   104      3        text: "AB<CR>"  [41 42 0D]
    82     18    field at position 3: numeric, Decimal ASCII, Positive & Negative (+,-), operand type 3, address 10, 5 positions
    82      1      type: 5 "numeric"  [05]
    83      1      LeadingZeros: 0 "No Leading"  [00]
    84      1      format: 3 "Decimal ASCII, Positive & Negative (+,-)"  [03]
    85      1      VectorLength: 1  [01]
    86      1      BeforePoint: 4  [04]
    87      1      AfterPoint: 0  [00]
    88      2      reserved: 0  [00 00]
    90      1      LikedOperand type: 3  [03]
    91      1      reserved: 0  [00]
    92      2      LikedOperand address: 10  [0A 00]
    94      6      reserved: 0  [00 00 00 00 00 00]
   107      1  unused: 0 (never read)  [00]
)L";

const char* const scanListing = R"L(Scan image, 96 bytes (recognised by its content)
offset length
     0     36  header
     0      1    EndOfScanMessageType: 1 "ETX"  [01]
     1      1    STX typed mask: 0 (none typed)  [00]
     2      1    ETX typed mask: 0 (none typed)  [00]
     3      1    image version: 0  [00]
     4      4    ScanSTXChars: <STX>
     4      1      STX character 1: 2 <STX>, from the selector  [02]
     5      1      STX character 2: 0 <NUL>, from the selector, not in use  [00]
     6      1      STX character 3: 0 <NUL>, from the selector, not in use  [00]
     7      1      STX character 4: 0 <NUL>, from the selector, not in use  [00]
     8      4    ScanETXChars: <CR>
     8      1      ETX character 1: 13 <CR>, from the selector  [0D]
     9      1      ETX character 2: 0 <NUL>, from the selector, not in use  [00]
    10      1      ETX character 3: 0 <NUL>, from the selector, not in use  [00]
    11      1      ETX character 4: 0 <NUL>, from the selector, not in use  [00]
    12      1    ScanSTXLength: 1  [01]
    13      1    ScanETXLength: 1  [01]
    14      2    MessageLengthValue: 5  [05 00]
    16      2    SilenceTimeValue: 100 (ms)  [64 00]
    18      1    marker: 1 (always 1, never read)  [01]
    19      1    reserved: 0  [00]
    20     14    ScanChecksum: SUM-8, 1 byte
    20      1      FormatView: 1 "Decimal ASCII"  [01]
    21      1      reserved: 0  [00]
    22      1      CSLength: 1  [01]
    23      1      STXInCS: 0 (not in an image of version 0: the reader takes the old default)  [00]
    24      2      reserved: 0  [00 00]
    26      1      OffsetFromForward: 0  [00]
    27      1      OffsetTillBackwards: 0  [00]
    28      1      CalculationType: 1 "SUM-8"  [01]
    29      1      ModulusType: 1 "256 (100H)"  [01]
    30      1      SpecialAddition: 0 (off)  [00]
    31      1      SA_FromValue: 0  [00]
    32      1      SA_ToValue: 0  [00]
    33      1      SA_AddedValue: 0  [00]
    34      1    number of messages: 1  [01]
    35      1    reserved: 0  [00]
    36      2  message offsets
    36      2    message 1: 38  [26 00]
    38     58  message 1: 58 bytes, 2 segments, 6 positions
    38      1    number of segments: 2  [02]
    39      1    flags: 1 (fixed text)  [01]
    40      1    expected length: 8 (MessageLength 6 with a frame of 2)  [08]
    41      1    reserved: 0  [00]
    42     24    text at position 0: "V="
    42      2      StartPosition: 0  [00 00]
    44      1      type: 0 "fixed text"  [00]
    45      1      reserved: 0  [00]
    46      2      block offset: 90  [5A 00]
    48     18      reserved: 0  [00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00]
    90      6      text block
    90      2        reserved: 0  [00 00]
    92      1        count: 2  [02]
    93      1        reserved: 0  [00]
    94      2        text: "V="  [56 3D]
    66     24    field at position 2: numeric, Decimal ASCII: Fixed Length, operand type 3, address 20, 4 positions
    66      2      StartPosition: 2  [02 00]
    68      1      type: 1 "numeric of fixed length"  [01]
    69      1      reserved: 0  [00]
    70      1      format: 2 "Negative Only (-)"  [02]
    71      1      VectorLength: 1  [01]
    72      1      BeforePoint: 3  [03]
    73      1      reserved: 0  [00]
    74      1      LikedOperand type: 3  [03]
    75      1      reserved: 0  [00]
    76      2      LikedOperand address: 20  [14 00]
    78      4      reserved: 0  [00 00 00 00]
    82      1      DecimalPointOperand type: 0 (not linked)  [00]
    83      1      reserved: 0  [00]
    84      2      reserved: 0  [00 00]
    86      4      reserved: 0  [00 00 00 00]
)L";

// The lines of a record as a new Config leaves it: no IP, port 20000.
std::string newAddressLines(size_t index) {
    char line[200];
    std::string out;
    const size_t at = 2 + 26 * index;
    std::string description = "Address " + std::to_string(index);
    description.resize(12, ' ');
    std::string hex;
    for (size_t i = 0; i < description.size(); ++i) {
        char byte[4];
        std::snprintf(byte, sizeof byte, i ? " %02X" : "%02X", static_cast<unsigned char>(description[i]));
        hex += byte;
    }
    auto add = [&](size_t offset, size_t length, const std::string& text) {
        std::snprintf(line, sizeof line, "%6zu %6zu  ", offset, length);
        out += line + text + "\n";
    };
    add(at, 26, "address " + std::to_string(index) + ": IP none, port 20000, \"" + description + "\"");
    add(at, 1, "  IpAddress used: 0 (no)  [00]");
    add(at + 1, 1, "  reserved: 0  [00]");
    add(at + 2, 6, "  IpAddress: none");
    add(at + 2, 1, "    kind: 1 (constant)  [01]");
    add(at + 3, 1, "    reserved: 0  [00]");
    add(at + 4, 4, "    Value: 0 (not used)  [00 00 00 00]");
    add(at + 8, 6, "  Port: 20000");
    add(at + 8, 1, "    kind: 1 (constant)  [01]");
    add(at + 9, 1, "    reserved: 0  [00]");
    add(at + 10, 4, "    Value: 20000  [20 4E 00 00]");
    add(at + 14, 12, "  Description: \"" + description + "\"  [" + hex + "]");
    return out;
}

TEST(ImageDump, SendImageListsEveryRangeWithItsMeaning) { EXPECT_EQ(dumpText(dumpImage(sendImage())), sendListing); }

TEST(ImageDump, ScanImageListsEveryRangeWithItsMeaning) { EXPECT_EQ(dumpText(dumpImage(scanImage())), scanListing); }

TEST(ImageDump, ConfigImageNamesThePort) {
    EXPECT_EQ(dumpText(dumpImage({3, 0})), R"L(Config image, 2 bytes (recognised by its content)
offset length
     0      1  COM port: 3 "COM3"  [03]
     1      1  reserved: 0  [00]
)L");
}

TEST(ImageDump, ConfigImageThatACopyBufferImageMatchesSaysSo) {
    EXPECT_EQ(
        dumpText(dumpImage({2, 0})),
        R"L(Config image, 2 bytes (recognised by its content; a Copy buffer image looks the same: --kind copy reads it as one)
offset length
     0      1  COM port: 2 "COM2"  [02]
     1      1  reserved: 0  [00]
)L");
}

TEST(ImageDump, CopyBufferImageNamesTheFormatAsTheDialogLists) {
    EXPECT_EQ(dumpText(dumpImage({4, 0})), R"L(Copy buffer image, 2 bytes (recognised by its content)
offset length
     0      1  copy format: 4 "Convert 4 Receive Bytes to ONE Linked Element"  [04]
     1      1  reserved: 0  [00]
)L");
    EXPECT_EQ(dumpText(dumpImage({2, 0}, ImageKind::CopyBuffer)), R"L(Copy buffer image, 2 bytes
offset length
     0      1  copy format: 2 "Convert 2 Receive Bytes to ONE Linked Element"  [02]
     1      1  reserved: 0  [00]
)L");
}

TEST(ImageDump, AddressTableListsEveryRecordAndParameter) {
    std::string expected = R"L(TCP/IP address table, 418 bytes (recognised by its content)
offset length
     0      1  format version: 100  [64]
     1      1  number of records: 16  [10]
     2     26  address 0: IP 192.168.1.10, port 502, "PLC         "
     2      1    IpAddress used: 1 (yes)  [01]
     3      1    reserved: 0  [00]
     4      6    IpAddress: 192.168.1.10
     4      1      kind: 1 (constant)  [01]
     5      1      reserved: 0  [00]
     6      4      Value: 192.168.1.10  [C0 A8 01 0A]
    10      6    Port: 502
    10      1      kind: 1 (constant)  [01]
    11      1      reserved: 0  [00]
    12      4      Value: 502  [F6 01 00 00]
    16     12    Description: "PLC         "  [50 4C 43 20 20 20 20 20 20 20 20 20]
    28     26  address 1: IP MI 200 to 203, port MI 204, "Scale       "
    28      1    IpAddress used: 1 (yes)  [01]
    29      1    reserved: 0  [00]
    30      6    IpAddress: MI 200 to 203
    30      1      kind: 0 (linked to an MI)  [00]
    31      1      reserved: 0  [00]
    32      2      MI address: 200  [C8 00]
    34      2      reserved: 0  [00 00]
    36      6    Port: MI 204
    36      1      kind: 0 (linked to an MI)  [00]
    37      1      reserved: 0  [00]
    38      2      MI address: 204  [CC 00]
    40      2      reserved: 0  [00 00]
    42     12    Description: "Scale       "  [53 63 61 6C 65 20 20 20 20 20 20 20]
)L";
    for (size_t i = 2; i < 16; ++i) expected += newAddressLines(i);
    EXPECT_EQ(dumpText(dumpImage(addressTable())), expected);
}

// The node at the path of names under the root; fails when there is none.
const nlohmann::json* findNode(const nlohmann::json& node, const std::vector<std::string>& path) {
    const nlohmann::json* at = &node;
    for (const std::string& name : path) {
        const nlohmann::json* next = nullptr;
        for (const auto& child : at->at("children"))
            if (child.at("name") == name) next = &child;
        if (!next) return nullptr;
        at = next;
    }
    return at;
}

TEST(ImageDumpJson, HoldsTheSameTreeAsTheListing) {
    const nlohmann::json json = nlohmann::json::parse(dumpJson(dumpImage(sendImage())));
    EXPECT_EQ(json.at("kind"), "send");
    EXPECT_EQ(json.at("title"), "Send image");
    EXPECT_EQ(json.at("size"), 108);
    EXPECT_EQ(json.at("kind_from"), "recognised");
    const nlohmann::json& root = json.at("root");
    EXPECT_EQ(root.at("name"), "Send image");
    EXPECT_EQ(root.at("offset"), 0);
    EXPECT_EQ(root.at("length"), 108);
    ASSERT_EQ(root.at("children").size(), 4u);  // header, offsets, message 1, the spare byte
    EXPECT_EQ(root.at("children")[0].at("name"), "header");
    EXPECT_EQ(root.at("children")[3].at("name"), "unused");
    EXPECT_TRUE(root.at("children")[3].at("layout"));

    const nlohmann::json* before = findNode(root, {"message 1", "field at position 3", "BeforePoint"});
    ASSERT_NE(before, nullptr);
    EXPECT_EQ(before->at("offset"), 86);
    EXPECT_EQ(before->at("length"), 1);
    EXPECT_EQ(before->at("value"), "4");
    EXPECT_EQ(before->at("hex"), "04");
    EXPECT_FALSE(before->contains("children"));
    const nlohmann::json* text = findNode(root, {"message 1", "text at position 0", "text block", "text"});
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->at("value"), "\"AB<CR>\"");
    EXPECT_EQ(text->at("hex"), "41 42 0D");
    const nlohmann::json* calc = findNode(root, {"header", "SendChecksum", "CalculationType"});
    ASSERT_NE(calc, nullptr);
    EXPECT_EQ(calc->at("value"), "1 \"SUM-8\"");
}

TEST(ImageDumpJson, EveryLeafHasItsBytesAndEveryRangeLiesInTheImage) {
    for (const Bytes& image : {sendImage(), scanImage(), addressTable(), Bytes{2, 0}}) {
        const nlohmann::json json = nlohmann::json::parse(dumpJson(dumpImage(image)));
        std::vector<const nlohmann::json*> stack{&json.at("root")};
        int leaves = 0;
        while (!stack.empty()) {
            const nlohmann::json& node = *stack.back();
            stack.pop_back();
            const size_t offset = node.at("offset");
            const size_t length = node.at("length");
            EXPECT_LE(offset + length, image.size());
            if (node.contains("children")) {
                EXPECT_FALSE(node.contains("hex"));
                for (const auto& child : node.at("children")) stack.push_back(&child);
            } else {
                ++leaves;
                EXPECT_EQ(node.at("hex").get<std::string>().size(), length == 0 ? 0 : 3 * length - 1);
            }
        }
        EXPECT_GT(leaves, 1);
    }
}

TEST(ImageDump, KindIsRecognisedByContent) {
    EXPECT_EQ(recogniseImage(sendImage()).Kind, ImageKind::Send);
    EXPECT_EQ(recogniseImage(scanImage()).Kind, ImageKind::Scan);
    EXPECT_EQ(recogniseImage(addressTable()).Kind, ImageKind::AddressTable);
    EXPECT_EQ(recogniseImage({100, 0}).Kind, ImageKind::AddressTable);
    EXPECT_EQ(recogniseImage({3, 0}).Kind, ImageKind::Config);
    EXPECT_FALSE(recogniseImage({3, 0}).Ambiguous);
    EXPECT_TRUE(recogniseImage({1, 0}).Ambiguous);
    EXPECT_EQ(recogniseImage({0, 0}).Kind, ImageKind::CopyBuffer);
    EXPECT_EQ(recogniseImage({4, 0}).Kind, ImageKind::CopyBuffer);
    for (const Bytes& image : {Bytes{}, Bytes{7}, Bytes{9, 0}, Bytes{1, 1}, Bytes(50, 0)}) {
        try {
            recogniseImage(image);
            ADD_FAILURE() << image.size();
        } catch (const RuntimeError& e) {
            EXPECT_EQ(e.Number(), err::InvalidFileFormat);
            EXPECT_NE(descriptionOf(e).find("not an image of a known kind"), std::string::npos);
        }
    }
}

TEST(ImageDump, KindNamesRoundTrip) {
    for (ImageKind kind :
         {ImageKind::Send, ImageKind::Scan, ImageKind::Config, ImageKind::CopyBuffer, ImageKind::AddressTable})
        EXPECT_EQ(imageKindOf(imageKindName(kind)), kind);
    EXPECT_FALSE(imageKindOf("sendimage").has_value());
}

// ---------------------------------------------------------------- malformed

// Valid images of every kind made by the library's own writers, and the
// hand-made ones above.
std::vector<std::pair<Bytes, ImageKind>> writtenImages() {
    std::vector<std::pair<Bytes, ImageKind>> images = {
        {sendImage(), ImageKind::Send}, {scanImage(), ImageKind::Scan},  {addressTable(), ImageKind::AddressTable},
        {{2, 0}, ImageKind::Config},    {{4, 0}, ImageKind::CopyBuffer},
    };
    ScopedHostContext context;
    context->ExtendedOperands = true;
    const test::RandomSetShape shape{.MaxMessages = 4, .MaxFieldsPerMessage = 5, .MaxTextRun = 12};
    for (uint32_t seed = 1; seed <= 3; ++seed) {
        std::mt19937 random(seed);
        clsProtocolSendSrv send;
        test::fillRandomSendSet(send, random, shape);
        images.emplace_back(send.BinaryData(), ImageKind::Send);
        clsProtocolScanSrv scan;
        test::fillRandomScanSet(scan, random, shape);
        images.emplace_back(scan.BinaryData(), ImageKind::Scan);
    }
    return images;
}

TEST(ImageDumpMalformed, EveryWrittenImageDumps) {
    for (const auto& [image, kind] : writtenImages()) {
        const ImageDump dump = dumpImage(image);
        EXPECT_EQ(dump.Kind, kind);
        EXPECT_EQ(dump.Root.Length, image.size());
    }
}

TEST(ImageDumpMalformed, ImageCutAtAnyOffsetRaisesRuntimeError) {
    for (const auto& [image, kind] : writtenImages()) {
        for (size_t size = 0; size < image.size(); ++size) {
            const Bytes cut(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_THROW(dumpImage(cut, kind), RuntimeError) << imageKindName(kind) << " cut at " << size;
            // Unnamed, a short piece may be a whole image of another kind
            // (two bytes of anything read as a Config); never of its own.
            try {
                EXPECT_NE(dumpImage(cut).Kind, kind) << imageKindName(kind) << " cut at " << size;
            } catch (const RuntimeError&) {
            }
        }
    }
}

TEST(ImageDumpMalformed, ErrorNamesTheOffsetAndWhatWasExpected) {
    const Bytes send = sendImage();
    EXPECT_EQ(dumpError(Bytes(send.begin(), send.begin() + 40), ImageKind::Send),
              "offset 0: the header of 58 bytes expected, 40 bytes left");
    EXPECT_EQ(dumpError(Bytes(send.begin(), send.begin() + 70), ImageKind::Send),
              "offset 64: the segment table of message 1 (2 entries) of 36 bytes expected, 6 bytes left");
    EXPECT_EQ(dumpError(Bytes(send.begin(), send.begin() + 102), ImageKind::Send),
              "offset 100: a fixed-text block of 4 bytes expected, 2 bytes left");
    EXPECT_EQ(dumpError(Bytes(send.begin(), send.begin() + 107), ImageKind::Send),
              "offset 107: the spare byte behind the last message of 1 byte expected, 0 bytes left");
    Bytes far = send;
    far[58] = 0xF0;  // message 1 at 240
    EXPECT_EQ(dumpError(far, ImageKind::Send),
              "offset 240: the header of message 1 of 4 bytes expected, the image ends at 108");
    const Bytes scan = scanImage();
    EXPECT_EQ(dumpError(Bytes(scan.begin(), scan.begin() + 94), ImageKind::Scan),
              "offset 94: the values of a fixed text of 2 bytes expected, 0 bytes left");
    EXPECT_EQ(dumpError(Bytes(scan.begin(), scan.begin() + 95), ImageKind::Scan),
              "offset 94: the values of a fixed text of 2 bytes expected, 1 byte left");
    const Bytes table = addressTable();
    EXPECT_EQ(dumpError(Bytes(table.begin(), table.begin() + 100), ImageKind::AddressTable),
              "offset 2: the 16 address records of 416 bytes expected, 98 bytes left");
    EXPECT_EQ(dumpError({2}, ImageKind::Config), "offset 0: a Config image of 2 bytes expected, 1 byte left");
}

TEST(ImageDumpMalformed, ErrorIsSubscriptOutOfRange) {
    try {
        dumpImage({2}, ImageKind::CopyBuffer);
        FAIL();
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.Number(), err::SubscriptOutOfRange);
    }
}

TEST(ImageDumpMalformed, TextRunningPastTheLastPositionIsRefused) {
    // 255 values of text in each of three segments: 765 positions.
    Bytes image = imageOf(60 + 4 + 3 * 18, {{38, {1}}, {56, {1}}, {58, {60, 0}}, {60, {3}}});
    const size_t block = image.size();
    image.resize(block + 4 + 255 + 1, 'x');
    image[block] = 0;
    image[block + 1] = 0;
    image[block + 2] = 255;
    image[block + 3] = 0;
    for (size_t i = 0; i < 3; ++i) {
        image[64 + 18 * i] = 0;
        image[64 + 18 * i + 2] = static_cast<uint8_t>(block & 0xFF);
        image[64 + 18 * i + 3] = static_cast<uint8_t>(block >> 8);
    }
    EXPECT_EQ(dumpError(image, ImageKind::Send),
              "offset " + std::to_string(block + 2) +
                  ": a fixed text of 255 positions at position 255 runs past position 499");
}

TEST(ImageDumpMalformed, ListOfNoTextsIsRefused) {
    Bytes image = imageOf(60 + 4 + 18 + 12 + 4, {{38, {1}}, {56, {1}}, {58, {60, 0}}, {60, {1}}, {64, {2, 0, 82, 0}}});
    EXPECT_EQ(dumpError(image, ImageKind::Send), "offset 92: a count of 1 to 255 texts expected, 0 found");
}

TEST(ImageDumpMalformed, TextWithoutItsByteZeroIsRefused) {
    Bytes image = imageOf(
        60 + 4 + 18 + 18 + 2,
        {{38, {1}}, {56, {1}}, {58, {60, 0}}, {60, {1}}, {64, {1, 0, 82, 0}}, {92, {100, 0}}, {100, {'O', 'N'}}});
    EXPECT_EQ(dumpError(image, ImageKind::Send),
              "offset 100: TextFor0, a text of at most 255 characters closed by a byte 0, expected; no byte 0 within 2 "
              "bytes");
}

// 255 messages that all point at one message of 255 segments, each of them a
// list of 255 texts sharing one record: the dump stops within the image's
// own size instead of listing 255 x 255 x 255 texts.
TEST(ImageDumpMalformed, RangesSharedBetweenMessagesStopTheDump) {
    const size_t messages = 255;
    const size_t message = 58 + 2 * messages;
    const size_t record = message + 4 + 18 * 255;
    Bytes image(record + 12 + 4 * 255 + 2, 0);
    image[38] = 1;
    image[56] = static_cast<uint8_t>(messages);
    for (size_t i = 0; i < messages; ++i) {
        image[58 + 2 * i] = static_cast<uint8_t>(message & 0xFF);
        image[59 + 2 * i] = static_cast<uint8_t>(message >> 8);
    }
    image[message] = 255;
    for (size_t i = 0; i < 255; ++i) {
        const size_t entry = message + 4 + 18 * i;
        image[entry] = 2;
        image[entry + 2] = static_cast<uint8_t>(record & 0xFF);
        image[entry + 3] = static_cast<uint8_t>(record >> 8);
    }
    image[record] = 3;
    image[record + 10] = 255;
    const size_t text = image.size() - 2;
    for (size_t i = 0; i < 255; ++i) {
        image[record + 12 + 4 * i] = static_cast<uint8_t>(text & 0xFF);
        image[record + 13 + 4 * i] = static_cast<uint8_t>(text >> 8);
    }
    image[text] = 'x';
    const std::string error = dumpError(image, ImageKind::Send);
    EXPECT_NE(error.find("messages or records are shared"), std::string::npos) << error;
}

TEST(ImageDumpMalformed, RandomChangesToWrittenImagesNeverCrash) {
    std::mt19937 random(2024);
    int dumped = 0, refused = 0;
    for (const auto& [image, kind] : writtenImages()) {
        for (int round = 0; round < 300; ++round) {
            Bytes changed = image;
            const int changes = 1 + static_cast<int>(random() % 8);
            for (int i = 0; i < changes && !changed.empty(); ++i)
                changed[random() % changed.size()] = static_cast<uint8_t>(random());
            try {
                const ImageDump dump = dumpImage(changed, round % 2 ? std::optional<ImageKind>(kind) : std::nullopt);
                dumpText(dump);
                dumpJson(dump);
                ++dumped;
            } catch (const RuntimeError&) {
                ++refused;
            }
        }
    }
    EXPECT_GT(dumped, 0);
    EXPECT_GT(refused, 0);
}

// ------------------------------------------------- agreement with the readers

// The positions at which the dump places the fields of a message.
std::vector<int32_t> dumpedFieldPositions(const ImageDump& dump, int32_t number) {
    std::vector<int32_t> positions;
    const std::string prefix = "field at position ";
    for (const DumpNode& message : dump.Root.Children) {
        if (message.Name != "message " + std::to_string(number)) continue;
        for (const DumpNode& segment : message.Children)
            if (segment.Name.rfind(prefix, 0) == 0) positions.push_back(std::stoi(segment.Name.substr(prefix.size())));
    }
    return positions;
}

std::vector<int32_t> fieldPositions(clsProtocolMessage& message) {
    std::vector<int32_t> positions;
    for (int32_t i = 1; i <= message.NumberOfVars(); ++i) positions.push_back(message.GetVar(i)->StartPosition());
    return positions;
}

TEST(ImageDumpReaders, FieldsLieWhereTheReadersPutThem) {
    ScopedHostContext context;
    const test::RandomSetShape shape{.MaxMessages = 6, .MaxFieldsPerMessage = 8, .MaxTextRun = 20};
    for (uint32_t seed = 1; seed <= 10; ++seed) {
        std::mt19937 random(seed);
        clsProtocolSendSrv written;
        test::fillRandomSendSet(written, random, shape);
        const Bytes image = written.BinaryData();
        clsProtocolSendSrv read;
        read.BinaryData(image);
        const ImageDump dump = dumpImage(image, ImageKind::Send);
        for (int32_t m = 1; m <= read.GetNumberOfMessagesToDownload().ToI4(); ++m)
            EXPECT_EQ(dumpedFieldPositions(dump, m), fieldPositions(*read.GetMessage(m))) << seed << " " << m;

        clsProtocolScanSrv scanWritten;
        test::fillRandomScanSet(scanWritten, random, shape);
        const Bytes scanBytes = scanWritten.BinaryData();
        clsProtocolScanSrv scanRead;
        scanRead.BinaryData(scanBytes);
        const ImageDump scanDump = dumpImage(scanBytes, ImageKind::Scan);
        for (int32_t m = 1; m <= scanRead.GetNumberOfMessagesToDownload().ToI4(); ++m)
            EXPECT_EQ(dumpedFieldPositions(scanDump, m), fieldPositions(*scanRead.GetMessage(m))) << seed << " " << m;
    }
}

}  // namespace
}  // namespace qx
