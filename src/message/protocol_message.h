// One message of a Send or a Scan: a row of 500 character positions (0 to
// 499) in which fixed text, control characters and fields lie side by side.
// The message owns the rules by which positions move when something is
// inserted or deleted; the image code reads it as a list of segments.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "message/field_list.h"
#include "message/itf_protocol_var.h"
#include "message/row_text.h"
#include "platform/basics/collection.h"
#include "platform/host/operand.h"

namespace qx {

class clsProtocolMessage;
using MessagePtr = std::shared_ptr<clsProtocolMessage>;

// A message read by position: a run of fixed text and control characters,
// or one field.
struct MessageSegment {
    static constexpr int32_t TextKind = 0;
    static constexpr int32_t VarKind = 1;

    int32_t SegmentKind = TextKind;
    // Kind 0: one value a position, the control character code or else the
    // ANSI code of the character. Empty for kind 1.
    std::vector<int32_t> Chars;
    // Kind 1: the field itself, shared with the message.
    VarPtr Var;
    int32_t StartPosition = 0;
};

// A segment as the image writers walk it: where it lies and, for a field,
// the field; the bytes of a text run come from textBytes, so that walking a
// message builds no list of characters.
struct SegmentSpan {
    int32_t SegmentKind = MessageSegment::TextKind;
    int32_t StartPosition = 0;
    // Positions of a text run; 0 for a field.
    int32_t Count = 0;
    VarPtr Var;
};

class clsProtocolMessage {
public:
    static constexpr int32_t MaxPositions = 500;
    static constexpr int32_t MaxVars = 50;
    static constexpr int32_t NoControlChar = -1;
    using ControlCharArray = std::array<int32_t, MaxPositions>;

    clsProtocolMessage();

    // The operand object itself; no image stores it.
    OperandPtr ReceiveBit() const { return receiveBit(); }
    // Stored as given: the caller hands 500 characters.
    void MessageString(const std::wstring& pMessageString) { text_.assign(pMessageString); }
    std::wstring MessageString() const { return text_.str(); }
    int32_t NumberOfVars() const { return Vars.Count(); }
    // Runs the host's picker on ReceiveBit and answers its display text.
    std::wstring EditReceiveBit();
    std::wstring GetReceiveBitAsString() const;
    bool IsEmpty() const;
    // A deep copy: it shares no field and no operand with this message.
    MessagePtr GetReplica() const;
    void UnSelectAllVars();
    // Appends as it is, for the image loaders, which add in position order.
    void AddVar(VarPtr pVar);
    // 1-based; a bad place raises the collection's error.
    VarPtr GetVar(int32_t pVarNumber) const;
    // The positions the field held stay as blanks and are fixed text from then on.
    void DeleteSelectedVar();
    VarPtr GetVarByStartPosition(int32_t pPosition) const;
    int32_t GetLastVarStartPosition() const;
    void DeleteControlChar(int32_t pPosition);
    bool ControlCharHitTest(int32_t pPosition) const;
    // Selects the field under the position, unselects all others.
    bool HitTest(int32_t pPosition);
    // Edits the field under the position in the field dialog, or makes a new
    // one there; true when the editor must redraw the row. A new field pushes
    // what follows by its length; a field that grows pushes by the growth.
    // Refused, with the host's message, beyond 50 fields or 500 positions.
    bool EditVar(int32_t pPosition);
    // Overwrites the position and moves nothing.
    void AddControlChar(int32_t pPosition, int32_t pControlChar);
    // The Delete key: beeps and deletes nothing under a field.
    void DeleteByPosition(int32_t pPosition);
    // Typing: 500 overwrites the last position; otherwise everything behind moves right by one.
    void InsertChar(int32_t pPosition, const std::wstring& pChar);
    bool IsControlCharsExistAfterPosition(int32_t pPosition) const;
    bool IsMessageContainCSFields() const;
    bool IsMessageContainConstText() const;
    void AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly);
    void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress);

    // Used inside the library only.
    int32_t MessageLength() const { return messageLength_; }
    void MessageLength(int32_t value) { messageLength_ = value; }
    ControlCharArray ControlChars() const { return controlChars_; }
    void ControlChars(const ControlCharArray& value) { controlChars_ = value; }
    int32_t MethodType() const { return methodType_; }
    void MethodType(int32_t value) { methodType_ = value; }
    void GetVarPropsAt(int32_t pVarNumber, int32_t& pStartPosition, int32_t& pLength, bool& pIsSelected,
                       std::wstring& pDisplayString, std::wstring& pToolTipText, uint32_t& pVarBackColor,
                       uint32_t& pVarForeColor) const;
    // A message that holds nothing raises RuntimeError(9): test IsEmpty first.
    std::vector<MessageSegment> GetSegments() const;
    // The same segments without their characters, into a list the caller
    // keeps and reuses. Raises as GetSegments does.
    void segmentSpans(std::vector<SegmentSpan>& spans) const;
    // The image bytes of count positions from start: the control character's
    // code where there is one, else the ANSI byte of the character (a blank
    // past the stored text). A position outside the row is a subscript
    // error; a control character code that is no byte, an overflow.
    void textBytes(int32_t start, int32_t count, uint8_t* out) const;
    // The way back, for the image readers: count image values from start; a
    // value of 32 or more is the character of that ANSI byte, a smaller one a
    // control character whose position stays blank. A position outside the
    // row is a subscript error.
    void setTextBytes(int32_t start, const uint8_t* values, int32_t count);
    // One behind the last control character, or -1 when there is none.
    int32_t GetLastControlCharEnd() const;
    void InsertBlanks(int32_t pPosition, int32_t count);

private:
    wchar_t charAt(int32_t position) const;
    int32_t trimmedLengthFrom(int32_t position) const;

    // Made when first asked for, as the host's setting was when the message
    // was made: no image holds it, so a loaded message needs none.
    const OperandPtr& receiveBit() const;
    mutable OperandPtr receiveBit_;
    bool receiveBitExtended_;
    FieldList Vars;
    RowText text_;
    int32_t methodType_ = 0;
    ControlCharArray controlChars_;
    int32_t messageLength_ = 0;
};

}  // namespace qx
