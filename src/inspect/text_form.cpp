#include "inspect/text_form.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "framework/shared_helpers.h"
#include "message/field_state.h"
#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/basics/text_place.h"
#include "platform/host/host_services.h"
#include "sets/constant_bytes.h"
#include "sets/image_blocks.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "inspect/text_escapes.h"

namespace qx::textform {

namespace {

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;

// ---------------------------------------------------------------------------
// Names of the numbered settings, as the dialogs list them.

using NameTable = std::vector<std::pair<int32_t, std::string>>;

const NameTable& endOfMessageNames() {
    static const NameTable names = [] {
        NameTable table;
        for (int32_t type = 1; type <= 3; ++type) table.emplace_back(type, toUtf8(GetEndOfMessageText(type)));
        return table;
    }();
    return names;
}

const NameTable& dateFormatNames() {
    static const NameTable names = [] {
        NameTable table;
        for (int32_t type = 2; type <= 7; ++type) table.emplace_back(type, toUtf8(GetDateFormatText(type)));
        return table;
    }();
    return names;
}

const NameTable& timeFormatNames() {
    static const NameTable names = [] {
        NameTable table;
        for (int32_t type = 0; type <= 1; ++type) table.emplace_back(type, toUtf8(GetTimeFormatText(type)));
        return table;
    }();
    return names;
}

const NameTable kFormNames{{0, "ASCII"}, {1, "Stream"}};
const NameTable kSendVarFormatNames{{0, "Decimal ASCII"}, {1, "Hex as ASCII"}};
const NameTable kScanVarFormatNames{{0, "Decimal ASCII: Fixed Length"},
                                    {1, "Decimal ASCII: No Fixed Length"},
                                    {2, "Hex as Ascii"},
                                    {3, "Stream Fixed Length"},
                                    {4, "Stream No Fixed Length"}};
const NameTable kPrefixSignNames{{0, "No Prefix"}, {1, "Positive & Negative (+,-)"}, {2, "Negative Only (-)"}};
const NameTable kLeadingNames{{0, "No Leading"}, {1, "Leading Zeros"}, {2, "Leading Spaces"}};
const NameTable kSendCopyBytesNames{{0, "Convert ONE Linked Element to 1 Send Bytes"},
                                    {1, "Convert ONE Linked Element to 2 Send Bytes"},
                                    {3, "Convert ONE Linked Element to 3 Send Bytes"},
                                    {2, "Convert ONE Linked Element to 4 Send Bytes (Big)"},
                                    {5, "Convert ONE Linked Element to 4 Send Bytes (Small)"}};
const NameTable kScanCopyBytesNames{{0, "Convert 1 Receive Bytes to ONE Linked Element"},
                                    {1, "Convert 2 Receive Bytes to ONE Linked Element"},
                                    {3, "Convert 3 Receive Bytes to ONE Linked Element"},
                                    {2, "Convert 4 Receive Bytes to ONE Linked Element (Big)"},
                                    {5, "Convert 4 Receive Bytes to ONE Linked Element (Small)"}};
const NameTable kChecksumFormatNames{{0, "Decimal ASCII"}, {1, "Hex as ASCII"}, {2, "Binary"}};
const NameTable kCalculationNames{{1, "SUM-8"},          {2, "XOR-8"},      {3, "CRC-16"},     {4, "CRC-8"},
                                  {5, "2's COMPLEMENT"}, {6, "CRC-CCITT1"}, {7, "CRC-CCITT2"}, {8, "CRC-CCITT3"},
                                  {9, "CRC-CCITT4"},     {10, "LRC"}};
const NameTable kModulusNames{{1, "256 (100H)"}, {2, "65536 (10000H)"}, {3, "32 bit"}};

// A value by its name when it has one, else as the number it is.
OrderedJson named(int32_t value, const NameTable& names) {
    for (const auto& [number, name] : names)
        if (number == value) return name;
    return value;
}

std::string operandTypeName(int32_t type) { return toUtf8(clsOperandTypeNames().GetName(type)); }

// Operand types by name: those of the host's list, and "T<n>" for a type it
// has no name for. An image holds a type in a byte.
const std::map<std::string, int32_t>& operandTypesByName() {
    static const std::map<std::string, int32_t> types = [] {
        std::map<std::string, int32_t> table;
        for (int32_t type = 0; type <= 255; ++type) table.emplace(operandTypeName(type), type);
        return table;
    }();
    return types;
}

bool isConstantType(int32_t type) { return type == 34 || type == 35 || type == 37 || type == 38; }
bool isSignedConstantType(int32_t type) { return type == 34 || type == 37; }

// ---------------------------------------------------------------------------
// Writing.

OrderedJson operandJson(const clsOperand& operand) {
    OrderedJson out;
    out["type"] = operandTypeName(operand.OperandType());
    out["address"] = operand.OperandAddress() & 0xFFFF;
    return out;
}

OrderedJson escapedText(const std::wstring& text) {
    const Bytes bytes = ansiBytes(text);
    return escapeBytes(std::vector<uint8_t>(bytes.begin(), bytes.end()));
}

OrderedJson frameJson(const FrameChars& chars, int32_t length) {
    OrderedJson out;
    out["length"] = length;
    OrderedJson list = OrderedJson::array();
    for (const FrameChar& entry : chars) {
        OrderedJson one;
        one["char"] = escapeBytes({entry.Value});
        one["typed"] = entry.ByAscii;
        list.push_back(std::move(one));
    }
    out["characters"] = std::move(list);
    return out;
}

// The settings of a checksum, as its record holds them: the STX choice only
// in an image of version 1, the limits only when they are on.
void checksumSettings(OrderedJson& out, clsProtocolCSVar& checksum, int32_t version) {
    out["formatView"] = named(checksum.FormatView(), kChecksumFormatNames);
    out["csLength"] = checksum.CSLength();
    out["calculationType"] = named(checksum.CalculationType(), kCalculationNames);
    out["modulusType"] = named(checksum.ModulusType(), kModulusNames);
    out["offsetFromForward"] = checksum.OffsetFromForward();
    out["offsetTillBackwards"] = checksum.OffsetTillBackwards();
    out["stxInChecksum"] = version != 0 && checksum.STXInCS();
    if (checksum.SpecialAddition()) {
        OrderedJson limits;
        limits["fromValue"] = checksum.SA_FromValue();
        limits["toValue"] = checksum.SA_ToValue();
        limits["addValue"] = checksum.SA_AddedValue();
        out["setLimits"] = std::move(limits);
    }
}

OrderedJson sendFieldJson(itfProtocolVar& field, int32_t version) {
    OrderedJson out;
    if (auto* numeric = dynamic_cast<clsProtocolNumericVar*>(&field)) {
        out["field"] = "numeric";
        out["operand"] = operandJson(*numeric->LikedOperand());
        out["form"] = named(numeric->StreamForm(), kFormNames);
        out["leadingZeros"] = named(numeric->LeadingZeros(), kLeadingNames);
        if (numeric->StreamForm() == 1) {
            out["copyBytesFormat"] = named(numeric->CopyBytesFormat(), kSendCopyBytesNames);
            if (numeric->StreamLengthAddress() > -1)
                out["streamLengthAddress"] = numeric->StreamLengthAddress();
            else
                out["streamVectorLength"] = numeric->StreamVectorLength();
        } else {
            out["varFormat"] = named(numeric->VarFormat(), kSendVarFormatNames);
            out["beforePoint"] = numeric->BeforePoint();
            out["afterPoint"] = numeric->AfterPoint();
            // A hex field's record holds its own code in place of the sign.
            if (numeric->VarFormat() != 1)
                out["prefixSignFormat"] = named(numeric->PrefixSignFormat(), kPrefixSignNames);
            out["vectorLength"] = numeric->VectorLength();
        }
    } else if (auto* binary = dynamic_cast<clsProtocolBinaryVar*>(&field)) {
        out["field"] = "binary";
        out["operand"] = operandJson(*binary->LikedOperand());
        out["textFor0"] = escapedText(binary->TextFor0());
        out["textFor1"] = escapedText(binary->TextFor1());
    } else if (auto* list = dynamic_cast<clsProtocolistTextVar*>(&field)) {
        out["field"] = "list";
        out["operand"] = operandJson(*list->LikedOperand());
        out["alignmentStringSize"] = list->AlignmentStringSize();
        OrderedJson texts = OrderedJson::array();
        for (const std::wstring& text : list->Texts()) texts.push_back(escapedText(text));
        out["texts"] = std::move(texts);
    } else if (auto* date = dynamic_cast<clsProtocolDateVar*>(&field)) {
        out["field"] = "date";
        out["dateFormatType"] = named(date->DateFormatType(), dateFormatNames());
    } else if (auto* time = dynamic_cast<clsProtocolTimeVar*>(&field)) {
        out["field"] = "time";
        out["timeFormatType"] = named(time->TimeFormatType(), timeFormatNames());
    } else if (auto* checksum = dynamic_cast<clsProtocolCSVar*>(&field)) {
        out["field"] = "checksum";
        checksumSettings(out, *checksum, version);
    } else {
        raiseError(err::TypeMismatch);
    }
    return out;
}

OrderedJson scanFieldJson(itfProtocolVar& field, int32_t version) {
    OrderedJson out;
    if (auto* numeric = dynamic_cast<clsProtocolScanNumericVar*>(&field)) {
        out["field"] = "numeric";
        out["operand"] = operandJson(*numeric->LikedOperand());
        out["form"] = named(numeric->StreamForm(), kFormNames);
        out["varFormat"] = named(numeric->VarFormat(), kScanVarFormatNames);
        if (numeric->StreamForm() == 1) {
            out["copyBytesFormat"] = named(numeric->CopyBytesFormat(), kScanCopyBytesNames);
            out["streamVectorLength"] = numeric->StreamVectorLength();
            out["addNullToEndOfStream"] = numeric->AddNullToEndOfStream();
        } else {
            out["beforePoint"] = numeric->BeforePoint();
            if (numeric->VarFormat() != 2)
                out["prefixSignFormat"] = named(numeric->PrefixSignFormat(), kPrefixSignNames);
            out["vectorLength"] = numeric->VectorLength();
            const clsOperand& point = *numeric->DecimalPointOperand();
            // The record names the operand by its type, so a type 0 names none.
            if (!point.IsNew() && point.OperandType() != 0) out["decimalPointOperand"] = operandJson(point);
        }
    } else if (auto* checksum = dynamic_cast<clsProtocolCSVar*>(&field)) {
        out["field"] = "checksum";
        checksumSettings(out, *checksum, version);
    } else {
        raiseError(err::TypeMismatch);
    }
    return out;
}

// The segments of a message: runs of fixed text as escaped strings, fields
// as objects. A message with nothing in it has none.
OrderedJson segmentsJson(const clsProtocolMessage& message, int32_t version, bool scan) {
    OrderedJson out = OrderedJson::array();
    if (message.IsEmpty()) return out;
    for (const MessageSegment& segment : message.GetSegments()) {
        if (segment.SegmentKind == MessageSegment::VarKind) {
            out.push_back(scan ? scanFieldJson(*segment.Var, version) : sendFieldJson(*segment.Var, version));
            continue;
        }
        std::vector<uint8_t> values;
        values.reserve(segment.Chars.size());
        // A control code that is no byte has no text form, as it has no image.
        for (int32_t value : segment.Chars) values.push_back(checkedByte(value));
        out.push_back(escapeBytes(values));
    }
    return out;
}

int32_t messagesToDownload(const Variant& count) { return count.IsEmpty() ? 0 : count.ToI4(); }

OrderedJson header(const char* kind, int32_t version) {
    OrderedJson out;
    out["format"] = std::string(FormatName);
    out["version"] = FormatVersion;
    out["kind"] = kind;
    out["imageVersion"] = version;
    return out;
}

// A container on one line, with a blank behind each comma and colon.
std::string oneLine(const OrderedJson& value) {
    if (value.is_object()) {
        std::string out = "{";
        for (auto it = value.begin(); it != value.end(); ++it) {
            if (it != value.begin()) out += ", ";
            out += OrderedJson(it.key()).dump() + ": " + oneLine(it.value());
        }
        return out + "}";
    }
    if (value.is_array()) {
        std::string out = "[";
        for (size_t i = 0; i < value.size(); ++i) out += (i ? ", " : "") + oneLine(value[i]);
        return out + "]";
    }
    return value.dump();
}

// Indented by two, but a container that fits the line stays on one line:
// a frame character, an operand, a field, so that a diff shows one line
// for each change of a setting's field.
constexpr size_t kLineWidth = 120;

void writePretty(const OrderedJson& value, std::string& out, size_t indent) {
    const std::string flat = oneLine(value);
    if (!value.is_structured() || value.empty() || indent + flat.size() <= kLineWidth) {
        out += flat;
        return;
    }
    const std::string inner(indent + 2, ' ');
    const bool object = value.is_object();
    out += object ? "{\n" : "[\n";
    size_t i = 0;
    for (auto it = value.begin(); it != value.end(); ++it, ++i) {
        out += inner;
        if (object) out += OrderedJson(it.key()).dump() + ": ";
        writePretty(it.value(), out, indent + 2);
        out += i + 1 < value.size() ? ",\n" : "\n";
    }
    out += std::string(indent, ' ') + (object ? "}" : "]");
}

std::string finish(const OrderedJson& document) {
    std::string out;
    writePretty(document, out, 0);
    return out + "\n";
}

// ---------------------------------------------------------------------------
// Reading: a JSON tree whose every value knows where it stood in the text.

[[noreturn]] void fail(std::string_view text, size_t offset, const std::string& rule) {
    throw RuntimeError(err::InvalidFileFormat, L"QxFBCom2.TextForm",
                       fromUtf8(lineAndColumn(text, offset) + ": " + rule));
}

// An iterator over the text that tells a shared counter how far the parser has read.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* at, const char* begin, size_t* read) : at_(at), begin_(begin), read_(read) {}
    reference operator*() const { return *at_; }
    CountingIterator& operator++() {
        ++at_;
        if (read_) *read_ = static_cast<size_t>(at_ - begin_);
        return *this;
    }
    CountingIterator operator++(int) {
        CountingIterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const CountingIterator& other) const { return at_ == other.at_; }
    bool operator!=(const CountingIterator& other) const { return at_ != other.at_; }

private:
    const char* at_;
    const char* begin_;
    size_t* read_;
};

// Builds the tree as nlohmann's own DOM parser would and notes, for each
// value by its path ("/messages/0/segments/2"), how far the text had been
// read when the value was complete (an object or array: when it opened).
// A key that stands twice in one object is refused.
class LocatingBuilder : public nlohmann::json_sax<Json> {
public:
    LocatingBuilder(Json& root, std::map<std::string, size_t>& where, const size_t& read, std::string_view text)
        : root_(root), where_(where), read_(read), text_(text) {}

