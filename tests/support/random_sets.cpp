#include "support/random_sets.h"

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "framework/shared_helpers.h"
#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/basics/ansi.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::test {

namespace {

constexpr int32_t kPositions = clsProtocolMessage::MaxPositions;
constexpr int32_t kMaxFields = clsProtocolMessage::MaxVars;
constexpr int32_t kMaxRun = 255;
constexpr int32_t kMaxMessages = 255;
constexpr int32_t kMaxFrame = 4;
// A field that does not fit the rest of the message is made again this often
// before the message ends with text.
constexpr int32_t kFieldAttempts = 8;

class Dice {
public:
    explicit Dice(std::mt19937& random) : random_(random) {}
    int32_t between(int32_t low, int32_t high) { return std::uniform_int_distribution<int32_t>(low, high)(random_); }
    bool chance(int32_t percent) { return between(0, 99) < percent; }
    template <class T>
    T pick(const std::vector<T>& items) {
        return items[static_cast<size_t>(between(0, static_cast<int32_t>(items.size()) - 1))];
    }

private:
    std::mt19937& random_;
};

// A character as typing leaves it in a message: printable ASCII, a blank now
// and then, or a character of the upper half of the code page. Codes below 32
// are control characters, never text.
wchar_t randomChar(Dice& dice) {
    switch (dice.between(0, 9)) {
        case 0:
            return L' ';
        case 1:
            return fromAnsiByte(static_cast<uint8_t>(dice.between(128, 255)));
        default:
            return static_cast<wchar_t>(dice.between(33, 126));
    }
}

// A text of a field's record: any byte but 0, which would end it.
std::wstring randomFieldText(Dice& dice, int32_t maxLength) {
    std::wstring text;
    int32_t length = dice.between(0, maxLength);
    for (int32_t i = 0; i < length; ++i)
        text.push_back(dice.chance(5) ? fromAnsiByte(static_cast<uint8_t>(dice.between(1, 31))) : randomChar(dice));
    return text;
}

// Links the operand as the picker would, to one of the types the field allows.
void linkRandom(clsOperand& operand, Dice& dice, std::vector<int32_t> types, const std::vector<int32_t>& extended) {
    if (IsExtendedOperandsEnabled()) types.insert(types.end(), extended.begin(), extended.end());
    operand.OperandType(dice.pick(types));
    // Records hold the low 16 bits of an address.
    operand.OperandAddress(dice.between(0, 65535));
    operand.IsNew(false);
}

void fillRandomChecksum(clsProtocolCSVar& checksum, Dice& dice, int32_t maxLength) {
    checksum.CSLength(dice.between(1, std::min(4, maxLength)));
    checksum.FormatView(dice.between(0, 2));
    checksum.CalculationType(dice.between(1, 10));
    checksum.ModulusType(dice.between(1, 3));
    checksum.OffsetFromForward(dice.between(0, 20));
    checksum.OffsetTillBackwards(dice.between(0, 20));
    checksum.STXInCS(dice.chance(50));
    checksum.SpecialAddition(dice.chance(40));
    // Without SpecialAddition the three values are not written, whatever they hold.
    checksum.SA_FromValue(dice.between(0, 255));
    checksum.SA_ToValue(dice.between(0, 255));
    checksum.SA_AddedValue(dice.between(0, 255));
}

VarPtr randomChecksumField(Dice& dice, int32_t room) {
    auto field = std::make_shared<clsProtocolCSVar>();
    fillRandomChecksum(*field, dice, room);
    return field;
}

VarPtr randomSendNumeric(Dice& dice) {
    auto field = std::make_shared<clsProtocolNumericVar>();
    linkRandom(*field->LikedOperand(), dice, {3, 5, 4, 6, 36, 16}, {65, 66, 67});
    field->LeadingZeros(dice.between(0, 2));
    if (dice.chance(35)) {
        field->StreamForm(1);
        field->CopyBytesFormat(dice.pick<int32_t>({0, 1, 2, 3, 5}));
        if (dice.chance(25))
            field->StreamLengthAddress(dice.between(0, 65535));
        else
            field->StreamVectorLength(dice.between(1, 30));
        // The ASCII settings stay in memory but no record holds them.
        if (dice.chance(30)) {
            field->BeforePoint(dice.between(1, 9));
            field->VectorLength(dice.between(1, 3));
        }
    } else {
        field->VarFormat(dice.between(0, 1));
        field->BeforePoint(dice.between(1, 10));
        field->AfterPoint(dice.chance(50) ? 0 : dice.between(1, 4));
        field->PrefixSignFormat(dice.between(0, 2));
        field->VectorLength(dice.chance(70) ? 1 : dice.between(2, 5));
    }
    return field;
}

VarPtr randomBinary(Dice& dice) {
    auto field = std::make_shared<clsProtocolBinaryVar>();
    linkRandom(*field->LikedOperand(), dice, {9, 1, 10, 2, 11}, {64});
    field->TextFor0(randomFieldText(dice, 12));
    field->TextFor1(randomFieldText(dice, 12));
    field->DefaultDisplay(dice.between(0, 1));
    return field;
}

VarPtr randomList(Dice& dice) {
    auto field = std::make_shared<clsProtocolistTextVar>();
    linkRandom(*field->LikedOperand(), dice, {3, 5}, {65, 66});
    // Written first: only writing the texts recomputes Length.
    field->AlignmentStringSize(dice.chance(70) ? 0 : dice.between(1, 30));
    std::vector<std::wstring> texts(static_cast<size_t>(dice.between(1, 8)));
    for (auto& text : texts) text = randomFieldText(dice, 10);
    field->Texts(texts);
    field->DefaultDisplay(dice.between(0, static_cast<int32_t>(texts.size()) - 1));
    return field;
}

VarPtr randomDate(Dice& dice) {
    auto field = std::make_shared<clsProtocolDateVar>();
    field->DateFormatType(dice.between(2, 7));
    return field;
}

VarPtr randomTime(Dice& dice) {
    auto field = std::make_shared<clsProtocolTimeVar>();
    field->TimeFormatType(dice.between(0, 1));
    return field;
}

VarPtr randomSendField(Dice& dice, int32_t room) {
    switch (dice.between(0, 6)) {
        case 0:
        case 1:
            return randomSendNumeric(dice);
        case 2:
            return randomBinary(dice);
        case 3:
            return randomList(dice);
        case 4:
            return randomDate(dice);
        case 5:
            return randomTime(dice);
        default:
            return randomChecksumField(dice, room);
    }
}

VarPtr randomScanNumeric(Dice& dice) {
    auto field = std::make_shared<clsProtocolScanNumericVar>();
    linkRandom(*field->LikedOperand(), dice, {3, 5, 16}, {65, 66, 67});
    // Kept in memory only; no record holds them.
    field->AfterPoint(dice.between(0, 3));
    field->LeadingZeros(dice.between(0, 2));
    int32_t format = dice.between(0, 4);
    if (format >= 3) {
        field->StreamForm(1);
        field->VarFormat(format);
        field->StreamVectorLength(dice.between(1, 30));
        field->CopyBytesFormat(dice.pick<int32_t>({0, 1, 2, 3, 5}));
        field->AddNullToEndOfStream(dice.chance(50));
    } else {
        field->VarFormat(format);
        field->BeforePoint(dice.between(1, 10));
        field->PrefixSignFormat(dice.between(0, 2));
        field->VectorLength(dice.chance(70) ? 1 : dice.between(2, 5));
    }
    // Only the ASCII form writes the decimal-point operand; a stream field
    // that has one loses it on the next load.
    if (dice.chance(40)) linkRandom(*field->DecimalPointOperand(), dice, {3, 5, 16}, {65, 66, 67});
    return field;
}

VarPtr randomScanField(Dice& dice, int32_t room) {
    if (dice.chance(80)) return randomScanNumeric(dice);
    return randomChecksumField(dice, room);
}

// A message being laid out, and the most bytes its part of the image can take.
struct Layout {
    Layout() : text(kPositions, L' ') { controls.fill(clsProtocolMessage::NoControlChar); }
    std::wstring text;
    clsProtocolMessage::ControlCharArray controls{};
    std::vector<VarPtr> fields;
    int32_t position = 0;
    size_t imageBytes = 0;
    int32_t messageLength = 0;
};

struct ImageCosts {
    size_t messageHeader;
    size_t segmentEntry;
    bool recordsInDataArea;
};

// Both images: a message starts even (one byte of padding at most), has a
// four-byte header and one table entry a segment. A text block is 0, 0, L, 0
// and its values, starting even; so are the records of binary and list fields.
constexpr ImageCosts kSendCosts{1 + 4, 18, true};
constexpr ImageCosts kScanCosts{1 + 4, 24, false};

void addTextRun(Layout& layout, Dice& dice, int32_t length, const ImageCosts& costs) {
    if (length <= 0) return;
    // Some runs are mostly control characters, most hold a few.
    int32_t controlPercent = dice.chance(10) ? 60 : 8;
    for (int32_t i = 0; i < length; ++i) {
        auto at = static_cast<size_t>(layout.position++);
        if (dice.chance(controlPercent))
            layout.controls[at] = dice.between(0, 31);
        else
            layout.text[at] = randomChar(dice);
    }
    layout.imageBytes += costs.segmentEntry + 1 + 4 + static_cast<size_t>(length);
}

template <class MakeField>
Layout layoutMessage(Dice& dice, const RandomSetShape& shape, const ImageCosts& costs, MakeField makeField) {
    Layout layout;
    layout.imageBytes = costs.messageHeader;
    const int32_t maxRun = std::clamp(shape.MaxTextRun, 0, kMaxRun);
    const int32_t wanted = dice.between(0, std::clamp(shape.MaxFieldsPerMessage, 0, kMaxFields));
    // A run of text is always followed by a field or ends the message, so
    // that two runs never meet and make one longer than a byte can count.
    for (;;) {
        int32_t room = kPositions - layout.position;
        int32_t run =
            dice.chance(5) ? dice.between(0, std::min(kMaxRun, room)) : dice.between(0, std::min(maxRun, room));
        // A message without fields is one run of text.
        if (wanted == 0) run = std::max(run, 1);
        addTextRun(layout, dice, run, costs);
        if (static_cast<int32_t>(layout.fields.size()) == wanted) break;
        room = kPositions - layout.position;
        VarPtr field;
        for (int32_t attempt = 0; attempt < kFieldAttempts && room > 0 && !field; ++attempt) {
            VarPtr candidate = makeField(dice, room);
            if (candidate->Length() >= 1 && candidate->Length() <= room) field = candidate;
        }
        if (!field) break;
        field->StartPosition(layout.position);
        layout.position += field->Length();
        layout.imageBytes += costs.segmentEntry;
        if (costs.recordsInDataArea) {
            int32_t type = field->GetVarSegmentType();
            if (type == segment::SendBinary || type == segment::SendList)
                layout.imageBytes += 1 + field->GetVarBinData(0).size();
        }
        layout.fields.push_back(field);
    }
    // Nothing in it would make the message empty; the one character it then
    // gets is its own run of text.
    bool hasText = layout.text.find_first_not_of(L' ') != std::wstring::npos;
    bool hasControl = std::any_of(layout.controls.begin(), layout.controls.end(),
                                  [](int32_t code) { return code != clsProtocolMessage::NoControlChar; });
    if (layout.fields.empty() && !hasText && !hasControl) {
        layout.text[0] = static_cast<wchar_t>(dice.between(33, 126));
        layout.imageBytes += costs.segmentEntry + 1 + 4 + 1;
    }
    return layout;
}

void storeLayout(clsProtocolMessage& message, const Layout& layout) {
    message.MessageString(layout.text);
    message.ControlChars(layout.controls);
    for (const VarPtr& field : layout.fields) message.AddVar(field);
    message.MessageLength(layout.messageLength);
}

// How many messages to download: mostly a few, now and then none.
int32_t messageCount(Dice& dice, const RandomSetShape& shape) {
    int32_t most = std::clamp(shape.MaxMessages, 0, kMaxMessages);
    int32_t least = std::clamp(shape.MinMessages, 0, most);
    if (least == 0 && (most == 0 || dice.chance(3))) return 0;
    return dice.between(std::max(least, 1), most);
}

// Lays out messages until the count or the image's size is reached.
template <class MakeField>
std::vector<Layout> layoutMessages(Dice& dice, const RandomSetShape& shape, const ImageCosts& costs, size_t headerBytes,
                                   MakeField makeField) {
    const int32_t count = messageCount(dice, shape);
    // The header, the spare or rounding byte behind the last message.
    size_t imageBytes = headerBytes + 1;
    std::vector<Layout> layouts;
    for (int32_t i = 0; i < count; ++i) {
        Layout layout = layoutMessage(dice, shape, costs, makeField);
        // Each message also has its entry of 2 bytes in the table of offsets.
        size_t cost = layout.imageBytes + 2;
        if (imageBytes + cost > shape.MaxImageSize) break;
        imageBytes += cost;
        layouts.push_back(std::move(layout));
    }
    return layouts;
}

template <class Set>
void storeMessages(Set& set, const std::vector<Layout>& layouts, Dice& dice, const RandomSetShape& shape) {
    for (size_t i = 0; i < layouts.size(); ++i) {
        if (i > 0) set.AppendMessage();
        storeLayout(*set.GetMessage(static_cast<int32_t>(i) + 1), layouts[i]);
    }
    int32_t trailing = dice.between(0, std::max(shape.MaxTrailingEmpty, 0));
    for (int32_t i = 0; i < trailing && set.NumberOfMessages() < kMaxMessages; ++i) set.AppendMessage();
}

// Values and typed marks of all four entries, whether in use or not: the
// image holds them all.
template <class SetValue>
void randomFrame(Dice& dice, SetValue setValue) {
    for (int32_t i = 0; i < kMaxFrame; ++i) setValue(i, static_cast<uint8_t>(dice.between(0, 255)), dice.chance(50));
}

}  // namespace

