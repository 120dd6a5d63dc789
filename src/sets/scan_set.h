// The messages that one Scan operation waits for, with their frame, the
// terminators by which the controller finds the end of a received message
// (end characters, message length, silence time) and the end-of-message
// checksum. A Scan set has no operand of its own. The image is written and
// read by scan_image.
#pragma once
#include <cstdint>
#include <functional>

#include "message/itf_protocol_var.h"
#include "message/protocol_message.h"
#include "platform/basics/bytes.h"
#include "platform/basics/variant.h"
#include "platform/host/host_contract.h"
#include "sets/edit_host_objects.h"
#include "sets/frame_char.h"
#include "sets/message_list.h"
#include "sets/set_family.h"

namespace qx {

class clsProtocolScanSrv {
public:
    clsProtocolScanSrv();
    virtual ~clsProtocolScanSrv() = default;
    clsProtocolScanSrv(const clsProtocolScanSrv&) = delete;
    clsProtocolScanSrv& operator=(const clsProtocolScanSrv&) = delete;

    // 1 "ETX", 2 "Checksum & ETX", 3 "ETX & Checksum".
    void EndOfScanMessageType(int32_t value) { endOfScanMessageType_ = value; }
    int32_t EndOfScanMessageType() const { return endOfScanMessageType_; }
    // The terminator "Message Length"; the image holds its low 16 bits.
    void MessageLengthValue(int32_t value) { messageLengthValue_ = value; }
    int32_t MessageLengthValue() const { return messageLengthValue_; }
    // The terminator "Silence: Duration (mS)"; the image holds its low 16 bits.
    void SilenceTimeValue(int32_t value) { silenceTimeValue_ = value; }
    int32_t SilenceTimeValue() const { return silenceTimeValue_; }
    int32_t NumberOfMessages() const { return messages_.NumberOfMessages(); }
    // The Scan image. A value that does not fit its byte (a message length
    // with the frame above 255, among others) raises RuntimeError(6) and no
    // image comes out.
    Bytes BinaryData();
    // The number of the last message that is not empty; empty when all are.
    Variant GetNumberOfMessagesToDownload() const { return messages_.GetNumberOfMessagesToDownload(); }
    // Loads a Scan image. A short or lying image raises RuntimeError(9) and
    // may leave the set half loaded.
    void BinaryData(const Bytes& value);
    void CopyMessage(int32_t pMessageNumber) { messages_.CopyMessage(pMessageNumber); }
    void PasteMessage(int32_t pMessageNumber) { messages_.PasteMessage(pMessageNumber); }
    void CutMessage(int32_t pMessageNumber) { messages_.CutMessage(pMessageNumber); }
    // Refused at 255 messages with host message 154.
    bool AppendMessage() { return messages_.AppendMessage(); }
    // Asks host message 155 first; the result is a Boolean in a variant.
    Variant InsertMessageBefore(int32_t pMessageNumber) {
        return Variant(messages_.InsertMessageBefore(pMessageNumber));
    }
    // Asks host message 156 first; the new message goes behind the one given.
    bool InsertMessage(int32_t pMessageNumber) { return messages_.InsertMessage(pMessageNumber); }
    // Asks host message 157 first.
    bool DeleteMessage(int32_t pMessageNumber) { return messages_.DeleteMessage(pMessageNumber); }
    // Opens the Scan dialog of its family on this set (through the ScanEdit
    // or EthScanEdit hook) and answers whether the person confirmed it. On
    // OK the operands of every message go into the operation's
    // OperandsForFindOnly.
    bool Edit(itfFBMethod& pFBMethod, InstancesPtr pFBInstances);
    // The family's help: the method id cut to a multiple of 100.
    void ShowHelp();
    MessagePtr GetMessage(int32_t pMessageNumber) const { return messages_.GetMessage(pMessageNumber); }
    // The end-of-message checksum back to its defaults.
    void InitScanChecksum();
    // One empty message; frame, terminators and clipboard stay. The dialog then rebuilds its grid.
    void ClearAll();
    // The first message, short of the last one to download, that has neither
    // text nor a control character; 0 when there is none.
    Variant GetMessageNumberWithOutConstText() const { return Variant(messages_.GetMessageNumberWithOutConstText()); }
    int32_t GetMessageNumberWithLongSegment() const { return messages_.GetMessageNumberWithLongSegment(); }
    int32_t GetEmptyMessageNumber() const { return messages_.GetEmptyMessageNumber(); }
    // Only the messages hold operands.
    void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) {
        messages_.ReplaceOperands(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
    }
    // The end-of-message dialog on a replica of ScanChecksum and a copy of
    // EndOfScanMessageType; both are taken back only when the user accepts.
    // Opens the dialog through editorHooks(): RuntimeError(91) when none is installed.
    void EditScanETXAdvanced();
    void SetScanSTXValue(int32_t pIndex, uint8_t pValue, bool pSTXByAscii);
    void SetScanETXValue(int32_t pIndex, uint8_t pValue, bool pETXByAscii);
    // All start characters to zero; the length stays.
    void ClearScanSTX();
    // All end characters to zero and the end of message back to "ETX"; the length stays.
    void ClearScanETX();

    // Used inside the library only: the dialogs and the image code.
    FrameChars ScanSTXChars() const { return scanSTXChars_; }
    FrameChars ScanETXChars() const { return scanETXChars_; }
    int32_t ScanSTXLength() const { return scanSTXLength_; }
    void ScanSTXLength(int32_t value) { scanSTXLength_ = value; }
    int32_t ScanETXLength() const { return scanETXLength_; }
    void ScanETXLength(int32_t value) { scanETXLength_ = value; }
    // The end-of-message checksum, a clsProtocolCSVar.
    VarPtr ScanChecksum() const { return scanChecksum_; }
    void ScanChecksum(VarPtr value) { scanChecksum_ = std::move(value); }
    // The version byte of the last image loaded.
    int32_t ImageVersion() const { return imageVersion_; }
    void ImageVersion(int32_t value) { imageVersion_ = value; }
    MessagePtr ClipboardMessage() const { return messages_.ClipboardMessage(); }
    // Replaces every message by count empty ones (at least one); for the image reader.
    void ResetMessages(int32_t count) { messages_.ResetToEmpty(count); }
    // The objects Edit is given; ShowHelp uses them.
    void SetHostObjects(itfFBMethod* pFBMethod, InstancesPtr pFBInstances);
    // What an OK of the dialog hands to the host's search: the operands of
    // every message, the set having none of its own.
    void AddOperandsToFindOnly(OperandCollection& pOperandsForFindOnly) const {
        messages_.AddOperandsToFindOnlyCollection(pOperandsForFindOnly);
    }
    // Called by ClearAll, so that an open dialog rebuilds its grid.
    std::function<void()> OnMessagesCleared;

protected:
    // The TCP/IP twin starts with another message length and has its own dialog.
    explicit clsProtocolScanSrv(SetFamily family);

private:
    SetFamily family_;
    MessageList messages_;
    FrameChars scanSTXChars_{};
    int32_t scanSTXLength_ = 0;
    FrameChars scanETXChars_{};
    int32_t scanETXLength_ = 0;
    int32_t messageLengthValue_;
    int32_t silenceTimeValue_ = 0;
    int32_t endOfScanMessageType_ = 1;
    VarPtr scanChecksum_;
    int32_t imageVersion_ = 0;
    EditHostObjects hostObjects_;
};

// The Scan set of the TCP/IP family: the same but for MessageLengthValue,
// which starts at 0, and its dialog, which has no framing.
class clsEthProtocolScanSrv : public clsProtocolScanSrv {
public:
    clsEthProtocolScanSrv() : clsProtocolScanSrv(SetFamily::Ethernet) {}
};

}  // namespace qx