    bool null() override { return scalar(nullptr); }
    bool boolean(bool value) override { return scalar(value); }
    bool number_integer(number_integer_t value) override { return scalar(value); }
    bool number_unsigned(number_unsigned_t value) override { return scalar(value); }
    bool number_float(number_float_t value, const string_t&) override { return scalar(value); }
    bool string(string_t& value) override { return scalar(value); }
    bool binary(binary_t&) override { return false; }

    bool start_object(std::size_t) override {
        open(Json::object());
        return true;
    }
    bool key(string_t& value) override {
        const Json& object = *stack_.back().value;
        if (object.contains(value)) fail(text_, read_, "the member \"" + value + "\" stands twice in one object");
        key_ = value;
        return true;
    }
    bool end_object() override {
        stack_.pop_back();
        return true;
    }
    bool start_array(std::size_t) override {
        open(Json::array());
        return true;
    }
    bool end_array() override {
        stack_.pop_back();
        return true;
    }
    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception& error) override {
        fail(text_, position > 0 ? position - 1 : 0, "not JSON: " + jsonFaultReason(error.what()));
    }

private:
    struct Open {
        Json* value;
        std::string path;
    };

    template <class Value>
    bool scalar(Value&& value) {
        place(Json(std::forward<Value>(value)));
        return true;
    }
    // Elements of a container are only added while it is the innermost one
    // open, so the pointers on the stack stay valid.
    Json* place(Json value) {
        std::string path;
        Json* made = nullptr;
        if (stack_.empty()) {
            root_ = std::move(value);
            made = &root_;
        } else if (stack_.back().value->is_array()) {
            Json& array = *stack_.back().value;
            path = stack_.back().path + "/" + std::to_string(array.size());
            array.push_back(std::move(value));
            made = &array.back();
        } else {
            path = stack_.back().path + "/" + key_;
            Json& member = (*stack_.back().value)[key_];
            member = std::move(value);
            made = &member;
        }
        where_[path] = valueStart(made->is_structured());
        lastPath_ = std::move(path);
        return made;
    }
    // Where the value just read begins: the parser has read to its end (a
    // number one character further) or, for a container, its bracket.
    size_t valueStart(bool container) const {
        size_t end = std::min(read_, text_.size());
        if (container || end == 0) return end > 0 ? end - 1 : 0;
        const auto partOfWord = [](char c) {
            return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '+' || c == '.';
        };
        if (text_[end - 1] == '"') {
            // Back to the opening quote, one not escaped by a backslash.
            for (size_t at = end - 1; at-- > 0;) {
                if (text_[at] != '"') continue;
                size_t slashes = 0;
                while (at > slashes && text_[at - 1 - slashes] == '\\') ++slashes;
                if (slashes % 2 == 0) return at;
            }
            return 0;
        }
        if (!partOfWord(text_[end - 1])) --end;
        while (end > 0 && partOfWord(text_[end - 1])) --end;
        return end;
    }

