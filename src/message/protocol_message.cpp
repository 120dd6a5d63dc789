#include "message/protocol_message.h"

#include <algorithm>

#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_numeric_var.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_services.h"

namespace qx {

namespace {

constexpr wchar_t Blank = L' ';
constexpr int32_t messageFieldTooLong = 158;
constexpr int32_t messageFieldPastEnd = 159;
constexpr int32_t messageTooManyFields = 160;
// Image values below this are control characters.
constexpr uint8_t FirstPrintable = 32;

// Positions index the control characters; one outside the row is a subscript error.
size_t checkedPosition(int32_t position) {
    if (position < 0 || position >= clsProtocolMessage::MaxPositions) raiseError(err::SubscriptOutOfRange);
    return static_cast<size_t>(position);
}

}  // namespace

clsProtocolMessage::clsProtocolMessage()
    : receiveBitExtended_(IsExtendedOperandsEnabled()), text_(MaxPositions, Blank) {
    controlChars_.fill(NoControlChar);
}

const OperandPtr& clsProtocolMessage::receiveBit() const {
    if (!receiveBit_) {
        receiveBit_ = newOperand();
        receiveBit_->AddAllowedType(1, 1, true);
        if (receiveBitExtended_) receiveBit_->AddAllowedType(1, 64, true);
        receiveBit_->OperandType(1);
        receiveBit_->OperandMode(1);
        receiveBit_->IsNew(true);
        receiveBit_->OperandFormat(3);
    }
    return receiveBit_;
}

std::wstring clsProtocolMessage::EditReceiveBit() {
    receiveBit()->EditOperand();
    return GetOperandDisplayText(*receiveBit());
}

std::wstring clsProtocolMessage::GetReceiveBitAsString() const { return GetOperandDisplayText(*receiveBit()); }

bool clsProtocolMessage::IsEmpty() const {
    const bool noText = text_.findLastNot(Blank) == std::wstring::npos;
    return noText && Vars.Count() == 0 && GetLastControlCharEnd() == -1;
}

MessagePtr clsProtocolMessage::GetReplica() const {
    auto copy = std::make_shared<clsProtocolMessage>();
    copy->text_ = text_;
    copy->controlChars_ = controlChars_;
    copy->messageLength_ = messageLength_;
    copy->methodType_ = methodType_;
    copy->receiveBitExtended_ = receiveBitExtended_;
    if (receiveBit_) copy->receiveBit_ = CloneOperand(*receiveBit_);
    for (const VarPtr& var : Vars) copy->Vars.Add(var->GetReplica());
    return copy;
}

void clsProtocolMessage::UnSelectAllVars() {
    for (const VarPtr& var : Vars) var->IsSelected(false);
}

void clsProtocolMessage::AddVar(VarPtr pVar) { Vars.Add(std::move(pVar)); }

VarPtr clsProtocolMessage::GetVar(int32_t pVarNumber) const { return Vars.Item(pVarNumber); }

void clsProtocolMessage::DeleteSelectedVar() {
    for (int32_t i = 1; i <= Vars.Count(); ++i) {
        if (Vars.Item(i)->IsSelected()) {
            Vars.Remove(i);
            return;
        }
    }
}

VarPtr clsProtocolMessage::GetVarByStartPosition(int32_t pPosition) const {
    VarPtr found;
    for (const VarPtr& var : Vars)
        if (var->StartPosition() == pPosition) found = var;
    return found;
}

int32_t clsProtocolMessage::GetLastVarStartPosition() const {
    // Without fields the place 0 is the collection's invalid index error.
    return Vars.Item(Vars.Count())->StartPosition();
}

void clsProtocolMessage::DeleteControlChar(int32_t pPosition) {
    controlChars_[checkedPosition(pPosition)] = NoControlChar;
}

bool clsProtocolMessage::ControlCharHitTest(int32_t pPosition) const {
    return controlChars_[checkedPosition(pPosition)] >= 0;
}

bool clsProtocolMessage::HitTest(int32_t pPosition) {
    bool hit = false;
    for (const VarPtr& var : Vars) {
        const bool under = var->HitTest(pPosition);
        var->IsSelected(under);
        hit = hit || under;
    }
    return hit;
}

void clsProtocolMessage::AddControlChar(int32_t pPosition, int32_t pControlChar) {
    const size_t at = checkedPosition(pPosition);
    controlChars_[at] = pControlChar;
    if (at < text_.row().size()) text_.rowData()[at] = Blank;
}

void clsProtocolMessage::DeleteByPosition(int32_t pPosition) {
    const size_t at = checkedPosition(pPosition);
    for (const VarPtr& var : Vars) {
        if (var->StartPosition() <= pPosition) {
            if (var->HitTest(pPosition)) {
                systemBeep();
                return;
            }
        } else {
            var->StartPosition(var->StartPosition() - 1);
        }
    }
    if (text_.size() == MaxPositions) {
        // A whole row, as messages hold it: moved in place.
        wchar_t* row = text_.rowData();
        std::copy(row + at + 1, row + MaxPositions, row + at);
        row[MaxPositions - 1] = Blank;
    } else {
        const std::wstring text = text_.str();
        const std::wstring before = text.substr(0, std::min(at, text.size()));
        const std::wstring after = at + 1 < text.size() ? text.substr(at + 1) : std::wstring();
        text_.assign(before + after + Blank);
    }
    if (at == MaxPositions - 1) {
        controlChars_[at] = NoControlChar;
    } else {
        // The entry at 499 keeps its value, so a control character there now
        // stands at 498 and 499. Typing does not mirror this; it is meant so.
        for (size_t i = at; i < MaxPositions - 1; ++i) controlChars_[i] = controlChars_[i + 1];
    }
}

void clsProtocolMessage::InsertChar(int32_t pPosition, const std::wstring& pChar) {
    if (pPosition == MaxPositions) {
        // Typing behind the last position overwrites it and moves nothing.
        if (!pChar.empty() && text_.size() >= MaxPositions) text_.rowData()[MaxPositions - 1] = pChar[0];
        return;
    }
    const size_t at = checkedPosition(pPosition);
    if (text_.size() == MaxPositions && pChar.size() == 1) {
        // One character into a whole row, as typing does: moved in place.
        wchar_t* row = text_.rowData();
        std::copy_backward(row + at, row + MaxPositions - 1, row + MaxPositions);
        row[at] = pChar[0];
    } else {
        const std::wstring text = text_.str();
        const std::wstring before = text.substr(0, std::min(at, text.size()));
        const std::wstring kept = at < text.size() ? text.substr(at, MaxPositions - 1 - at) : L"";
        text_.assign(before + pChar + kept);
    }

    for (int32_t i = 1; i <= Vars.Count(); ++i) {
        const VarPtr var = Vars.Item(i);
        if (var->StartPosition() < pPosition) continue;
        var->StartPosition(var->StartPosition() + 1);
        if (var->StartPosition() + var->Length() > MaxPositions) {
            // Fields are in position order, so the one pushed out is the last.
            systemBeep();
            Vars.Remove(Vars.Count());
        }
    }
    for (size_t i = MaxPositions - 1; i > at; --i) controlChars_[i] = controlChars_[i - 1];
    controlChars_[at] = NoControlChar;
}

bool clsProtocolMessage::EditVar(int32_t pPosition) {
    int32_t place = 0;
    for (int32_t i = 1; i <= Vars.Count(); ++i) {
        if (Vars.Item(i)->HitTest(pPosition)) {
            place = i;
            break;
        }
    }
    if (place == 0) {
        if (Vars.Count() >= MaxVars) {
            ShowMessage(messageTooManyFields, {std::to_wstring(MaxVars)});
            return false;
        }
        auto fresh = std::make_shared<clsProtocolNumericVar>();
        fresh->StartPosition(pPosition);
        VarPtr field = fresh->EditVar(methodType_);
        const int32_t length = field->Length();
        if (length > MaxPositions) {
            ShowMessage(messageFieldTooLong, {std::to_wstring(MaxPositions)});
            return false;
        }
        if (length == 0) return false;
        if (field->IsCanceled()) return true;
        if (field->StartPosition() + length > MaxPositions) {
            ShowMessage(messageFieldPastEnd);
            return true;
        }
        int32_t before = Vars.Count() + 1;
        for (int32_t i = 1; i <= Vars.Count(); ++i) {
            if (Vars.Item(i)->StartPosition() > field->StartPosition()) {
                before = i;
                break;
            }
        }
        InsertBlanks(pPosition, length);
        Vars.Insert(before, std::move(field));
        return true;
    }

    const VarPtr old = Vars.Item(place);
    const int32_t oldLength = old->Length();
    VarPtr field = old->EditVar(methodType_);
    const int32_t length = field->Length();
    if (length > MaxPositions) {
        ShowMessage(messageFieldTooLong, {std::to_wstring(MaxPositions)});
        return false;
    }
    if (length == 0) return false;
    if (field->StartPosition() + length > MaxPositions) {
        ShowMessage(messageFieldPastEnd);
        return true;
    }
    if (field->IsCanceled()) return true;
    // Out of the list while the blanks go in, so that the field itself stays put.
    Vars.Remove(place);
    if (length > oldLength) InsertBlanks(pPosition, length - oldLength);
    Vars.Insert(place, std::move(field));
    return true;
}

void clsProtocolMessage::InsertBlanks(int32_t pPosition, int32_t count) {
    for (int32_t i = 0; i < count; ++i) InsertChar(pPosition, std::wstring(1, Blank));
}

bool clsProtocolMessage::IsControlCharsExistAfterPosition(int32_t pPosition) const {
    for (int32_t i = pPosition; i < MaxPositions; ++i)
        if (controlChars_[checkedPosition(i)] != NoControlChar) return true;
    return false;
}

bool clsProtocolMessage::IsMessageContainCSFields() const {
    for (const VarPtr& var : Vars)
        if (dynamic_cast<clsProtocolCSVar*>(var.get())) return true;
    return false;
}

bool clsProtocolMessage::IsMessageContainConstText() const {
    std::vector<SegmentSpan> spans;
    segmentSpans(spans);
    for (const SegmentSpan& span : spans)
        if (span.SegmentKind == MessageSegment::TextKind) return true;
    return false;
}

void clsProtocolMessage::AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) {
    for (const VarPtr& var : Vars) var->AddOperandsToFindOnlyCollection(pOperandsForFindOnly);
}

