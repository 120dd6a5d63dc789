#include "platform/host/host_services.h"

#include <cstdio>
#include <initializer_list>
#include <map>
#include <sstream>
#include <utility>

#include "platform/basics/ansi.h"
#include "platform/basics/ascii_case.h"
#include "platform/basics/file_reader.h"

namespace qx {

namespace {

// The words of the host's texts, written once for this library.
const std::map<int32_t, std::wstring>& textWords() {
    static const std::map<int32_t, std::wstring> words{
        {24, L"Function in progress"},
        {26, L"Socket"},
        {28, L"Message number"},
        {29, L"Copy to"},
        {30, L"Copy done"},
        {31, L"Session complete"},
        {32, L"Bytes received"},
        {33, L"Received message index"},
        {34, L"Status"},
        {203, L"Configuration"},
        {216, L"Scan"},
        {219, L"Copy buffer"},
        {220, L"Buffer reset"},
        {221, L"Send"},
        {328, L"User-defined protocol over a serial COM port"},
        {593, L"User-defined protocol over an Ethernet socket"},
        {595, L"Address index"},
        {597, L"Message sent"},
        {608, L"Send over TCP/IP"},
        {615, L"Address vector (5 integers)"},
        {616, L"Message received"},
    };
    return words;
}

const std::map<int32_t, std::wstring>& messageWords() {
    static const std::map<int32_t, std::wstring> words{
        {110, L"Another configuration already has this name."},
        {140, L"There is no configuration of this protocol yet. Add a Config operation first."},
        {141, L"The configuration this operation was linked to no longer exists. Choose another one."},
        {142, L"Clear all messages of this Send?"},
        {143, L"There is no message to send. Type at least one message."},
        {144, L"Message %1 is empty; only messages at the end of the list may be empty."},
        {145, L"Give every start character (STX) a value."},
        {146, L"Give every end character (ETX) a value."},
        {147, L"Clear all messages of this Scan?"},
        {148, L"There is no message to wait for. Type at least one message."},
        {149, L"Give every start character (STX) a value."},
        {150, L"Give every end character (ETX) a value."},
        {151, L"Choose how the end of a received message is found: end of text, message length or silence."},
        {152, L"Enter a name for the configuration."},
        {153, L"Another configuration already has this name."},
        {154, L"A set holds at most %1 messages."},
        {155, L"Insert an empty message before this one?"},
        {156, L"Insert an empty message after this one?"},
        {157, L"Delete this message?"},
        {158, L"A field may be at most %1 characters long."},
        {159, L"The field does not fit into the message at this position."},
        {160, L"A message holds at most %1 fields."},
        {477, L"LRC is calculated over the whole frame; check the offsets."},
    };
    return words;
}

std::string trim(const std::string& s) {
    size_t b = s.find_first_not_of(" \t\r\n");
    if (b == std::string::npos) return "";
    size_t e = s.find_last_not_of(" \t\r\n");
    return s.substr(b, e - b + 1);
}

}  // namespace

std::wstring clsTextTable::GetText(int32_t number) const {
    const auto& overrides = host().TextOverrides;
    if (auto it = overrides.find(number); it != overrides.end()) return it->second;
    auto it = textWords().find(number);
    return it == textWords().end() ? L"Text " + std::to_wstring(number) : it->second;
}

std::wstring clsTextTable::GetMessageText(int32_t number, const std::vector<std::wstring>& params) const {
    auto it = messageWords().find(number);
    std::wstring text = it == messageWords().end() ? L"Message " + std::to_wstring(number) : it->second;
    for (size_t i = 0; i < params.size(); ++i) {
        std::wstring mark = L"%" + std::to_wstring(i + 1);
        for (size_t at = text.find(mark); at != std::wstring::npos; at = text.find(mark, at + params[i].size()))
            text.replace(at, mark.size(), params[i]);
    }
    return text;
}

PicturePtr clsPictureTable::GetPicture(int32_t number) const {
    // The host's pictures are its own; a plain square tinted by the number stands in.
    auto picture = std::make_shared<Picture>();
    picture->Width = 16;
    picture->Height = 16;
    picture->Pixels.assign(16 * 16 * 3, static_cast<uint8_t>(number & 0xFF));
    return picture;
}

int32_t clsNameLimits::Item(int32_t entry) const {
    const auto& limits = host().NameLimits;
    auto it = limits.find(entry);
    return it == limits.end() ? 0 : it->second;
}

void clsErrorReporter::Report(const ErrorReport& report) const {
    host().Reports.push_back(report);
    if (host().EchoReports)
        std::fprintf(stderr, "%s (%lld) in %s.%s: %s\n", toUtf8(report.Name).c_str(),
                     static_cast<long long>(report.Number), toUtf8(report.Module).c_str(),
                     toUtf8(report.Procedure).c_str(), toUtf8(report.Text).c_str());
}

Font clsAppFont::GetFont(int32_t) const { return host().AppFont; }

std::wstring clsOperandTypeNames::GetName(int32_t operandType) const {
    static const std::map<int32_t, std::wstring> names{
        {1, L"MB"},   {2, L"SB"},  {3, L"MI"},  {4, L"SI"},  {5, L"ML"},  {6, L"SL"},  {7, L"MF"},
        {9, L"I"},    {10, L"O"},  {11, L"T"},  {15, L"K"},  {16, L"DW"}, {34, L"KI"}, {35, L"KL"},
        {36, L"SDW"}, {37, L"#I"}, {38, L"#L"}, {64, L"XB"}, {65, L"XI"}, {66, L"XL"}, {67, L"XDW"},
    };
    auto it = names.find(operandType);
    return it == names.end() ? L"T" + std::to_wstring(operandType) : it->second;
}

std::wstring clsOperandFormats::GetFormatName(int32_t format) const {
    switch (format) {
        case 1:
            return L"Binary";
        case 2:
            return L"Hex";
        case 3:
            return L"Decimal";
        default:
            return L"Format " + std::to_wstring(format);
    }
}

std::wstring clsOperandFormats::GetValueText(int32_t, int32_t format, int64_t constantValue) const {
    int64_t whole = constantValue / 10000;
    if (format == 2) {
        wchar_t buffer[32];
        std::swprintf(buffer, 32, L"%llX", static_cast<unsigned long long>(whole));
        return buffer;
    }
    std::wstring text = std::to_wstring(whole);
    int64_t fraction = constantValue % 10000;
    if (fraction != 0) {
        if (fraction < 0) fraction = -fraction;
        std::wstring digits = std::to_wstring(10000 + fraction).substr(1);
        while (!digits.empty() && digits.back() == L'0') digits.pop_back();
        if (constantValue < 0 && whole == 0) text = L"-0";
        text += L"." + digits;
    }
    return text;
}

std::optional<std::string> findIniValue(const std::string& content, const std::string& section,
                                        const std::string& key) {
    // A byte-order mark would otherwise hide the first section.
    const size_t start = content.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0;
    std::istringstream in(content.substr(start));
    std::string line, current;
    while (std::getline(in, line)) {
        std::string t = trim(line);
        if (t.empty() || t[0] == ';') continue;
        if (t.front() == '[') {
            size_t close = t.find(']');
            current = trim(t.substr(1, close == std::string::npos ? std::string::npos : close - 1));
            continue;
        }
        size_t eq = t.find('=');
        if (eq == std::string::npos || !sameIgnoringAsciiCase(current, section)) continue;
        if (sameIgnoringAsciiCase(trim(t.substr(0, eq)), key)) {
            std::string value = trim(t.substr(eq + 1));
            if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
                value = value.substr(1, value.size() - 2);
            return value;
        }
    }
    return std::nullopt;
}

uint32_t GetPrivateProfileStringA(const std::string& section, const std::string& key, const std::string& defaultValue,
                                  std::string& buffer, uint32_t size, const std::string& fileName) {
    std::string value = defaultValue;
    // A file that cannot be read as a regular file within the limit reads
    // as a missing one: the caller gets its default.
    const FileContent file = readRegularFile(fileName, file_limit::Ini);
    if (file.Status == FileReadStatus::Ok) {
        if (auto found = findIniValue(std::string(file.Data.begin(), file.Data.end()), section, key))
            value = std::move(*found);
    }
    if (size == 0) return 0;
    if (value.size() > size - 1) value.resize(size - 1);
    // The value and its NUL overwrite the start of the caller's buffer.
    if (buffer.size() < size) buffer.resize(size, ' ');
    buffer.replace(0, value.size(), value);
    buffer[value.size()] = '\0';
    return static_cast<uint32_t>(value.size());
}

void systemBeep() {
    ++host().BeepCount;
    if (host().Driver) host().Driver->Beep();
}

int32_t MsgBox(const std::wstring& Prompt, int32_t Buttons, const std::wstring& Title) {
    ShownMessage message;
    message.Text = Prompt;
    message.Title = Title;
    message.Style = Buttons;
    message.Answer = host().Driver ? host().Driver->AnswerMessage(message) : 1;
    host().Messages.push_back(message);
    return message.Answer;
}

int32_t GetDeviceCaps(int32_t index) {
    host().DeviceCapsAsked.push_back(index);
    if (index == 88) return host().DpiX;
    if (index == 90) return host().DpiY;
    return 0;
}

namespace {
std::string callText(const char* name, std::initializer_list<int32_t> args) {
    std::string text = name;
    text += '(';
    bool first = true;
    for (int32_t arg : args) {
        if (!first) text += ", ";
        text += std::to_string(arg);
        first = false;
    }
    return text + ')';
}
}  // namespace

bool CreateCaret(int32_t hWnd, int32_t hBitmap, int32_t nWidth, int32_t nHeight) {
    HostContext& context = host();
    context.CaretCalls.push_back(callText("CreateCaret", {hWnd, hBitmap, nWidth, nHeight}));
    context.Caret = CaretState{hWnd, hBitmap, nWidth, nHeight, 0, 0, false};
    context.caretChanged();
    return true;
}

bool SetCaretPos(int32_t X, int32_t Y) {
    HostContext& context = host();
    context.CaretCalls.push_back(callText("SetCaretPos", {X, Y}));
    if (context.Caret.Window == 0) return false;
    context.Caret.X = X;
    context.Caret.Y = Y;
    context.caretChanged();
    return true;
}

bool ShowCaret(int32_t hWnd) {
    HostContext& context = host();
    context.CaretCalls.push_back(callText("ShowCaret", {hWnd}));
    // 0 names the window that owns the caret, whichever it is.
    if (context.Caret.Window == 0 || (hWnd != 0 && hWnd != context.Caret.Window)) return false;
    if (!context.Caret.Shown) {
        context.Caret.Shown = true;
        context.caretChanged();
    }
    return true;
}

}  // namespace qx