    void open(Json empty) {
        if (stack_.size() >= MaxDepth) fail(text_, read_, "values are nested deeper than 32 levels");
        Json* made = place(std::move(empty));
        stack_.push_back(Open{made, lastPath_});
    }

    static constexpr size_t MaxDepth = 32;

    Json& root_;
    std::map<std::string, size_t>& where_;
    const size_t& read_;
    std::string_view text_;
    std::vector<Open> stack_;
    std::string key_;
    std::string lastPath_;
};

// A parsed text form, whose values can say where they stood.
class Document {
public:
    explicit Document(std::string_view text) : text_(text) {
        if (text.size() > MaxTextBytes) fail(text, 0, "a text form is at most 16 MB long");
        size_t read = 0;
        LocatingBuilder builder(root_, where_, read, text);
        CountingIterator first(text.data(), text.data(), &read);
        CountingIterator last(text.data() + text.size(), text.data(), nullptr);
        Json::sax_parse(first, last, &builder);
    }

    const Json& root() const { return root_; }
    [[noreturn]] void failAt(const std::string& path, const std::string& rule) const {
        auto it = where_.find(path);
        fail(text_, it == where_.end() ? 0 : it->second, rule);
    }

private:
    static constexpr size_t MaxTextBytes = size_t{16} << 20;