void fillRandomSendSet(clsProtocolSendSrv& set, std::mt19937& random, const RandomSetShape& shape) {
    Dice dice(random);
    randomFrame(dice, [&](int32_t i, uint8_t value, bool typed) { set.SetSendSTXValue(i, value, typed); });
    randomFrame(dice, [&](int32_t i, uint8_t value, bool typed) { set.SetSendETXValue(i, value, typed); });
    set.SendSTXLength(dice.between(0, kMaxFrame));
    set.SendETXLength(dice.between(0, kMaxFrame));
    set.EndOfSendMessageType(dice.between(1, 3));
    fillRandomChecksum(dynamic_cast<clsProtocolCSVar&>(*set.SendChecksum()), dice, 4);

    // The copy after the ETX: its operands count only when it is on, but the
    // dialog may have linked them either way.
    set.CopyBytesCount(dice.chance(50) ? 0 : dice.between(1, 255));
    if (set.CopyBytesCount() > 0 || dice.chance(30)) {
        linkRandom(*set.OpCopyDestination(), dice, {3, 5, 16}, {65, 66, 67});
        linkRandom(*set.OpCopyWhenOn(), dice, {1}, {});
    }

    // The message number: a memory operand or a constant of the host's table.
    clsOperand& number = *set.OpMessageNumber();
    if (dice.chance(50)) {
        linkRandom(number, dice, {3}, {65});
        number.OperandMode(1);
    } else {
        number.OperandType(dice.chance(50) ? 37 : 34);
        number.OperandMode(2);
        int32_t address = 0;
        number.AllocateConstantAddress(address);
        number.OperandAddress(address);
        number.OperandConstantValue(static_cast<int64_t>(dice.between(-100000, 100000)) * 10000);
        number.HasValue(true);
        number.IsNew(false);
    }

    auto makeField = [](Dice& d, int32_t room) { return randomSendField(d, room); };
    const size_t headerBytes = 58;
    storeMessages(set, layoutMessages(dice, shape, kSendCosts, headerBytes, makeField), dice, shape);
}