void clsProtocolMessage::ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) {
    for (const VarPtr& var : Vars) var->ReplaceOperands(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
}

void clsProtocolMessage::GetVarPropsAt(int32_t pVarNumber, int32_t& pStartPosition, int32_t& pLength, bool& pIsSelected,
                                       std::wstring& pDisplayString, std::wstring& pToolTipText,
                                       uint32_t& pVarBackColor, uint32_t& pVarForeColor) const {
    Vars.Item(pVarNumber)
        ->GetVarPropsEX(pStartPosition, pLength, pIsSelected, pDisplayString, pToolTipText, pVarBackColor,
                        pVarForeColor);
}

wchar_t clsProtocolMessage::charAt(int32_t position) const {
    const std::wstring_view row = text_.row();
    if (position < 0 || static_cast<size_t>(position) >= row.size()) return Blank;
    return row[static_cast<size_t>(position)];
}

int32_t clsProtocolMessage::trimmedLengthFrom(int32_t position) const {
    const size_t last = text_.findLastNot(Blank);
    if (last == std::wstring::npos) return 0;
    return std::max<int32_t>(0, static_cast<int32_t>(last) + 1 - position);
}

void clsProtocolMessage::segmentSpans(std::vector<SegmentSpan>& spans) const {
    spans.clear();
    auto addText = [&](int32_t start, int32_t count) {
        // Every position of a run lies in the row.
        if (start < 0 || count > MaxPositions - start) raiseError(err::SubscriptOutOfRange);
        spans.push_back({MessageSegment::TextKind, start, count, nullptr});
    };

    if (Vars.Count() == 0) {
        const int32_t length = std::max(GetLastControlCharEnd(), trimmedLengthFrom(0));
        // A message that holds nothing has an empty range to build, which is
        // the subscript error; callers ask IsEmpty first.
        if (length <= 0) raiseError(err::SubscriptOutOfRange);
        addText(0, length);
        return;
    }

    int32_t q = 0;
    for (const VarPtr& var : Vars) {
        const int32_t start = var->StartPosition();
        if (start > q) addText(q, start - q);
        spans.push_back({MessageSegment::VarKind, start, 0, var});
        q = start + var->Length();
    }
    // Trailing blanks belong to no segment unless a control character stands behind them.
    const int32_t rest = std::max(GetLastControlCharEnd() - q, trimmedLengthFrom(q));
    if (rest > 0) addText(q, rest);
}

void clsProtocolMessage::textBytes(int32_t start, int32_t count, uint8_t* out) const {
    if (start < 0 || count < 0 || count > MaxPositions - start) raiseError(err::SubscriptOutOfRange);
    const size_t from = static_cast<size_t>(start);
    const std::wstring_view row = text_.row();
    const size_t stored = from < row.size() ? std::min(row.size() - from, size_t(count)) : 0;
    toAnsiBytes(row.substr(std::min(from, row.size()), stored), out);
    std::fill(out + stored, out + count, static_cast<uint8_t>(Blank));
    // Written without a branch a position, so that the loop vectorises; a
    // code that is no byte is found once the run is through.
    bool notAByte = false;
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        const int32_t code = controlChars_[from + i];
        const bool none = code == NoControlChar;
        notAByte |= !none && static_cast<uint32_t>(code) > 0xFF;
        out[i] = none ? out[i] : static_cast<uint8_t>(code);
    }
    if (notAByte) raiseError(err::Overflow);
}