    std::string_view text_;
    Json root_;
    std::map<std::string, size_t> where_;
};

// One value of the document with its path, and the checks of the format.
class Node {
public:
    Node(const Document& document, const Json& value, std::string path)
        : document_(&document), value_(&value), path_(std::move(path)) {}

    [[noreturn]] void fail(const std::string& rule) const { document_->failAt(path_, rule); }
    const Json& json() const { return *value_; }

    // What the value is called in a message: its member name or its place.
    std::string label() const {
        const size_t slash = path_.rfind('/');
        const std::string last = slash == std::string::npos ? path_ : path_.substr(slash + 1);
        if (last.empty()) return "the text form";
        if (std::isdigit(static_cast<unsigned char>(last[0]))) {
            const size_t before = path_.rfind('/', slash - 1);
            const std::string parent = slash == 0 ? "" : path_.substr(before + 1, slash - before - 1);
            return "entry " + last + " of \"" + parent + "\"";
        }
        return "\"" + last + "\"";
    }

    void expectObject() const {
        if (!value_->is_object()) fail(label() + " must be an object");
    }
    bool has(const char* key) const { return value_->is_object() && value_->contains(key); }
    Node member(const char* key) const {
        expectObject();
        auto it = value_->find(key);
        if (it == value_->end()) fail(label() + " needs the member \"" + std::string(key) + "\"");
        return Node(*document_, *it, path_ + "/" + key);
    }
    // Every member must be one of these.
    void only(std::initializer_list<const char*> keys, const std::string& what) const {
        expectObject();
        for (auto it = value_->begin(); it != value_->end(); ++it) {
            const bool known = std::any_of(keys.begin(), keys.end(), [&](const char* key) { return it.key() == key; });
            if (!known)
                Node(*document_, it.value(), path_ + "/" + it.key())
                    .fail("\"" + it.key() + "\" is no member of " + what);
        }
    }

    int64_t integer(int64_t low, int64_t high) const {
        int64_t value = 0;
        if (value_->is_number_unsigned()) {
            const auto unsignedValue = value_->get<uint64_t>();
            value = unsignedValue > static_cast<uint64_t>(INT64_MAX) ? INT64_MAX : static_cast<int64_t>(unsignedValue);
        } else if (value_->is_number_integer()) {
            value = value_->get<int64_t>();
        } else {
            fail(label() + " must be an integer from " + std::to_string(low) + " to " + std::to_string(high));
        }
        if (value < low || value > high)
            fail(label() + " must be an integer from " + std::to_string(low) + " to " + std::to_string(high) +
                 ", not " + std::to_string(value));
        return value;
    }
    int32_t byte() const { return static_cast<int32_t>(integer(0, 255)); }
    bool boolean() const {
        if (!value_->is_boolean()) fail(label() + " must be true or false");
        return value_->get<bool>();
    }
    const std::string& string() const {
        if (!value_->is_string()) fail(label() + " must be a string");
        return value_->get_ref<const std::string&>();
    }
    // A setting by its name in the dialog's list, or a number from 0 to 255.
    int32_t named(const NameTable& names) const {
        if (value_->is_string()) {
            for (const auto& [number, name] : names)
                if (name == string()) return number;
            std::string known;
            for (const auto& entry : names) known += (known.empty() ? "\"" : ", \"") + entry.second + "\"";
            fail(label() + " must be one of " + known + " or a number from 0 to 255, not \"" + string() + "\"");
        }
        if (!value_->is_number_integer()) fail(label() + " must be a name of the list or a number from 0 to 255");
        return byte();
    }
    // The bytes of an escaped text.
    std::vector<uint8_t> bytes() const {
        std::vector<uint8_t> values;
        std::string error;
        size_t offset = 0;
        if (!unescapeBytes(string(), values, error, offset)) fail(label() + ": " + error);
        return values;
    }
    size_t size(size_t least, size_t most) const {
        if (!value_->is_array()) fail(label() + " must be an array");
        if (value_->size() < least || value_->size() > most)
            fail(label() + " must hold " +
                 (least == most ? std::to_string(least) : std::to_string(least) + " to " + std::to_string(most)) +
                 " entries, not " + std::to_string(value_->size()));
        return value_->size();
    }
    Node at(size_t index) const { return Node(*document_, (*value_)[index], path_ + "/" + std::to_string(index)); }

private:
    const Document* document_;
    const Json* value_;
    std::string path_;
};

