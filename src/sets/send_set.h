// The messages of one Send operation with their frame (start and end
// characters, end-of-message checksum), the operand that selects the message
// at run time, and the "copy after ETX" settings. The operation builds one
// from its image for each edit, works on it and reads the image back; the
// image itself is written and read by send_image.
#pragma once
#include <array>
#include <cstdint>
#include <functional>

#include "message/itf_protocol_var.h"
#include "message/protocol_message.h"
#include "platform/basics/bytes.h"
#include "platform/basics/variant.h"
#include "platform/host/host_contract.h"
#include "platform/host/operand.h"
#include "sets/edit_host_objects.h"
#include "sets/frame_char.h"
#include "sets/message_list.h"
#include "sets/set_family.h"

namespace qx {

class clsProtocolSendSrv {
public:
    clsProtocolSendSrv();
    virtual ~clsProtocolSendSrv() = default;
    clsProtocolSendSrv(const clsProtocolSendSrv&) = delete;
    clsProtocolSendSrv& operator=(const clsProtocolSendSrv&) = delete;

    // 1 "ETX", 2 "Checksum & ETX", 3 "ETX & Checksum".
    void EndOfSendMessageType(int32_t value) { endOfSendMessageType_ = value; }
    int32_t EndOfSendMessageType() const { return endOfSendMessageType_; }
    OperandPtr OpMessageNumber() const { return opMessageNumber_; }
    OperandPtr OpCopyDestination() const { return opCopyDestination_; }
    OperandPtr OpCopyWhenOn() const { return opCopyWhenOn_; }
    int32_t NumberOfMessages() const { return messages_.NumberOfMessages(); }
    // The Send advanced dialog on OpCopyDestination and OpCopyWhenOn
    // themselves, so a link changed there stays even when the user cancels;
    // CopyBytesCount is taken over only when the user confirms. Opens the
    // dialog through messageEditorHooks(): RuntimeError(91) when none is installed.
    void EditAdvanced();
    // One empty message; frame, operands and clipboard stay. The dialog then rebuilds its grid.
    void ClearAll();
    // The Send image. With a single message to download, OpMessageNumber
    // itself becomes the constant 0 first. A value that does not fit its
    // byte raises RuntimeError(6) and no image comes out.
    Bytes BinaryData();
    int32_t GetMessageNumberWithLongSegment() const { return messages_.GetMessageNumberWithLongSegment(); }
    int32_t GetEmptyMessageNumber() const { return messages_.GetEmptyMessageNumber(); }
    // The number of the last message that is not empty; empty when all are.
    Variant GetNumberOfMessagesToDownload() const { return messages_.GetNumberOfMessagesToDownload(); }
    // Loads a Send image. A short or lying image raises RuntimeError(9) and
    // may leave the set half loaded.
    void BinaryData(const Bytes& value);
    MessagePtr GetMessage(int32_t pMessageNumber) const { return messages_.GetMessage(pMessageNumber); }
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
    // Keeps the two host objects for the time of the edit and opens the Send
    // dialog on this set through messageEditorHooks() (RuntimeError(91) when
    // none is installed); the dialog edits the set itself. On OK the set's
    // linked operands and those of every message go into the method's
    // OperandsForFindOnly, and the answer is true; on Cancel it is false.
    // While the dialog is open, ClearAll rebuilds its grid through
    // OnMessagesCleared.
    bool Edit(itfFBMethod& pFBMethod, InstancesPtr pFBInstances);
    // The family's help: the method id cut to a multiple of 100.
    void ShowHelp();
    void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress);
    // The end-of-message dialog on a replica of SendChecksum and a copy of
    // EndOfSendMessageType; both are taken back only when the user accepts.
    // Opens the dialog through editorHooks(): RuntimeError(91) when none is installed.
    void EditSendETXAdvanced();
    // All end characters to zero and the end of message back to "ETX"; the length stays.
    void ClearSendETX();
    // All start characters to zero; the length stays.
    void ClearSendSTX();
    void SetSendETXValue(int32_t pIndex, uint8_t pValue, bool pETXByAscii);
    void SetSendSTXValue(int32_t pIndex, uint8_t pValue, bool pSTXByAscii);

    // Used inside the library only: the dialogs and the image code.
    FrameChars SendSTXChars() const { return sendSTXChars_; }
    FrameChars SendETXChars() const { return sendETXChars_; }
    int32_t SendSTXLength() const { return sendSTXLength_; }
    void SendSTXLength(int32_t value) { sendSTXLength_ = value; }
    int32_t SendETXLength() const { return sendETXLength_; }
    void SendETXLength(int32_t value) { sendETXLength_ = value; }
    // Bytes copied after the ETX; 0 means that the copy is off.
    int32_t CopyBytesCount() const { return copyBytesCount_; }
    void CopyBytesCount(int32_t value) { copyBytesCount_ = value; }
    // The end-of-message checksum, a clsProtocolCSVar.
    VarPtr SendChecksum() const { return sendChecksum_; }
    void SendChecksum(VarPtr value) { sendChecksum_ = std::move(value); }
    // The version byte of the last image loaded.
    int32_t ImageVersion() const { return imageVersion_; }
    void ImageVersion(int32_t value) { imageVersion_ = value; }
    MessagePtr ClipboardMessage() const { return messages_.ClipboardMessage(); }
    // Replaces every message by count empty ones (at least one); for the image reader.
    void ResetMessages(int32_t count) { messages_.ResetToEmpty(count); }
    // The objects Edit is given; ShowHelp uses them.
    void SetHostObjects(itfFBMethod* pFBMethod, InstancesPtr pFBInstances);
    // What an OK of the dialog hands to the host's search: the set's linked
    // operands, then those of every message.
    void AddOperandsToFindOnly(OperandCollection& pOperandsForFindOnly) const;
    // Called by ClearAll, so that an open dialog rebuilds its grid.
    std::function<void()> OnMessagesCleared;

protected:
    // The TCP/IP twin: its own allowed-type order and HasValue rule.
    explicit clsProtocolSendSrv(SetFamily family);

private:
    void createOperands();

    SetFamily family_;
    MessageList messages_;
    FrameChars sendSTXChars_{};
    int32_t sendSTXLength_ = 0;
    FrameChars sendETXChars_{};
    int32_t sendETXLength_ = 0;
    int32_t endOfSendMessageType_ = 1;
    VarPtr sendChecksum_;
    int32_t copyBytesCount_ = 0;
    OperandPtr opMessageNumber_;
    OperandPtr opCopyDestination_;
    OperandPtr opCopyWhenOn_;
    int32_t imageVersion_ = 0;
    EditHostObjects hostObjects_;
};

// The Send set of the TCP/IP family. It differs only in the allowed types of
// OpMessageNumber (memory link first, extended type last) and OpCopyWhenOn
// (also the extended bit), and its image writer leaves HasValue alone when
// it forces a single message.
class clsEthProtocolSendSrv : public clsProtocolSendSrv {
public:
    clsEthProtocolSendSrv() : clsProtocolSendSrv(SetFamily::Ethernet) {}
};

}  // namespace qx