void clsProtocolMessage::setTextBytes(int32_t start, const uint8_t* values, int32_t count) {
    if (start < 0 || count < 0 || count > MaxPositions - start) raiseError(err::SubscriptOutOfRange);
    const size_t from = static_cast<size_t>(start);
    if (text_.row().size() < from + static_cast<size_t>(count)) text_.fillRow(Blank);
    wchar_t* text = text_.rowData() + from;
    int32_t* controls = controlChars_.data() + from;
    const size_t n = static_cast<size_t>(count);
    // Loops without a branch a position, so that they vectorise. Windows-1252
    // keeps ASCII as it is, so a run of ASCII needs no table.
    uint8_t allBits = 0;
    for (size_t i = 0; i < n; ++i) {
        allBits |= values[i];
        controls[i] = values[i] < FirstPrintable ? values[i] : NoControlChar;
    }
    if (allBits < 0x80) {
        for (size_t i = 0; i < n; ++i) text[i] = values[i] < FirstPrintable ? Blank : static_cast<wchar_t>(values[i]);
    } else {
        const auto& toWide = ansiToWideTable();
        for (size_t i = 0; i < n; ++i) text[i] = values[i] < FirstPrintable ? Blank : toWide[values[i]];
    }
}

std::vector<MessageSegment> clsProtocolMessage::GetSegments() const {
    std::vector<SegmentSpan> spans;
    segmentSpans(spans);
    std::vector<MessageSegment> segments;
    segments.reserve(spans.size());
    for (SegmentSpan& span : spans) {
        MessageSegment segment;
        segment.SegmentKind = span.SegmentKind;
        segment.StartPosition = span.StartPosition;
        segment.Var = std::move(span.Var);
        segment.Chars.reserve(static_cast<size_t>(span.Count));
        for (int32_t p = span.StartPosition; p < span.StartPosition + span.Count; ++p) {
            const int32_t code = controlChars_[static_cast<size_t>(p)];
            segment.Chars.push_back(code != NoControlChar ? code : toAnsiByte(charAt(p)));
        }
        segments.push_back(std::move(segment));
    }
    return segments;
}

int32_t clsProtocolMessage::GetLastControlCharEnd() const {
    for (int32_t i = MaxPositions - 1; i >= 0; --i)
        if (controlChars_[static_cast<size_t>(i)] != NoControlChar) return i + 1;
    return -1;
}

}  // namespace qx