std::wstring textOf(const std::vector<uint8_t>& bytes) {
    std::wstring text(bytes.size(), L' ');
    fromAnsiBytes(bytes.data(), bytes.size(), text.data());
    return text;
}

int32_t operandType(const Node& node) {
    const std::string& name = node.string();
    const auto& types = operandTypesByName();
    auto it = types.find(name);
    if (it == types.end())
        node.fail(node.label() + " must name an operand type (\"MI\", \"ML\", \"MB\", ... or \"T<number>\"), not \"" +
                  name + "\"");
    return it->second;
}

// A link of a field or of the set, as an image names it.
struct OperandLink {
    int32_t type = 0;
    int32_t address = 0;
};

OperandLink operandLink(const Node& node) {
    node.only({"type", "address"}, "an operand");
    return OperandLink{operandType(node.member("type")),
                       static_cast<int32_t>(node.member("address").integer(0, 0xFFFF))};
}

void readFrame(const Node& node, int32_t& length, const std::function<void(int32_t, uint8_t, bool)>& setValue) {
    node.only({"length", "characters"}, "a frame");
    length = static_cast<int32_t>(node.member("length").integer(0, 4));
    const Node characters = node.member("characters");
    characters.size(4, 4);
    for (size_t i = 0; i < 4; ++i) {
        const Node entry = characters.at(i);
        entry.only({"char", "typed"}, "a frame character");
        const Node value = entry.member("char");
        const std::vector<uint8_t> bytes = value.bytes();
        if (bytes.size() != 1) value.fail(value.label() + " must be exactly one character");
        setValue(static_cast<int32_t>(i), bytes[0], entry.member("typed").boolean());
    }
}

void readChecksumSettings(const Node& node, clsProtocolCSVar& checksum) {
    checksum.FormatView(node.member("formatView").named(kChecksumFormatNames));
    checksum.CSLength(node.member("csLength").byte());
    checksum.CalculationType(node.member("calculationType").named(kCalculationNames));
    checksum.ModulusType(node.member("modulusType").named(kModulusNames));
    checksum.OffsetFromForward(node.member("offsetFromForward").byte());
    checksum.OffsetTillBackwards(node.member("offsetTillBackwards").byte());
    checksum.STXInCS(node.member("stxInChecksum").boolean());
    checksum.SpecialAddition(node.has("setLimits"));
    if (node.has("setLimits")) {
        const Node limits = node.member("setLimits");
        limits.only({"fromValue", "toValue", "addValue"}, "the limits of a checksum");
        checksum.SA_FromValue(limits.member("fromValue").byte());
        checksum.SA_ToValue(limits.member("toValue").byte());
        checksum.SA_AddedValue(limits.member("addValue").byte());
    }
}

#define QXFB_CHECKSUM_KEYS                                                                                  \
    "formatView", "csLength", "calculationType", "modulusType", "offsetFromForward", "offsetTillBackwards", \
        "stxInChecksum", "setLimits"

VarPtr readChecksumField(const Node& node) {
    node.only({"field", QXFB_CHECKSUM_KEYS}, "a checksum field");
    auto field = std::make_shared<clsProtocolCSVar>();
    readChecksumSettings(node, *field);
    return field;
}

VarPtr readSendNumeric(const Node& node) {
    auto field = std::make_shared<clsProtocolNumericVar>();
    const OperandLink link = operandLink(node.member("operand"));
    loadOperandLink(*field->LikedOperand(), link.type, link.address, true);
    const int32_t form = node.member("form").named(kFormNames);
    field->StreamForm(form);
    field->LeadingZeros(node.member("leadingZeros").named(kLeadingNames));
    if (form == 1) {
        node.only({"field", "operand", "form", "leadingZeros", "copyBytesFormat", "streamVectorLength",
                   "streamLengthAddress"},
                  "a numeric field in the stream form");
        field->CopyBytesFormat(node.member("copyBytesFormat").named(kSendCopyBytesNames));
        if (node.has("streamLengthAddress") == node.has("streamVectorLength"))
            node.fail(
                "a numeric field in the stream form needs either \"streamVectorLength\" (a direct count) or "
                "\"streamLengthAddress\" (the address of the count)");
        if (node.has("streamLengthAddress"))
            field->StreamLengthAddress(static_cast<int32_t>(node.member("streamLengthAddress").integer(0, 0xFFFF)));
        else
            field->StreamVectorLength(node.member("streamVectorLength").byte());
        return field;
    }
    node.only({"field", "operand", "form", "leadingZeros", "varFormat", "beforePoint", "afterPoint", "prefixSignFormat",
               "vectorLength"},
              "a numeric field in the ASCII form");
    const int32_t format = node.member("varFormat").named(kSendVarFormatNames);
    field->VarFormat(format);
    field->BeforePoint(node.member("beforePoint").byte());
    field->AfterPoint(node.member("afterPoint").byte());
    if (format == 1) {
        if (node.has("prefixSignFormat"))
            node.member("prefixSignFormat").fail("a hex field has no \"prefixSignFormat\": its record holds none");
    } else {
        field->PrefixSignFormat(node.member("prefixSignFormat").named(kPrefixSignNames));
    }
    field->VectorLength(node.member("vectorLength").byte());
    return field;
}

