// Every field kind in the words of the field dialog: images written by the
// sets' own writers, and the lines their dumps give for each setting.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "inspect/image_dump.h"
#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx {
namespace {

void link(clsOperand& operand, int32_t type, int32_t address) {
    operand.OperandType(type);
    operand.OperandAddress(address);
    operand.IsNew(false);
}

template <class Field>
void place(clsProtocolMessage& message, std::shared_ptr<Field> field, int32_t& position) {
    field->StartPosition(position);
    position += field->Length();
    message.AddVar(field);
}

// The listing's line for a range: its name and value, whatever its offset.
bool hasLine(const std::string& listing, const std::string& nameAndValue) {
    return listing.find("  " + nameAndValue + "  [") != std::string::npos ||
           listing.find("  " + nameAndValue + "\n") != std::string::npos;
}

TEST(FieldWords, SendFieldsAreListedWithEverySetting) {
    ScopedHostContext context;
    context->ExtendedOperands = true;
    clsProtocolSendSrv set;
    clsProtocolMessage& message = *set.GetMessage(1);
    int32_t q = 0;
    auto binary = std::make_shared<clsProtocolBinaryVar>();
    link(*binary->LikedOperand(), 1, 40);
    binary->TextFor0(L"OFF");
    binary->TextFor1(L"ON");
    place(message, binary, q);
    auto list = std::make_shared<clsProtocolistTextVar>();
    link(*list->LikedOperand(), 5, 42);
    list->AlignmentStringSize(4);
    list->Texts({L"A", L"LONGER ONE"});
    place(message, list, q);
    auto date = std::make_shared<clsProtocolDateVar>();
    date->DateFormatType(3);
    place(message, date, q);
    auto time = std::make_shared<clsProtocolTimeVar>();
    time->TimeFormatType(1);
    place(message, time, q);
    auto stream = std::make_shared<clsProtocolNumericVar>();
    link(*stream->LikedOperand(), 3, 13);
    stream->StreamForm(1);
    stream->CopyBytesFormat(5);
    stream->StreamLengthAddress(400);
    place(message, stream, q);
    auto checksum = std::make_shared<clsProtocolCSVar>();
    checksum->CSLength(2);
    checksum->FormatView(2);
    checksum->CalculationType(4);
    checksum->ModulusType(3);
    checksum->STXInCS(true);
    checksum->SpecialAddition(true);
    checksum->SA_FromValue(10);
    checksum->SA_ToValue(200);
    checksum->SA_AddedValue(7);
    place(message, checksum, q);

    const std::string listing = dumpText(dumpImage(set.BinaryData()));
    for (const char* line : {
             "field at position 0: binary text, TextFor0 \"OFF\", TextFor1 \"ON\", operand type 1, address 40, 3 "
             "positions",
             "TextFor0: \"OFF\"",
             "TextFor1: \"ON\"",
             "field at position 3: list of 2 texts: \"A\", \"LONGER ONE\", operand type 5, address 42, 4 positions",
             "AlignmentStringSize: 4",
             "text 2: \"LONGER ONE\"",
             "field at position 7: date DDDDDDDDD, 9 positions",
             "DateFormatType: 3 \"DDDDDDDDD\"",
             "field at position 16: time HH:MM:SS, 8 positions",
             "TimeFormatType: 1 \"HH:MM:SS\"",
             "format: 5 \"Binary stream\"",
             "StreamVectorLength: 0 (indirect count)",
             "CopyBytesFormat: 5 \"Convert ONE Linked Element to 4 Send Bytes (Small)\"",
             "StreamLengthAddress: 400",
             "field at position 25: checksum, CRC-8, 2 bytes, 2 positions",
             "FormatView: 5 \"Binary\"",
             "CalculationType: 4 \"CRC-8\"",
             "ModulusType: 3 \"32 bit\"",
             "STXInCS: 1 \"Include STX in Checksum calculation\"",
             "SpecialAddition: 1 \"Advanced: Set Limits\"",
             "SA_ToValue: 200",
             "image version: 1 (extended operands)",
         })
        EXPECT_TRUE(hasLine(listing, line)) << line << "\n" << listing;
}

TEST(FieldWords, ScanFieldsAreListedWithTheDialogsFormatNames) {
    ScopedHostContext context;
    clsProtocolScanSrv set;
    clsProtocolMessage& message = *set.GetMessage(1);
    int32_t q = 0;
    for (int32_t format : {0, 1, 2}) {
        auto field = std::make_shared<clsProtocolScanNumericVar>();
        link(*field->LikedOperand(), 3, 20 + format);
        field->VarFormat(format);
        field->BeforePoint(3);
        field->PrefixSignFormat(format == 0 ? 0 : 1);
        if (format == 0) link(*field->DecimalPointOperand(), 5, 30);
        place(message, field, q);
    }
    for (int32_t format : {3, 4}) {
        auto field = std::make_shared<clsProtocolScanNumericVar>();
        link(*field->LikedOperand(), 16, 40 + format);
        field->StreamForm(1);
        field->VarFormat(format);
        field->StreamVectorLength(2);
        field->CopyBytesFormat(format == 3 ? 1 : 2);
        field->AddNullToEndOfStream(format == 4);
        place(message, field, q);
    }
    auto checksum = std::make_shared<clsProtocolCSVar>();
    place(message, checksum, q);

    const std::string listing = dumpText(dumpImage(set.BinaryData()));
    for (const char* line : {
             "field at position 0: numeric, Decimal ASCII: Fixed Length, operand type 3, address 20, 3 positions",
             "format: 1 \"No Prefix\"",
             "DecimalPointOperand type: 5",
             "DecimalPointOperand address: 30",
             "field at position 3: numeric, Decimal ASCII: No Fixed Length, operand type 3, address 21, 1 position",
             "type: 2 \"numeric of no fixed length\"",
             "field at position 4: numeric, Hex as Ascii, operand type 3, address 22, 3 positions",
             "format: 4 \"Hex as Ascii\"",
             "field at position 7: numeric, Stream Fixed Length, operand type 16, address 43, 4 positions",
             "CopyBytesFormat: 2 \"Convert 2 Receive Bytes to ONE Linked Element\"",
             "AddNullToEndOfStream: 0 (no null added)",
             "field at position 11: numeric, Stream, no fixed length, operand type 16, address 44, 8 positions",
             "CopyBytesFormat: 4 \"Convert 4 Receive Bytes to ONE Linked Element (Big)\"",
             "AddNullToEndOfStream: 1 \"Add Null To The End Of The Stream\"",
             "field at position 19: checksum, SUM-8, 1 byte, 1 position",
             "type: 3 \"checksum\"",
             "flags: 2 (checksum field)",
         })
        EXPECT_TRUE(hasLine(listing, line)) << line << "\n" << listing;
}

}  // namespace
}  // namespace qx
