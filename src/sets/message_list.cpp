#include "sets/message_list.h"

#include <algorithm>
#include <memory>
#include <string>

#include "framework/runtime_catalogue.h"

namespace qx {

namespace {

// Host messages of the list operations.
constexpr int32_t kMessageAtLimit = 154;
constexpr int32_t kAskInsertBefore = 155;
constexpr int32_t kAskInsertBehind = 156;
constexpr int32_t kAskDelete = 157;
constexpr int32_t kAnswerYes = 1;

bool isBlankText(const std::wstring& text) { return text.find_first_not_of(L' ') == std::wstring::npos; }

}  // namespace

MessageList::MessageList(int32_t methodType) : methodType_(methodType) { messages_.Add(newMessage()); }

MessagePtr MessageList::newMessage() const {
    auto message = std::make_shared<clsProtocolMessage>();
    message->MethodType(methodType_);
    return message;
}

void MessageList::CopyMessage(int32_t pMessageNumber) { clipboard_ = messages_.Item(pMessageNumber)->GetReplica(); }

void MessageList::PasteMessage(int32_t pMessageNumber) {
    if (!clipboard_) return;
    replaceMessage(pMessageNumber, clipboard_->GetReplica());
}

void MessageList::CutMessage(int32_t pMessageNumber) {
    CopyMessage(pMessageNumber);
    replaceMessage(pMessageNumber, newMessage());
}

// Remove, then put the new one back at the same place: before the message
// that moved up into it, or at the end when the removed one was the last.
void MessageList::replaceMessage(int32_t pMessageNumber, MessagePtr message) {
    messages_.Remove(pMessageNumber);
    if (messages_.Count() > 0 && pMessageNumber - 1 != messages_.Count())
        messages_.Add(std::move(message), L"", pMessageNumber);
    else
        messages_.Add(std::move(message));
}

void MessageList::refuseAtLimit() const { ShowMessage(kMessageAtLimit, {std::to_wstring(MaxMessages)}); }

bool MessageList::AppendMessage() {
    if (messages_.Count() >= MaxMessages) {
        refuseAtLimit();
        return false;
    }
    messages_.Add(newMessage());
    return true;
}

bool MessageList::insertAsked(int32_t question, int32_t pMessageNumber, bool behind) {
    if (messages_.Count() >= MaxMessages) {
        refuseAtLimit();
        return false;
    }
    if (ShowMessage(question) != kAnswerYes) return false;
    if (behind)
        messages_.Add(newMessage(), L"", std::nullopt, pMessageNumber);
    else
        messages_.Add(newMessage(), L"", pMessageNumber);
    return true;
}

bool MessageList::InsertMessageBefore(int32_t pMessageNumber) {
    return insertAsked(kAskInsertBefore, pMessageNumber, false);
}

bool MessageList::InsertMessage(int32_t pMessageNumber) { return insertAsked(kAskInsertBehind, pMessageNumber, true); }

bool MessageList::DeleteMessage(int32_t pMessageNumber) {
    if (ShowMessage(kAskDelete) != kAnswerYes) return false;
    messages_.Remove(pMessageNumber);
    while (messages_.Count() == 0) messages_.Add(newMessage());
    return true;
}

void MessageList::ClearAll() { ResetToEmpty(1); }

void MessageList::ResetToEmpty(int32_t count) {
    messages_.Clear();
    // An image loads all its messages at once: they are made in one block,
    // which each of them keeps alive, instead of a large allocation each.
    const size_t made = static_cast<size_t>(std::max(count, 1));
    const std::shared_ptr<clsProtocolMessage[]> block = std::make_shared<clsProtocolMessage[]>(made);
    messages_.Reserve(static_cast<int32_t>(made));
    for (size_t i = 0; i < made; ++i) {
        block[i].MethodType(methodType_);
        messages_.Add(MessagePtr(block, &block[i]));
    }
}

Variant MessageList::GetNumberOfMessagesToDownload() const {
    for (int32_t number = messages_.Count(); number >= 1; --number)
        if (!messages_.Item(number)->IsEmpty()) return Variant(number);
    return Variant();
}

int32_t MessageList::CountToDownload() const { return GetNumberOfMessagesToDownload().ToI4(); }

// The end of the range is never empty, so this finds gaps.
int32_t MessageList::GetEmptyMessageNumber() const {
    int32_t last = CountToDownload();
    for (int32_t number = 1; number <= last; ++number)
        if (messages_.Item(number)->IsEmpty()) return number;
    return 0;
}

int32_t MessageList::GetMessageNumberWithLongSegment() const {
    int32_t last = CountToDownload();
    for (int32_t number = 1; number <= last; ++number) {
        const auto& message = messages_.Item(number);
        // A gap has no segment at all; GetEmptyMessageNumber is the check for it.
        if (message->IsEmpty()) continue;
        for (const auto& segment : message->GetSegments())
            if (segment.SegmentKind == MessageSegment::TextKind &&
                static_cast<int32_t>(segment.Chars.size()) > MaxFixedTextLength)
                return number;
    }
    return 0;
}

// The last message of the range is not looked at: only messages that some
// other message follows are asked.
int32_t MessageList::GetMessageNumberWithOutConstText() const {
    int32_t last = CountToDownload();
    for (int32_t number = 1; number <= last - 1; ++number) {
        const auto& message = messages_.Item(number);
        if (isBlankText(message->MessageString()) && !message->IsControlCharsExistAfterPosition(0)) return number;
    }
    return 0;
}

void MessageList::AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) const {
    for (const auto& message : messages_) message->AddOperandsToFindOnlyCollection(pOperandsForFindOnly);
}

void MessageList::ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) const {
    for (const auto& message : messages_) message->ReplaceOperands(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
}

}  // namespace qx