VarPtr readScanNumeric(const Node& node) {
    auto field = std::make_shared<clsProtocolScanNumericVar>();
    const OperandLink link = operandLink(node.member("operand"));
    loadOperandLink(*field->LikedOperand(), link.type, link.address, false);
    const int32_t form = node.member("form").named(kFormNames);
    field->StreamForm(form);
    const int32_t format = node.member("varFormat").named(kScanVarFormatNames);
    field->VarFormat(format);
    if (form == 1) {
        node.only(
            {"field", "operand", "form", "varFormat", "copyBytesFormat", "streamVectorLength", "addNullToEndOfStream"},
            "a numeric field in the stream form");
        field->CopyBytesFormat(node.member("copyBytesFormat").named(kScanCopyBytesNames));
        field->StreamVectorLength(node.member("streamVectorLength").byte());
        field->AddNullToEndOfStream(node.member("addNullToEndOfStream").boolean());
        return field;
    }
    node.only({"field", "operand", "form", "varFormat", "beforePoint", "prefixSignFormat", "vectorLength",
               "decimalPointOperand"},
              "a numeric field in the ASCII form");
    field->BeforePoint(node.member("beforePoint").byte());
    if (format == 2) {
        if (node.has("prefixSignFormat"))
            node.member("prefixSignFormat").fail("a hex field has no \"prefixSignFormat\": its record holds none");
    } else {
        field->PrefixSignFormat(node.member("prefixSignFormat").named(kPrefixSignNames));
    }
    field->VectorLength(node.member("vectorLength").byte());
    if (node.has("decimalPointOperand")) {
        const Node pointNode = node.member("decimalPointOperand");
        const OperandLink point = operandLink(pointNode);
        if (point.type == 0) pointNode.member("type").fail("a decimal-point operand of type 0 names no operand");
        loadOperandLink(*field->DecimalPointOperand(), point.type, point.address, false);
    }
    return field;
}

VarPtr readSendField(const Node& node) {
    node.expectObject();
    const Node kind = node.member("field");
    const std::string& name = kind.string();
    if (name == "numeric") return readSendNumeric(node);
    if (name == "checksum") return readChecksumField(node);
    if (name == "binary") {
        node.only({"field", "operand", "textFor0", "textFor1"}, "a binary text field");
        auto field = std::make_shared<clsProtocolBinaryVar>();
        const OperandLink link = operandLink(node.member("operand"));
        loadOperandLink(*field->LikedOperand(), link.type, link.address, true);
        field->TextFor0(textOf(node.member("textFor0").bytes()));
        field->TextFor1(textOf(node.member("textFor1").bytes()));
        return field;
    }
    if (name == "list") {
        node.only({"field", "operand", "alignmentStringSize", "texts"}, "a list of texts field");
        auto field = std::make_shared<clsProtocolistTextVar>();
        const OperandLink link = operandLink(node.member("operand"));
        loadOperandLink(*field->LikedOperand(), link.type, link.address, true);
        // Only writing the texts recomputes the length, so the size goes first.
        field->AlignmentStringSize(node.member("alignmentStringSize").byte());
        const Node textsNode = node.member("texts");
        const size_t count = textsNode.size(1, 255);
        std::vector<std::wstring> texts;
        for (size_t i = 0; i < count; ++i) texts.push_back(textOf(textsNode.at(i).bytes()));
        field->Texts(texts);
        return field;
    }
    if (name == "date") {
        node.only({"field", "dateFormatType"}, "a date field");
        auto field = std::make_shared<clsProtocolDateVar>();
        field->DateFormatType(node.member("dateFormatType").named(dateFormatNames()));
        return field;
    }
    if (name == "time") {
        node.only({"field", "timeFormatType"}, "a time field");
        auto field = std::make_shared<clsProtocolTimeVar>();
        field->TimeFormatType(node.member("timeFormatType").named(timeFormatNames()));
        return field;
    }
    kind.fail("a Send field is \"numeric\", \"binary\", \"list\", \"date\", \"time\" or \"checksum\", not \"" + name +
              "\"");
}

VarPtr readScanField(const Node& node) {
    node.expectObject();
    const Node kind = node.member("field");
    const std::string& name = kind.string();
    if (name == "numeric") return readScanNumeric(node);
    if (name == "checksum") return readChecksumField(node);
    kind.fail("a Scan field is \"numeric\" or \"checksum\", not \"" + name + "\"");
}

// Lays the segments out from position 0, as the image readers do: a byte
// below 32 of a text is a control character, any other a character.
void readSegments(const Node& node, clsProtocolMessage& message, bool scan) {
    const size_t count = node.size(0, clsProtocolMessage::MaxPositions);
    std::wstring text(clsProtocolMessage::MaxPositions, L' ');
    clsProtocolMessage::ControlCharArray controls{};
    controls.fill(clsProtocolMessage::NoControlChar);
    std::vector<VarPtr> fields;
    int32_t position = 0;
    for (size_t i = 0; i < count; ++i) {
        const Node segment = node.at(i);
        if (segment.json().is_string()) {
            for (uint8_t value : segment.bytes()) {
                if (position >= clsProtocolMessage::MaxPositions)
                    segment.fail("the message passes its 500 positions here");
                if (value < 32)
                    controls[static_cast<size_t>(position)] = value;
                else
                    text[static_cast<size_t>(position)] = fromAnsiByte(value);
                ++position;
            }
            continue;
        }
        if (!segment.json().is_object())
            segment.fail(segment.label() + " must be a text (a string) or a field (an object)");
        if (static_cast<int32_t>(fields.size()) >= clsProtocolMessage::MaxVars)
            segment.fail("a message holds at most 50 fields");
        VarPtr field = scan ? readScanField(segment) : readSendField(segment);
        field->StartPosition(position);
        if (field->Length() > clsProtocolMessage::MaxPositions - position)
            segment.fail("the message passes its 500 positions with this field");
        position += field->Length();
        fields.push_back(std::move(field));
    }
    message.MessageString(text);
    message.ControlChars(controls);
    for (VarPtr& field : fields) message.AddVar(std::move(field));
}

