// The numbered messages of one Send or Scan set and the list operations that
// both sets share: clipboard, append, insert, delete, and the questions the
// dialogs ask before an image is written. Message numbers are 1-based; the
// list is never left empty.
#pragma once
#include <cstdint>

#include "message/protocol_message.h"
#include "platform/basics/collection.h"
#include "platform/basics/variant.h"

namespace qx {

class MessageList {
public:
    // The image holds the count of messages in one byte.
    static constexpr int32_t MaxMessages = 255;
    // The image holds the length of a run of fixed text in one byte.
    static constexpr int32_t MaxFixedTextLength = 255;

    // New messages get this MethodType: 0 for a Send, 1 for a Scan.
    explicit MessageList(int32_t methodType);

    int32_t NumberOfMessages() const { return messages_.Count(); }
    // The message itself, not a copy; a bad number raises the collection's error.
    MessagePtr GetMessage(int32_t pMessageNumber) const { return messages_.Item(pMessageNumber); }

    void CopyMessage(int32_t pMessageNumber);
    // One copy pastes any number of times; with nothing copied, nothing happens.
    void PasteMessage(int32_t pMessageNumber);
    void CutMessage(int32_t pMessageNumber);
    bool AppendMessage();
    bool InsertMessageBefore(int32_t pMessageNumber);
    bool InsertMessage(int32_t pMessageNumber);
    bool DeleteMessage(int32_t pMessageNumber);
    // One empty message; the clipboard stays.
    void ClearAll();
    // Replaces every message by count empty ones (at least one), for the image readers.
    void ResetToEmpty(int32_t count);

    // The number of the last message that is not empty; an empty variant when all are.
    Variant GetNumberOfMessagesToDownload() const;
    // The same as a number, an empty variant counting as 0.
    int32_t CountToDownload() const;
    int32_t GetEmptyMessageNumber() const;
    int32_t GetMessageNumberWithLongSegment() const;
    int32_t GetMessageNumberWithOutConstText() const;

    void AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) const;
    void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) const;

    MessagePtr ClipboardMessage() const { return clipboard_; }

private:
    MessagePtr newMessage() const;
    void replaceMessage(int32_t pMessageNumber, MessagePtr message);
    bool insertAsked(int32_t question, int32_t pMessageNumber, bool behind);
    void refuseAtLimit() const;

    int32_t methodType_;
    Collection<MessagePtr> messages_;
    MessagePtr clipboard_;
};

}  // namespace qx
