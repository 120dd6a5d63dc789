// Round trips of random valid message sets: for every seed of a fixed list a
// Send or Scan set is generated, written, loaded into a fresh set in a fresh
// host context, and written again. The two images must be the same bytes,
// and the loaded set must equal the generated one in everything the image
// holds; what it does not hold must come back at its documented default.
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <typeinfo>

#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/random_sets.h"

namespace qx {
namespace {

using test::RandomSetShape;

constexpr uint32_t kSetsOfEachKind = 200;
// Sets as large as the limits allow: 255 messages of few fields, or
// messages of up to 50 fields and long runs of text until the image nears
// 65535 bytes.
constexpr uint32_t kLargeSetsOfEachShape = 6;
constexpr size_t kLargestImage = 65535;

const RandomSetShape kManyMessages{
    .MinMessages = 255, .MaxMessages = 255, .MaxFieldsPerMessage = 2, .MaxTextRun = 12, .MaxTrailingEmpty = 0};
const RandomSetShape kFullMessages{
    .MinMessages = 255, .MaxMessages = 255, .MaxFieldsPerMessage = 50, .MaxTextRun = 8, .MaxTrailingEmpty = 0};

// Seed N: odd seeds run with the extended operands on, every fifth set is
// the TCP/IP twin.
bool extendedFor(uint32_t seed) { return seed % 2 == 1; }
bool ethernetFor(uint32_t seed) { return seed % 5 == 0; }

std::unique_ptr<clsProtocolSendSrv> newSendSet(bool ethernet) {
    if (ethernet) return std::make_unique<clsEthProtocolSendSrv>();
    return std::make_unique<clsProtocolSendSrv>();
}

std::unique_ptr<clsProtocolScanSrv> newScanSet(bool ethernet) {
    if (ethernet) return std::make_unique<clsEthProtocolScanSrv>();
    return std::make_unique<clsProtocolScanSrv>();
}

bool isConstantType(int32_t type) { return type == 34 || type == 35 || type == 37 || type == 38; }

// Offsets 6 and 7 of a Send image hold a constant message number's place in
// the host's constant table, which every load gives anew; only its value
// (offsets 2 to 5) belongs to the image.
Bytes withoutConstantPlace(Bytes image) {
    if (image.size() > 7 && isConstantType(image[0])) image[6] = image[7] = 0;
    return image;
}

void expectLinked(const clsOperand& loaded, const clsOperand& expected, const char* what) {
    SCOPED_TRACE(what);
    EXPECT_FALSE(loaded.IsNew());
    EXPECT_EQ(loaded.OperandType(), expected.OperandType());
    EXPECT_EQ(loaded.OperandAddress(), expected.OperandAddress());
}

void expectAsCreated(const clsOperand& loaded, int32_t type, const char* what) {
    SCOPED_TRACE(what);
    EXPECT_TRUE(loaded.IsNew());
    EXPECT_EQ(loaded.OperandType(), type);
    EXPECT_EQ(loaded.OperandAddress(), -1);
}

void expectSameFrame(const FrameChars& loaded, const FrameChars& expected) {
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(loaded[i].Value, expected[i].Value) << "frame entry " << i;
        EXPECT_EQ(loaded[i].ByAscii, expected[i].ByAscii) << "frame entry " << i;
    }
}

// The STX choice lies in byte S + 3, which an image of version 0 does not
// have; without the extended operands a load always clears it.
void expectSameChecksum(clsProtocolCSVar& loaded, const clsProtocolCSVar& expected, bool extended) {
    EXPECT_EQ(loaded.FormatView(), expected.FormatView());
    EXPECT_EQ(loaded.CSLength(), expected.CSLength());
    EXPECT_EQ(loaded.Length(), expected.CSLength());
    EXPECT_EQ(loaded.OffsetFromForward(), expected.OffsetFromForward());
    EXPECT_EQ(loaded.OffsetTillBackwards(), expected.OffsetTillBackwards());
    EXPECT_EQ(loaded.CalculationType(), expected.CalculationType());
    EXPECT_EQ(loaded.ModulusType(), expected.ModulusType());
    EXPECT_EQ(loaded.STXInCS(), extended && expected.STXInCS());
    EXPECT_EQ(loaded.SpecialAddition(), expected.SpecialAddition());
    // Without SpecialAddition the three values are written as 0.
    bool special = expected.SpecialAddition();
    EXPECT_EQ(loaded.SA_FromValue(), special ? expected.SA_FromValue() : 0);
    EXPECT_EQ(loaded.SA_ToValue(), special ? expected.SA_ToValue() : 0);
    EXPECT_EQ(loaded.SA_AddedValue(), special ? expected.SA_AddedValue() : 0);
}

void expectSameSendNumeric(const clsProtocolNumericVar& loaded, const clsProtocolNumericVar& expected) {
    expectLinked(*loaded.LikedOperand(), *expected.LikedOperand(), "LikedOperand");
    EXPECT_EQ(loaded.StreamForm(), expected.StreamForm());
    EXPECT_EQ(loaded.LeadingZeros(), expected.LeadingZeros());
    if (expected.StreamForm() == 1) {
        EXPECT_EQ(loaded.CopyBytesFormat(), expected.CopyBytesFormat());
        if (expected.StreamLengthAddress() > -1) {
            EXPECT_EQ(loaded.StreamLengthAddress(), expected.StreamLengthAddress());
            EXPECT_EQ(loaded.StreamVectorLength(), 1);
        } else {
            EXPECT_EQ(loaded.StreamLengthAddress(), -1);
            EXPECT_EQ(loaded.StreamVectorLength(), expected.StreamVectorLength());
        }
        // The ASCII settings of a stream field are not in its record.
        EXPECT_EQ(loaded.VarFormat(), 0);
        EXPECT_EQ(loaded.PrefixSignFormat(), 1);
        EXPECT_EQ(loaded.VectorLength(), 1);
        EXPECT_EQ(loaded.BeforePoint(), 5);
        EXPECT_EQ(loaded.AfterPoint(), 0);
    } else {
        EXPECT_EQ(loaded.VarFormat(), expected.VarFormat());
        EXPECT_EQ(loaded.BeforePoint(), expected.BeforePoint());
        EXPECT_EQ(loaded.AfterPoint(), expected.AfterPoint());
        EXPECT_EQ(loaded.VectorLength(), expected.VectorLength());
        // A hex field's record holds code 4 instead of the sign.
        EXPECT_EQ(loaded.PrefixSignFormat(), expected.VarFormat() == 0 ? expected.PrefixSignFormat() : 1);
        EXPECT_EQ(loaded.StreamLengthAddress(), -1);
        EXPECT_EQ(loaded.StreamVectorLength(), 1);
        EXPECT_EQ(loaded.CopyBytesFormat(), 0);
    }
}

void expectSameScanNumeric(const clsProtocolScanNumericVar& loaded, const clsProtocolScanNumericVar& expected) {
    expectLinked(*loaded.LikedOperand(), *expected.LikedOperand(), "LikedOperand");
    EXPECT_EQ(loaded.VarFormat(), expected.VarFormat());
    EXPECT_EQ(loaded.StreamForm(), expected.StreamForm());
    // Neither is in the record.
    EXPECT_EQ(loaded.AfterPoint(), 0);
    EXPECT_EQ(loaded.LeadingZeros(), 0);
    if (expected.StreamForm() == 1) {
        EXPECT_EQ(loaded.StreamVectorLength(), expected.StreamVectorLength());
        EXPECT_EQ(loaded.CopyBytesFormat(), expected.CopyBytesFormat());
        EXPECT_EQ(loaded.AddNullToEndOfStream(), expected.AddNullToEndOfStream());
        EXPECT_TRUE(loaded.DecimalPointOperand()->IsNew());
        EXPECT_EQ(loaded.VectorLength(), 1);
        EXPECT_EQ(loaded.BeforePoint(), 5);
        EXPECT_EQ(loaded.PrefixSignFormat(), 1);
    } else {
        EXPECT_EQ(loaded.BeforePoint(), expected.BeforePoint());
        EXPECT_EQ(loaded.VectorLength(), expected.VectorLength());
        EXPECT_EQ(loaded.PrefixSignFormat(), expected.VarFormat() == 2 ? 1 : expected.PrefixSignFormat());
        EXPECT_FALSE(loaded.AddNullToEndOfStream());
        if (expected.DecimalPointOperand()->IsNew())
            EXPECT_TRUE(loaded.DecimalPointOperand()->IsNew());
        else
            expectLinked(*loaded.DecimalPointOperand(), *expected.DecimalPointOperand(), "DecimalPointOperand");
    }
}

void expectSameField(itfProtocolVar& loaded, itfProtocolVar& expected, bool extended) {
    ASSERT_EQ(typeid(loaded), typeid(expected));
    EXPECT_EQ(loaded.StartPosition(), expected.StartPosition());
    EXPECT_EQ(loaded.Length(), expected.Length());
    EXPECT_EQ(loaded.GetVarSegmentType(), expected.GetVarSegmentType());
    if (auto* numeric = dynamic_cast<clsProtocolNumericVar*>(&expected)) {
        expectSameSendNumeric(dynamic_cast<clsProtocolNumericVar&>(loaded), *numeric);
    } else if (auto* scanNumeric = dynamic_cast<clsProtocolScanNumericVar*>(&expected)) {
        expectSameScanNumeric(dynamic_cast<clsProtocolScanNumericVar&>(loaded), *scanNumeric);
    } else if (auto* binary = dynamic_cast<clsProtocolBinaryVar*>(&expected)) {
        auto& got = dynamic_cast<clsProtocolBinaryVar&>(loaded);
        expectLinked(*got.LikedOperand(), *binary->LikedOperand(), "LikedOperand");
        EXPECT_EQ(got.TextFor0(), binary->TextFor0());
        EXPECT_EQ(got.TextFor1(), binary->TextFor1());
        EXPECT_EQ(got.DefaultDisplay(), 0);
    } else if (auto* list = dynamic_cast<clsProtocolistTextVar*>(&expected)) {
        auto& got = dynamic_cast<clsProtocolistTextVar&>(loaded);
        expectLinked(*got.LikedOperand(), *list->LikedOperand(), "LikedOperand");
        EXPECT_EQ(got.Texts(), list->Texts());
        EXPECT_EQ(got.AlignmentStringSize(), list->AlignmentStringSize());
        EXPECT_EQ(got.DefaultDisplay(), 0);
    } else if (auto* date = dynamic_cast<clsProtocolDateVar*>(&expected)) {
        EXPECT_EQ(dynamic_cast<clsProtocolDateVar&>(loaded).DateFormatType(), date->DateFormatType());
    } else if (auto* time = dynamic_cast<clsProtocolTimeVar*>(&expected)) {
        EXPECT_EQ(dynamic_cast<clsProtocolTimeVar&>(loaded).TimeFormatType(), time->TimeFormatType());
    } else if (auto* checksum = dynamic_cast<clsProtocolCSVar*>(&expected)) {
        expectSameChecksum(dynamic_cast<clsProtocolCSVar&>(loaded), *checksum, extended);
    } else {
        ADD_FAILURE() << "field of an unknown class " << typeid(expected).name();
    }
}

void expectSameMessage(const clsProtocolMessage& loaded, const clsProtocolMessage& expected, bool extended) {
    // The generator writes control characters of codes below 32 only, and
    // blanks under them and under fields, so both come back as they were.
    EXPECT_EQ(loaded.MessageString(), expected.MessageString());
    EXPECT_EQ(loaded.ControlChars(), expected.ControlChars());
    ASSERT_EQ(loaded.NumberOfVars(), expected.NumberOfVars());
    for (int32_t i = 1; i <= expected.NumberOfVars(); ++i) {
        SCOPED_TRACE("field " + std::to_string(i));
        expectSameField(*loaded.GetVar(i), *expected.GetVar(i), extended);
    }
}

// Messages to download: the generator leaves no gap before the last one.
int32_t downloadCount(const Variant& count) { return count.IsEmpty() ? 0 : count.ToI4(); }

template <class Set>
void expectValidSet(const Set& set) {
    EXPECT_EQ(set.GetEmptyMessageNumber(), 0);
    EXPECT_EQ(set.GetMessageNumberWithLongSegment(), 0);
    EXPECT_LE(set.NumberOfMessages(), 255);
    for (int32_t m = 1; m <= set.NumberOfMessages(); ++m) {
        auto message = set.GetMessage(m);
        EXPECT_LE(message->NumberOfVars(), clsProtocolMessage::MaxVars);
        int32_t end = 0;
        for (int32_t v = 1; v <= message->NumberOfVars(); ++v) {
            auto field = message->GetVar(v);
            EXPECT_GE(field->StartPosition(), end) << "fields in order and apart";
            EXPECT_GE(field->Length(), 1);
            end = field->StartPosition() + field->Length();
        }
        EXPECT_LE(end, clsProtocolMessage::MaxPositions);
    }
}

// What the round trip of one set gave: the two images and the loaded set.
template <class Set>
struct RoundTrip {
    Bytes first;
    Bytes second;
    std::unique_ptr<Set> loaded;
};

// Writes the set, loads the image into a fresh set of a fresh host context
// of the same settings, as a later session would, and writes that again.
template <class Set, class NewSet>
RoundTrip<Set> roundTrip(Set& set, bool extended, NewSet newSet) {
    RoundTrip<Set> result;
    result.first = set.BinaryData();
    ScopedHostContext later;
    later->ExtendedOperands = extended;
    result.loaded = newSet();
    result.loaded->BinaryData(result.first);
    result.second = result.loaded->BinaryData();
    return result;
}

// What a checked seed made, for the tests of the large shapes.
struct SeedOutcome {
    size_t imageSize = 0;
    int32_t messages = 0;
};

void checkSendSeed(uint32_t seed, const RandomSetShape& shape, SeedOutcome* outcome = nullptr) {
    SCOPED_TRACE("Send seed " + std::to_string(seed));
    const bool extended = extendedFor(seed);
    const bool ethernet = ethernetFor(seed);
    ScopedHostContext host;
    host->ExtendedOperands = extended;
    std::mt19937 random(seed);
    auto set = newSendSet(ethernet);
    test::fillRandomSendSet(*set, random, shape);
    expectValidSet(*set);
    const int32_t count = downloadCount(set->GetNumberOfMessagesToDownload());

    auto trip = roundTrip(*set, extended, [&] { return newSendSet(ethernet); });
    ASSERT_LE(trip.first.size(), kLargestImage);
    if (outcome) *outcome = SeedOutcome{trip.first.size(), count};
    EXPECT_EQ(trip.first.size() % 2, 0u);
    EXPECT_EQ(trip.first[56], count);
    EXPECT_EQ(withoutConstantPlace(trip.second), withoutConstantPlace(trip.first));

    const clsProtocolSendSrv& loaded = *trip.loaded;
    EXPECT_EQ(loaded.NumberOfMessages(), std::max(count, 1));
    EXPECT_EQ(loaded.ImageVersion(), extended ? 1 : 0);
    expectSameFrame(loaded.SendSTXChars(), set->SendSTXChars());
    expectSameFrame(loaded.SendETXChars(), set->SendETXChars());
    EXPECT_EQ(loaded.SendSTXLength(), set->SendSTXLength());
    EXPECT_EQ(loaded.SendETXLength(), set->SendETXLength());
    EXPECT_EQ(loaded.EndOfSendMessageType(), set->SendETXLength() == 0 ? 1 : set->EndOfSendMessageType());
    {
        SCOPED_TRACE("end-of-message checksum");
        expectSameChecksum(dynamic_cast<clsProtocolCSVar&>(*loaded.SendChecksum()),
                           dynamic_cast<clsProtocolCSVar&>(*set->SendChecksum()), extended);
    }
    EXPECT_EQ(loaded.CopyBytesCount(), set->CopyBytesCount());
    if (set->CopyBytesCount() >= 1) {
        expectLinked(*loaded.OpCopyDestination(), *set->OpCopyDestination(), "OpCopyDestination");
        expectLinked(*loaded.OpCopyWhenOn(), *set->OpCopyWhenOn(), "OpCopyWhenOn");
    } else {
        expectAsCreated(*loaded.OpCopyDestination(), 3, "OpCopyDestination");
        expectAsCreated(*loaded.OpCopyWhenOn(), 1, "OpCopyWhenOn");
    }
    // With one message the writer made the operand itself the constant 0.
    const clsOperand& number = *set->OpMessageNumber();
    const clsOperand& loadedNumber = *loaded.OpMessageNumber();
    if (count == 1) {
        EXPECT_EQ(number.OperandType(), 37);
        EXPECT_EQ(number.OperandConstantValue(), 0);
    }
    EXPECT_EQ(loadedNumber.OperandType(), number.OperandType());
    if (isConstantType(number.OperandType())) {
        EXPECT_EQ(loadedNumber.OperandMode(), 2);
        EXPECT_EQ(loadedNumber.OperandConstantValue(), number.OperandConstantValue());
    } else {
        EXPECT_EQ(loadedNumber.OperandMode(), 1);
        EXPECT_EQ(loadedNumber.OperandAddress(), number.OperandAddress());
        EXPECT_FALSE(loadedNumber.IsNew());
    }
    for (int32_t m = 1; m <= count; ++m) {
        SCOPED_TRACE("message " + std::to_string(m));
        expectSameMessage(*loaded.GetMessage(m), *set->GetMessage(m), extended);
        EXPECT_EQ(loaded.GetMessage(m)->MessageLength(), 0);
    }
}

void checkScanSeed(uint32_t seed, const RandomSetShape& shape, SeedOutcome* outcome = nullptr) {
    SCOPED_TRACE("Scan seed " + std::to_string(seed));
    const bool extended = extendedFor(seed);
    const bool ethernet = ethernetFor(seed);
    ScopedHostContext host;
    host->ExtendedOperands = extended;
    std::mt19937 random(seed);
    auto set = newScanSet(ethernet);
    test::fillRandomScanSet(*set, random, shape);
    expectValidSet(*set);
    const int32_t count = downloadCount(set->GetNumberOfMessagesToDownload());

    auto trip = roundTrip(*set, extended, [&] { return newScanSet(ethernet); });
    ASSERT_LE(trip.first.size(), kLargestImage);
    if (outcome) *outcome = SeedOutcome{trip.first.size(), count};
    EXPECT_EQ(trip.first.size() % 2, 0u);
    EXPECT_EQ(trip.first[34], count);
    EXPECT_EQ(trip.second, trip.first);

    const clsProtocolScanSrv& loaded = *trip.loaded;
    EXPECT_EQ(loaded.NumberOfMessages(), std::max(count, 1));
    EXPECT_EQ(loaded.ImageVersion(), extended ? 1 : 0);
    expectSameFrame(loaded.ScanSTXChars(), set->ScanSTXChars());
    expectSameFrame(loaded.ScanETXChars(), set->ScanETXChars());
    EXPECT_EQ(loaded.ScanSTXLength(), set->ScanSTXLength());
    EXPECT_EQ(loaded.ScanETXLength(), set->ScanETXLength());
    EXPECT_EQ(loaded.EndOfScanMessageType(), set->EndOfScanMessageType());
    EXPECT_EQ(loaded.MessageLengthValue(), set->MessageLengthValue() & 0xFFFF);
    EXPECT_EQ(loaded.SilenceTimeValue(), set->SilenceTimeValue() & 0xFFFF);
    {
        SCOPED_TRACE("end-of-message checksum");
        expectSameChecksum(dynamic_cast<clsProtocolCSVar&>(*loaded.ScanChecksum()),
                           dynamic_cast<clsProtocolCSVar&>(*set->ScanChecksum()), extended);
    }
    for (int32_t m = 1; m <= count; ++m) {
        SCOPED_TRACE("message " + std::to_string(m));
        expectSameMessage(*loaded.GetMessage(m), *set->GetMessage(m), extended);
        EXPECT_EQ(loaded.GetMessage(m)->MessageLength(), set->GetMessage(m)->MessageLength());
    }
}

TEST(SendSetProperty, RandomValidSetsRoundTripToTheSameBytesAndTheSameModel) {
    for (uint32_t seed = 1; seed <= kSetsOfEachKind; ++seed) {
        checkSendSeed(seed, RandomSetShape{});
        if (::testing::Test::HasFatalFailure()) return;
    }
}

TEST(ScanSetProperty, RandomValidSetsRoundTripToTheSameBytesAndTheSameModel) {
    for (uint32_t seed = 1; seed <= kSetsOfEachKind; ++seed) {
        checkScanSeed(seed, RandomSetShape{});
        if (::testing::Test::HasFatalFailure()) return;
    }
}

TEST(SendSetProperty, SetsOf255MessagesRoundTrip) {
    for (uint32_t seed = 1001; seed < 1001 + kLargeSetsOfEachShape; ++seed) {
        SeedOutcome outcome;
        checkSendSeed(seed, kManyMessages, &outcome);
        EXPECT_EQ(outcome.messages, 255) << "seed " << seed;
    }
}

TEST(ScanSetProperty, SetsOf255MessagesRoundTrip) {
    for (uint32_t seed = 1001; seed < 1001 + kLargeSetsOfEachShape; ++seed) {
        SeedOutcome outcome;
        checkScanSeed(seed, kManyMessages, &outcome);
        EXPECT_EQ(outcome.messages, 255) << "seed " << seed;
    }
}

// The generator stops adding messages before the image could pass 65535
// bytes, so these end a message or so short of it.
TEST(SendSetProperty, SetsOfFullMessagesNearTheLargestImageRoundTrip) {
    for (uint32_t seed = 2001; seed < 2001 + kLargeSetsOfEachShape; ++seed) {
        SeedOutcome outcome;
        checkSendSeed(seed, kFullMessages, &outcome);
        EXPECT_GT(outcome.imageSize, 60000u) << "seed " << seed;
    }
}

TEST(ScanSetProperty, SetsOfFullMessagesNearTheLargestImageRoundTrip) {
    for (uint32_t seed = 2001; seed < 2001 + kLargeSetsOfEachShape; ++seed) {
        SeedOutcome outcome;
        checkScanSeed(seed, kFullMessages, &outcome);
        EXPECT_GT(outcome.imageSize, 60000u) << "seed " << seed;
    }
}

// The seeds above are only worth as much as what they reach: every field
// kind and form, control characters, every frame length and end of message,
// both message-number kinds, copy on and off, sets of 0 and 1 message.
TEST(SendSetProperty, TheSeedsReachEveryKindOfContent) {
    std::map<std::string, int32_t> seen;
    for (uint32_t seed = 1; seed <= kSetsOfEachKind; ++seed) {
        ScopedHostContext host;
        host->ExtendedOperands = extendedFor(seed);
        std::mt19937 random(seed);
        auto set = newSendSet(ethernetFor(seed));
        test::fillRandomSendSet(*set, random);
        int32_t count = downloadCount(set->GetNumberOfMessagesToDownload());
        ++seen["messages " + std::to_string(std::min(count, 2))];
        ++seen["STX length " + std::to_string(set->SendSTXLength())];
        ++seen["ETX length " + std::to_string(set->SendETXLength())];
        ++seen["end of message " + std::to_string(set->EndOfSendMessageType())];
        ++seen[set->CopyBytesCount() > 0 ? "copy on" : "copy off"];
        ++seen[isConstantType(set->OpMessageNumber()->OperandType()) ? "number constant" : "number memory"];
        for (int32_t m = 1; m <= count; ++m) {
            auto message = set->GetMessage(m);
            for (int32_t code : message->ControlChars())
                if (code != clsProtocolMessage::NoControlChar) ++seen["control character"];
            for (int32_t v = 1; v <= message->NumberOfVars(); ++v) {
                VarPtr field = message->GetVar(v);
                if (auto numeric = std::dynamic_pointer_cast<clsProtocolNumericVar>(field)) {
                    if (numeric->StreamForm() == 0)
                        ++seen[numeric->VarFormat() == 0 ? "numeric decimal" : "numeric hex"];
                    else
                        ++seen[numeric->StreamLengthAddress() > -1 ? "stream indirect" : "stream direct"];
                } else if (auto list = std::dynamic_pointer_cast<clsProtocolistTextVar>(field)) {
                    ++seen[list->AlignmentStringSize() > 0 ? "list aligned" : "list"];
                } else {
                    const itfProtocolVar& kind = *field;
                    ++seen[typeid(kind).name()];
                }
            }
        }
    }
    for (const char* key : {"messages 0",       "messages 1",       "messages 2",
                            "STX length 0",     "STX length 4",     "ETX length 0",
                            "ETX length 4",     "end of message 1", "end of message 2",
                            "end of message 3", "copy on",          "copy off",
                            "number constant",  "number memory",    "control character",
                            "numeric decimal",  "numeric hex",      "stream indirect",
                            "stream direct",    "list aligned",     "list"})
        EXPECT_GT(seen[key], 0) << key;
    for (const char* name : {typeid(clsProtocolBinaryVar).name(), typeid(clsProtocolDateVar).name(),
                             typeid(clsProtocolTimeVar).name(), typeid(clsProtocolCSVar).name()})
        EXPECT_GT(seen[name], 0) << name;
}

TEST(ScanSetProperty, TheSeedsReachEveryKindOfContent) {
    std::map<std::string, int32_t> seen;
    for (uint32_t seed = 1; seed <= kSetsOfEachKind; ++seed) {
        ScopedHostContext host;
        host->ExtendedOperands = extendedFor(seed);
        std::mt19937 random(seed);
        auto set = newScanSet(ethernetFor(seed));
        test::fillRandomScanSet(*set, random);
        int32_t count = downloadCount(set->GetNumberOfMessagesToDownload());
        ++seen["messages " + std::to_string(std::min(count, 2))];
        ++seen["STX length " + std::to_string(set->ScanSTXLength())];
        ++seen["ETX length " + std::to_string(set->ScanETXLength())];
        ++seen["end of message " + std::to_string(set->EndOfScanMessageType())];
        if (set->MessageLengthValue() > 0xFFFF) ++seen["message length above 16 bits"];
        for (int32_t m = 1; m <= count; ++m) {
            auto message = set->GetMessage(m);
            if (message->MessageLength() > 0) ++seen["message length"];
            for (int32_t code : message->ControlChars())
                if (code != clsProtocolMessage::NoControlChar) ++seen["control character"];
            for (int32_t v = 1; v <= message->NumberOfVars(); ++v) {
                VarPtr field = message->GetVar(v);
                if (auto numeric = std::dynamic_pointer_cast<clsProtocolScanNumericVar>(field)) {
                    ++seen["VarFormat " + std::to_string(numeric->VarFormat())];
                    if (numeric->StreamForm() == 0 && !numeric->DecimalPointOperand()->IsNew()) ++seen["decimal point"];
                } else if (std::dynamic_pointer_cast<clsProtocolCSVar>(field)) {
                    ++seen["checksum"];
                }
            }
        }
    }
    for (const char* key : {"messages 0",
                            "messages 1",
                            "messages 2",
                            "STX length 0",
                            "STX length 4",
                            "ETX length 0",
                            "ETX length 4",
                            "end of message 1",
                            "end of message 2",
                            "end of message 3",
                            "message length above 16 bits",
                            "message length",
                            "control character",
                            "VarFormat 0",
                            "VarFormat 1",
                            "VarFormat 2",
                            "VarFormat 3",
                            "VarFormat 4",
                            "decimal point",
                            "checksum"})
        EXPECT_GT(seen[key], 0) << key;
}

}  // namespace
}  // namespace qx