void fillRandomScanSet(clsProtocolScanSrv& set, std::mt19937& random, const RandomSetShape& shape) {
    Dice dice(random);
    randomFrame(dice, [&](int32_t i, uint8_t value, bool typed) { set.SetScanSTXValue(i, value, typed); });
    randomFrame(dice, [&](int32_t i, uint8_t value, bool typed) { set.SetScanETXValue(i, value, typed); });
    set.ScanSTXLength(dice.between(0, kMaxFrame));
    set.ScanETXLength(dice.between(0, kMaxFrame));
    set.EndOfScanMessageType(dice.between(1, 3));
    fillRandomChecksum(dynamic_cast<clsProtocolCSVar&>(*set.ScanChecksum()), dice, 4);
    // The image keeps the low 16 bits of both terminators.
    set.MessageLengthValue(dice.chance(20) ? dice.between(65536, 200000) : dice.between(0, 500));
    set.SilenceTimeValue(dice.chance(20) ? dice.between(65536, 200000) : dice.between(0, 10000));

    auto makeField = [](Dice& d, int32_t room) { return randomScanField(d, room); };
    const size_t headerBytes = 36;
    std::vector<Layout> layouts = layoutMessages(dice, shape, kScanCosts, headerBytes, makeField);
    // The stored length holds the frame too, in one byte.
    const int32_t frame = set.ScanSTXLength() + set.ScanETXLength();
    for (Layout& layout : layouts) layout.messageLength = dice.chance(30) ? 0 : dice.between(0, 255 - frame);
    storeMessages(set, layouts, dice, shape);
}

}  // namespace qx::test