// The members every text form begins with; the kind must be the one asked
// for and the image version the one this host writes.
int32_t readHeader(const Node& root, const char* kind) {
    root.expectObject();
    const Node format = root.member("format");
    if (format.string() != FormatName)
        format.fail("\"format\" must be \"" + std::string(FormatName) + "\", not \"" + format.string() + "\"");
    const Node version = root.member("version");
    if (version.integer(0, INT32_MAX) != FormatVersion)
        version.fail("this is version " + std::to_string(version.integer(0, INT32_MAX)) +
                     " of the format, and only version 1 is known");
    const Node kindNode = root.member("kind");
    if (kindNode.string() != "send" && kindNode.string() != "scan")
        kindNode.fail("\"kind\" must be \"send\" or \"scan\", not \"" + kindNode.string() + "\"");
    if (kindNode.string() != kind)
        kindNode.fail("\"kind\" must be \"" + std::string(kind) + "\" here, not \"" + kindNode.string() + "\"");
    const Node imageVersion = root.member("imageVersion");
    const auto wanted = static_cast<int32_t>(imageVersion.integer(0, 1));
    if (wanted != currentImageVersion())
        imageVersion.fail(
            "the text is for an image of version " + std::to_string(wanted) + ", and this host writes version " +
            std::to_string(currentImageVersion()) +
            (currentImageVersion() == 0 ? " (the extended operands are off)" : " (the extended operands are on)"));
    return wanted;
}

void readMessageNumber(const Node& node, clsOperand& operand) {
    node.expectObject();
    const int32_t type = operandType(node.member("type"));
    if (isConstantType(type)) {
        node.only({"type", "constant"}, "a constant message number");
        const Node value = node.member("constant");
        // A stored constant is a value; its place in the host's constant
        // table is given anew, as at every load of an image.
        operand.OperandType(type);
        if (isSignedConstantType(type)) {
            operand.OperandConstantValue(value.integer(INT32_MIN, INT32_MAX) * 10000);
        } else {
            const auto bits = static_cast<uint32_t>(value.integer(0, UINT32_MAX));
            Bytes bytes{static_cast<uint8_t>(bits), static_cast<uint8_t>(bits >> 8), static_cast<uint8_t>(bits >> 16),
                        static_cast<uint8_t>(bits >> 24)};
            operand.OperandConstantValue(FourBytesToCurrency(bytes));
        }
        int32_t address = 0;
        operand.AllocateConstantAddress(address);
        operand.OperandAddress(address);
        operand.OperandMode(2);
        return;
    }
    node.only({"type", "address"}, "a message-number operand");
    operand.OperandType(type);
    operand.OperandAddress(static_cast<int32_t>(node.member("address").integer(0, 0xFFFF)));
    operand.IsNew(false);
    if (!operand.IsRegistered()) {
        operand.OperandMode(1);
        operand.RegisterOperand();
    }
}

void readCopyLink(const Node& node, clsOperand& operand) {
    const OperandLink link = operandLink(node);
    operand.OperandType(link.type);
    operand.OperandAddress(link.address);
    operand.IsNew(false);
    if (!operand.IsRegistered()) operand.RegisterOperand();
}

template <class Set>
void readMessages(const Node& node, Set& set, bool scan) {
    const size_t count = node.size(0, 255);
    set.ResetMessages(std::max<int32_t>(static_cast<int32_t>(count), 1));
    for (size_t i = 0; i < count; ++i) {
        const Node entry = node.at(i);
        if (scan)
            entry.only({"number", "length", "segments"}, "a Scan message");
        else
            entry.only({"number", "segments"}, "a Send message");
        const Node number = entry.member("number");
        if (number.integer(1, 255) != static_cast<int64_t>(i) + 1)
            number.fail("messages are numbered 1, 2, 3 in order: this one must be " + std::to_string(i + 1));
        const MessagePtr message = set.GetMessage(static_cast<int32_t>(i) + 1);
        if (scan) message->MessageLength(entry.member("length").byte());
        readSegments(entry.member("segments"), *message, scan);
    }
}

}  // namespace

// ---------------------------------------------------------------------------

std::string exportSendSet(const clsProtocolSendSrv& set) {
    const int32_t version = currentImageVersion();
    OrderedJson out = header("send", version);
    out["start"] = frameJson(set.SendSTXChars(), set.SendSTXLength());
    out["end"] = frameJson(set.SendETXChars(), set.SendETXLength());
    // A Send image without end characters holds no end of message, and reads as "ETX".
    out["endOfMessage"] = named(set.SendETXLength() == 0 ? 1 : set.EndOfSendMessageType(), endOfMessageNames());
    OrderedJson checksum;
    checksumSettings(checksum, dynamic_cast<clsProtocolCSVar&>(*set.SendChecksum()), version);
    out["checksum"] = std::move(checksum);

    const clsOperand& number = *set.OpMessageNumber();
    OrderedJson numberJson;
    numberJson["type"] = operandTypeName(number.OperandType());
    Bytes value;
    if (ConstantToBytes(number, value) && value.size() == 4) {
        const uint32_t bits = static_cast<uint32_t>(value[0]) | (static_cast<uint32_t>(value[1]) << 8) |
                              (static_cast<uint32_t>(value[2]) << 16) | (static_cast<uint32_t>(value[3]) << 24);
        if (isSignedConstantType(number.OperandType()))
            numberJson["constant"] = static_cast<int32_t>(bits);
        else
            numberJson["constant"] = bits;
    } else {
        numberJson["address"] = number.OperandAddress() & 0xFFFF;
    }
    out["messageNumber"] = std::move(numberJson);

    OrderedJson copy;
    copy["bytes"] = set.CopyBytesCount();
    if (set.CopyBytesCount() >= 1) {
        copy["destination"] = operandJson(*set.OpCopyDestination());
        copy["whenDone"] = operandJson(*set.OpCopyWhenOn());
    }
    out["copyAfterEtx"] = std::move(copy);

    OrderedJson messages = OrderedJson::array();
    const int32_t count = messagesToDownload(set.GetNumberOfMessagesToDownload());
    for (int32_t m = 1; m <= count; ++m) {
        OrderedJson message;
        message["number"] = m;
        message["segments"] = segmentsJson(*set.GetMessage(m), version, false);
        messages.push_back(std::move(message));
    }
    out["messages"] = std::move(messages);
    return finish(out);
}

