#include "tcpip/mdl_eth_protocol.h"

#include <algorithm>
#include <span>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"

namespace qx {

namespace {

// A linked parameter is always an MI read as memory.
constexpr int32_t kMemoryType = 3;
constexpr int32_t kMemoryMode = 1;

// Offsets in a parameter.
constexpr size_t kParamFlag = eth::ParamFlagOffset;
constexpr size_t kParamValue = eth::ParamValueOffset;
constexpr uint8_t kConstantFlag = eth::ParamConstantFlag;

// Offsets in a record.
constexpr size_t kRecordUsed = eth::RecordUsedOffset;
constexpr size_t kRecordIpAddress = eth::RecordIpAddressOffset;
constexpr size_t kRecordPort = eth::RecordPortOffset;
constexpr size_t kRecordDescription = eth::RecordDescriptionOffset;

constexpr size_t kHeaderSize = eth::TableHeaderSize;
constexpr uint8_t kBlank = 0x20;

size_t recordOffset(size_t index) { return kHeaderSize + index * eth::AddressRecordSize; }

// The flag byte and byte 1 stay 0 for an operand, whose bytes 4 and 5 stay 0
// too: the block must come zeroed.
void writeParam(ByteWriter& writer, size_t offset, const AddressParam& param) {
    if (param.Operand) {
        writer.u16(offset + kParamValue, param.Operand->OperandAddress());
    } else {
        writer.u8(offset + kParamFlag, kConstantFlag);
        writer.i32(offset + kParamValue, param.Value);
    }
}

// Any flag but 0 reads as a constant.
AddressParam readParam(const ByteReader& reader, int64_t offset) {
    reader.block(offset, eth::AddressParamSize);
    AddressParam param;
    if (reader.u8(offset + kParamFlag) == 0) {
        OperandPtr operand = newOperand();
        operand->OperandType(kMemoryType);
        operand->OperandAddress(reader.u16(offset + kParamValue));
        operand->IsNew(false);
        operand->OperandMode(kMemoryMode);
        if (!operand->IsRegistered()) operand->RegisterOperand();
        param.Operand = std::move(operand);
    } else {
        param.Value = reader.i32(offset + kParamValue);
    }
    return param;
}

}  // namespace

Bytes BuildAddressTableImage(const std::vector<EthAddress>& table) {
    Bytes image;
    ByteWriter writer(image);
    writer.grow(kHeaderSize);
    writer.u8(0, eth::AddressTableVersion);
    // Before the records are made room for: a count above 255 is an overflow.
    writer.u8(1, static_cast<int64_t>(std::min<size_t>(table.size(), 0x100)));
    writer.reserve(recordOffset(table.size()));
    writer.grow(table.size() * eth::AddressRecordSize);
    for (size_t i = 0; i < table.size(); ++i) {
        const EthAddress& address = table[i];
        const size_t at = recordOffset(i);
        writer.u8(at + kRecordUsed, IsAddressParamUsed(address.IpAddress) ? 1 : 0);
        writeParam(writer, at + kRecordIpAddress, address.IpAddress);
        writeParam(writer, at + kRecordPort, address.Port);
        std::span<uint8_t> description = writer.block(at + kRecordDescription, eth::DescriptionLength);
        std::fill(description.begin(), description.end(), kBlank);
        const size_t length = std::min<size_t>(address.Description.size(), eth::DescriptionLength);
        toAnsiBytes(std::wstring_view(address.Description).substr(0, length), description.data());
    }
    return image;
}

// The format version in byte 0 is not looked at: 100 is the only one there is.
std::vector<EthAddress> ParseAddressTableImage(const Bytes& image) {
    const ByteReader reader(image);
    const size_t count = reader.u8(1);
    // The whole extent first, so that a short image fails before any operand
    // of its first records is registered with the host.
    reader.block(0, recordOffset(count));
    std::vector<EthAddress> table(count);
    for (size_t i = 0; i < count; ++i) {
        EthAddress& address = table[i];
        const int64_t at = static_cast<int64_t>(recordOffset(i));
        address.IpAddress = readParam(reader, at + kRecordIpAddress);
        address.Port = readParam(reader, at + kRecordPort);
        std::span<const uint8_t> description = reader.block(at + kRecordDescription, eth::DescriptionLength);
        address.Description.resize(eth::DescriptionLength);
        fromAnsiBytes(description.data(), description.size(), address.Description.data());
    }
    return table;
}

std::vector<AddressTableOperand> AddressTableOperands(const Bytes& image) {
    const ByteReader reader(image);
    const size_t count = reader.u8(1);
    reader.block(0, recordOffset(count));
    std::vector<AddressTableOperand> operands;
    for (size_t i = 0; i < count; ++i)
        for (const auto& [kind, offset] :
             {std::pair(eth::AddressKindIP, kRecordIpAddress), std::pair(eth::AddressKindPort, kRecordPort)}) {
            const int64_t at = static_cast<int64_t>(recordOffset(i) + offset);
            if (reader.u8(at + kParamFlag) == 0)
                operands.push_back({static_cast<int32_t>(i), kind, static_cast<int32_t>(reader.u16(at + kParamValue)),
                                    kind == eth::AddressKindIP ? 4 : 1});
        }
    return operands;
}

int32_t ReplaceAddressTableOperand(Bytes& image, int32_t from, int32_t to) {
    const std::vector<AddressTableOperand> operands = AddressTableOperands(image);
    Bytes changed = image;
    ByteWriter writer(changed);
    int32_t count = 0;
    for (const AddressTableOperand& operand : operands)
        if (operand.Address == from) {
            writer.u16(recordOffset(static_cast<size_t>(operand.Record)) +
                           (operand.Kind == eth::AddressKindIP ? kRecordIpAddress : kRecordPort) + kParamValue,
                       to);
            ++count;
        }
    image = std::move(changed);
    return count;
}

Bytes AddressParamToBytes(const AddressParam& param) {
    Bytes bytes(eth::AddressParamSize, 0);
    ByteWriter writer(bytes);
    writeParam(writer, 0, param);
    return bytes;
}

AddressParam BytesToAddressParam(const Bytes& bytes) { return readParam(ByteReader(bytes), 0); }

bool IsAddressParamUsed(const AddressParam& param) { return param.Operand != nullptr || param.Value != 0; }

std::wstring GetAddressParamText(const AddressParam& param, int32_t kind) {
    if (param.Operand) return param.Operand->OperandDisplayName();
    if (param.Value != 0) return GetAddressValueText(param, kind);
    return L"";
}

std::wstring GetAddressValueText(const AddressParam& param, int32_t kind) {
    if (param.Value == 0) return L"";
    if (kind != eth::AddressKindIP) return std::to_wstring(param.Value);
    const auto value = static_cast<uint32_t>(param.Value);
    std::wstring text;
    for (int shift = 0; shift < 32; shift += 8) {
        if (shift) text += L'.';
        text += std::to_wstring((value >> shift) & 0xFF);
    }
    return text;
}

}  // namespace qx
