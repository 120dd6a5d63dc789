// The address table of a TCP/IP Config instance: 16 remote addresses that
// Send and Scan refer to by index, and its 418-byte image, which the host
// keeps as the instance's data. A parameter of an address is either a
// constant or the MI that holds it at run time.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/basics/bytes.h"
#include "platform/host/operand.h"

namespace qx {

// An IP address or a port: from the MI Operand when it is set, else the
// constant Value (an IP with its first octet in the lowest byte).
struct AddressParam {
    OperandPtr Operand;
    int32_t Value = 0;
};

struct EthAddress {
    AddressParam IpAddress;
    AddressParam Port;
    std::wstring Description;
};

namespace eth {
inline constexpr int32_t AddressKindIP = 1;
inline constexpr int32_t AddressKindPort = 2;
inline constexpr int32_t AddressCount = 16;
inline constexpr int32_t DescriptionLength = 12;
inline constexpr uint8_t AddressTableVersion = 100;
inline constexpr size_t AddressRecordSize = 26;
inline constexpr size_t AddressParamSize = 6;
inline constexpr size_t AddressTableSize = 2 + AddressCount * AddressRecordSize;  // 418
// The table: the version byte, the record count, then the records.
inline constexpr size_t TableVersionOffset = 0;
inline constexpr size_t TableCountOffset = 1;
inline constexpr size_t TableHeaderSize = 2;
// Offsets in a record.
inline constexpr size_t RecordUsedOffset = 0;
inline constexpr size_t RecordIpAddressOffset = 2;
inline constexpr size_t RecordPortOffset = RecordIpAddressOffset + AddressParamSize;
inline constexpr size_t RecordDescriptionOffset = RecordPortOffset + AddressParamSize;
static_assert(RecordDescriptionOffset + DescriptionLength == AddressRecordSize);
// Offsets in a parameter: the flag (1 constant, 0 operand), then from byte 2
// the constant's four bytes or the operand's address.
inline constexpr size_t ParamFlagOffset = 0;
inline constexpr size_t ParamValueOffset = 2;
inline constexpr uint8_t ParamConstantFlag = 1;
}  // namespace eth

// Version 100, the record count, then one 26-byte record per address. An
// operand address that does not fit its word is error 6, and so is a table
// of more than 255 records.
Bytes BuildAddressTableImage(const std::vector<EthAddress>& table);
// As many records as byte 1 says; an image shorter than that is error 9,
// raised before any of its MIs is registered. The version byte is not read.
// The description keeps its padding blanks.
std::vector<EthAddress> ParseAddressTableImage(const Bytes& image);

// An MI that a record names, read without linking it: a host lists and
// moves the operands of instances that no dialog has loaded. The IP's MI
// is the first of four (one per octet), the port's one alone.
struct AddressTableOperand {
    int32_t Record = 0;
    int32_t Kind = eth::AddressKindIP;
    int32_t Address = 0;
    int32_t VectorLength = 1;
};
// The MIs of the records the count covers; the same errors as the parse.
std::vector<AddressTableOperand> AddressTableOperands(const Bytes& image);
// Every MI `from` of the records becomes `to`; answers how many changed.
// The same errors as the parse (nothing changed then); a `to` that does
// not fit its word is error 6.
int32_t ReplaceAddressTableOperand(Bytes& image, int32_t from, int32_t to);

Bytes AddressParamToBytes(const AddressParam& param);
// Reads the first six bytes; fewer is error 9. An operand parameter comes
// back as a linked MI that the host's table knows.
AddressParam BytesToAddressParam(const Bytes& bytes);
bool IsAddressParamUsed(const AddressParam& param);
// The operand's display name, else the value text.
std::wstring GetAddressParamText(const AddressParam& param, int32_t kind);
// Empty for 0; dotted octets for kind 1, the decimal number otherwise.
std::wstring GetAddressValueText(const AddressParam& param, int32_t kind);

}  // namespace qx