std::string exportScanSet(const clsProtocolScanSrv& set) {
    const int32_t version = currentImageVersion();
    OrderedJson out = header("scan", version);
    out["start"] = frameJson(set.ScanSTXChars(), set.ScanSTXLength());
    out["end"] = frameJson(set.ScanETXChars(), set.ScanETXLength());
    out["endOfMessage"] = named(set.EndOfScanMessageType(), endOfMessageNames());
    OrderedJson checksum;
    checksumSettings(checksum, dynamic_cast<clsProtocolCSVar&>(*set.ScanChecksum()), version);
    out["checksum"] = std::move(checksum);
    // The image holds the low 16 bits of both terminators.
    out["messageLength"] = set.MessageLengthValue() & 0xFFFF;
    out["silenceTime"] = set.SilenceTimeValue() & 0xFFFF;

    OrderedJson messages = OrderedJson::array();
    const int32_t count = messagesToDownload(set.GetNumberOfMessagesToDownload());
    for (int32_t m = 1; m <= count; ++m) {
        const MessagePtr source = set.GetMessage(m);
        OrderedJson message;
        message["number"] = m;
        message["length"] = source->MessageLength();
        message["segments"] = segmentsJson(*source, version, true);
        messages.push_back(std::move(message));
    }
    out["messages"] = std::move(messages);
    return finish(out);
}

std::unique_ptr<clsProtocolSendSrv> importSendSet(std::string_view json) {
    const Document document(json);
    const Node root(document, document.root(), "");
    const int32_t version = readHeader(root, "send");
    root.only({"format", "version", "kind", "imageVersion", "start", "end", "endOfMessage", "checksum", "messageNumber",
               "copyAfterEtx", "messages"},
              "a Send text form");
    auto set = std::make_unique<clsProtocolSendSrv>();
    set->ImageVersion(version);
    int32_t length = 0;
    readFrame(root.member("start"), length,
              [&](int32_t i, uint8_t v, bool typed) { set->SetSendSTXValue(i, v, typed); });
    set->SendSTXLength(length);
    readFrame(root.member("end"), length, [&](int32_t i, uint8_t v, bool typed) { set->SetSendETXValue(i, v, typed); });
    set->SendETXLength(length);
    set->EndOfSendMessageType(root.member("endOfMessage").named(endOfMessageNames()));
    const Node checksum = root.member("checksum");
    checksum.only({QXFB_CHECKSUM_KEYS}, "the end-of-message checksum");
    readChecksumSettings(checksum, dynamic_cast<clsProtocolCSVar&>(*set->SendChecksum()));
    readMessageNumber(root.member("messageNumber"), *set->OpMessageNumber());
    const Node copy = root.member("copyAfterEtx");
    const int32_t bytes = copy.member("bytes").byte();
    set->CopyBytesCount(bytes);
    if (bytes >= 1) {
        copy.only({"bytes", "destination", "whenDone"}, "the copy after the ETX");
        readCopyLink(copy.member("destination"), *set->OpCopyDestination());
        readCopyLink(copy.member("whenDone"), *set->OpCopyWhenOn());
    } else {
        copy.only({"bytes"}, "the copy after the ETX when it is off (\"bytes\": 0)");
    }
    readMessages(root.member("messages"), *set, false);
    return set;
}

std::unique_ptr<clsProtocolScanSrv> importScanSet(std::string_view json) {
    const Document document(json);
    const Node root(document, document.root(), "");
    const int32_t version = readHeader(root, "scan");
    root.only({"format", "version", "kind", "imageVersion", "start", "end", "endOfMessage", "checksum", "messageLength",
               "silenceTime", "messages"},
              "a Scan text form");
    auto set = std::make_unique<clsProtocolScanSrv>();
    set->ImageVersion(version);
    int32_t length = 0;
    readFrame(root.member("start"), length,
              [&](int32_t i, uint8_t v, bool typed) { set->SetScanSTXValue(i, v, typed); });
    set->ScanSTXLength(length);
    readFrame(root.member("end"), length, [&](int32_t i, uint8_t v, bool typed) { set->SetScanETXValue(i, v, typed); });
    set->ScanETXLength(length);
    set->EndOfScanMessageType(root.member("endOfMessage").named(endOfMessageNames()));
    const Node checksum = root.member("checksum");
    checksum.only({QXFB_CHECKSUM_KEYS}, "the end-of-message checksum");
    readChecksumSettings(checksum, dynamic_cast<clsProtocolCSVar&>(*set->ScanChecksum()));
    set->MessageLengthValue(static_cast<int32_t>(root.member("messageLength").integer(0, 0xFFFF)));
    set->SilenceTimeValue(static_cast<int32_t>(root.member("silenceTime").integer(0, 0xFFFF)));
    readMessages(root.member("messages"), *set, true);
    return set;
}

std::optional<TextFormHeader> peekHeader(std::string_view json) {
    const Json document = Json::parse(json.begin(), json.end(), nullptr, false);
    if (!document.is_object()) return std::nullopt;
    auto kind = document.find("kind");
    auto version = document.find("imageVersion");
    if (kind == document.end() || !kind->is_string()) return std::nullopt;
    TextFormHeader header;
    header.Kind = kind->get<std::string>();
    if (version != document.end() && version->is_number_integer()) {
        const auto value = version->get<int64_t>();
        if (value == 0 || value == 1) header.ImageVersion = static_cast<int32_t>(value);
    }
    return header;
}

}  // namespace qx::textform
