#include "model_commands.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <span>
#include <sstream>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "platform/host/host_services.h"
#include "runtime_model/loopback.h"
#include "runtime_model/scan_recognizer.h"
#include "runtime_model/send_renderer.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::cli {

const char* const modelCommandsHelp =
    R"(  qxfb preview SEND [--message N] [--values FILE] [--clock TIME]
      Renders message N (default 1) of a Send image through the runtime
      model and prints its bytes in hexadecimal and as text, control
      characters named (<STX>, <CR>). Operand values come from FILE, one a
      line: "MI 12 = 1234" (type name, address, value; "#" starts a
      comment); an operand not given is 0. TIME is "YYYY-MM-DD HH:MM:SS"
      (default 2000-01-01 00:00:00).
  qxfb loopback SEND SCAN [--baud B] [--values FILE] [--clock TIME]
      Renders every message of the Send image and holds it against the Scan
      image: which Scan message takes each, and warnings for a message none
      or two take, an end character a stream or a binary text can carry, and
      a silence shorter than 1.5 characters at B baud (default 9600). Exit
      status 1 when anything is warned about.
  qxfb decode SCAN (CAPTURE | --hex BYTES)
      Cuts a capture of received bytes (a file, or hexadecimal digits) into
      frames by the Scan's terminator and tells, frame by frame, which
      message it is and what each field received, or why no message
      matched. Exit status 1 when a frame matched nothing.
)";

namespace {

// An image of 16-bit offsets is below 64 KB; a capture may be large, but
// not without bound.
constexpr uintmax_t MaxImageBytes = 65536;
constexpr uintmax_t MaxCaptureBytes = uintmax_t{1} << 30;

int usage(const std::string& message) {
    std::cerr << "qxfb: " << message << "\nTry 'qxfb --help'.\n";
    return 2;
}

int failure(const std::string& message) {
    std::cerr << "qxfb: " << message << "\n";
    return 1;
}

// A regular file of at most limit bytes; anything else is refused with the
// reason in words.
std::optional<std::vector<uint8_t>> readInput(const std::string& path, uintmax_t limit, std::string& error) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        error = "cannot read " + path + ": " + std::strerror(errno);
        return std::nullopt;
    }
    if (!S_ISREG(info.st_mode)) {
        error = "cannot read " + path + ": not a regular file";
        return std::nullopt;
    }
    if (static_cast<uintmax_t>(info.st_size) > limit) {
        error = "cannot read " + path + ": " + std::to_string(info.st_size) + " bytes, more than the " +
                std::to_string(limit) + " this command reads";
        return std::nullopt;
    }
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in.good() && !in.eof()) {
        error = "cannot read " + path + ": " + std::strerror(errno);
        return std::nullopt;
    }
    return bytes;
}

template <class Set>
bool loadSet(Set& set, const std::string& path, const char* kind, std::string& error) {
    const std::optional<std::vector<uint8_t>> image = readInput(path, MaxImageBytes, error);
    if (!image) return false;
    try {
        set.BinaryData(*image);
        return true;
    } catch (const RuntimeError& e) {
        error = path + " is not a " + kind + " image: " + toUtf8(e.Description()) + " (error " +
                std::to_string(e.Number()) + ")";
        return false;
    }
}

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return "";
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::optional<int64_t> integer(const std::string& text) {
    if (text.empty()) return std::nullopt;
    size_t used = 0;
    try {
        const long long value = std::stoll(text, &used, 0);
        if (used != text.size()) return std::nullopt;
        return value;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

// "MI 12 = 1234" lines; the type by its name, as the operand picker shows it.
bool parseValues(const std::string& path, model::OperandValues& values, std::string& error) {
    const std::optional<std::vector<uint8_t>> bytes = readInput(path, MaxImageBytes * 16, error);
    if (!bytes) return false;
    std::map<std::string, int32_t> types;
    const clsOperandTypeNames names;
    for (int32_t type = 1; type < 128; ++type) {
        const std::string name = toUtf8(names.GetName(type));
        if (!name.empty() && !types.count(name)) types[name] = type;
    }
    std::istringstream in(std::string(bytes->begin(), bytes->end()));
    int lineNumber = 0;
    for (std::string line; std::getline(in, line);) {
        ++lineNumber;
        line = trimmed(line.substr(0, line.find('#')));
        if (line.empty()) continue;
        const auto bad = [&](const std::string& why) {
            error = path + " line " + std::to_string(lineNumber) + ": " + why;
            return false;
        };
        const size_t equals = line.find('=');
        if (equals == std::string::npos) return bad("\"TYPE ADDRESS = VALUE\" expected");
        std::istringstream left(line.substr(0, equals));
        std::string name, address, rest;
        left >> name >> address >> rest;
        if (!types.count(name)) return bad("unknown operand type \"" + name + "\"");
        const std::optional<int64_t> at = integer(address);
        const std::optional<int64_t> value = integer(trimmed(line.substr(equals + 1)));
        if (!at || *at < 0 || *at > 0xFFFF || !rest.empty()) return bad("an address of 0 to 65535 expected");
        if (!value) return bad("a whole number expected after \"=\"");
        values.Set(types[name], static_cast<int32_t>(*at), *value);
    }
    return true;
}

// Days since 1970-01-01 of a civil date (proleptic Gregorian).
int64_t daysFromCivil(int64_t y, int64_t m, int64_t d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

bool parseClock(const std::string& text, model::ModelClock& clock, std::string& error) {
    int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
    char tail = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d%c", &y, &mo, &d, &h, &mi, &s, &tail) != 6 || mo < 1 ||
        mo > 12 || d < 1 || d > 31 || h > 23 || mi > 59 || s > 59 || h < 0 || mi < 0 || s < 0) {
        error = "--clock needs \"YYYY-MM-DD HH:MM:SS\", not \"" + text + "\"";
        return false;
    }
    clock = {y, mo, d, static_cast<int32_t>(((daysFromCivil(y, mo, d) % 7) + 11) % 7), h, mi, s};
    return true;
}

std::optional<std::vector<uint8_t>> parseHex(const std::string& text) {
    std::vector<uint8_t> bytes;
    int high = -1;
    for (char c : text) {
        if (c == ' ' || c == ',' || c == ':' || c == '\t') continue;
        const int digit = std::isxdigit(static_cast<unsigned char>(c))
                              ? (std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : (std::toupper(c) - 'A' + 10))
                              : -1;
        if (digit < 0) return std::nullopt;
        if (high < 0) {
            high = digit;
        } else {
            bytes.push_back(static_cast<uint8_t>(high * 16 + digit));
            high = -1;
        }
    }
    if (high >= 0) return std::nullopt;
    return bytes;
}

std::string hexLine(std::span<const uint8_t> bytes) {
    std::string text;
    char byte[4];
    for (uint8_t value : bytes) {
        std::snprintf(byte, sizeof byte, "%02X", value);
        text += (text.empty() ? "" : " ") + std::string(byte);
    }
    return text;
}

// Printable ASCII as it is, control characters by their names, other bytes
// as <hex>.
std::string textLine(std::span<const uint8_t> bytes) {
    static const char* const names[32] = {"NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "HT",  "LF",
                                          "VT",  "FF",  "CR",  "SO",  "SI",  "DLE", "DC1", "DC2", "DC3", "DC4", "NAK",
                                          "SYN", "ETB", "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};
    std::string text;
    char hex[8];
    for (uint8_t value : bytes) {
        if (value < 32) {
            text += "<" + std::string(names[value]) + ">";
        } else if (value < 127) {
            text += static_cast<char>(value);
        } else {
            std::snprintf(hex, sizeof hex, "<%02X>", value);
            text += hex;
        }
    }
    return text;
}

std::string operandName(int32_t type, int32_t address) {
    return toUtf8(clsOperandTypeNames().GetName(type)) + " " + std::to_string(address);
}

struct Words {
    std::vector<std::string> positional;
    std::map<std::string, std::string> options;
};

std::optional<Words> split(const std::vector<std::string>& words, const std::vector<std::string>& allowed,
                           std::string& error) {
    Words out;
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word.rfind("--", 0) != 0) {
            out.positional.push_back(word);
            continue;
        }
        if (std::find(allowed.begin(), allowed.end(), word) == allowed.end()) {
            error = "unknown option " + word;
            return std::nullopt;
        }
        if (i + 1 >= words.size()) {
            error = word + " needs a value";
            return std::nullopt;
        }
        out.options[word] = words[++i];
    }
    return out;
}

bool commonInputs(const Words& words, model::OperandValues& values, model::ModelClock& clock, std::string& error) {
    if (words.options.count("--values") && !parseValues(words.options.at("--values"), values, error)) return false;
    if (words.options.count("--clock") && !parseClock(words.options.at("--clock"), clock, error)) return false;
    return true;
}

int preview(const Words& words) {
    if (words.positional.size() != 1) return usage("preview needs one Send image");
    model::OperandValues values;
    model::ModelClock clock;
    std::string error;
    if (!commonInputs(words, values, clock, error)) return failure(error);
    int32_t message = 1;
    if (words.options.count("--message")) {
        const std::optional<int64_t> number = integer(words.options.at("--message"));
        if (!number || *number < 1 || *number > 255) return usage("--message needs a number from 1 to 255");
        message = static_cast<int32_t>(*number);
    }
    clsProtocolSendSrv set;
    if (!loadSet(set, words.positional[0], "Send", error)) return failure(error);
    if (message > set.NumberOfMessages())
        return failure(words.positional[0] + " has " + std::to_string(set.NumberOfMessages()) + " messages, not " +
                       std::to_string(message));
    const model::RenderedMessage out =
        model::renderSendMessage(set, message, values, clock, model::ChecksumTable::Default());
    std::cout << "Message " << message << ": " << out.Bytes.size() << " bytes\n";
    std::cout << "  hex:  " << hexLine(out.Bytes) << "\n";
    std::cout << "  text: " << textLine(out.Bytes) << "\n";
    for (const std::wstring& note : out.Notes) std::cout << "  note: " << toUtf8(note) << "\n";
    return 0;
}

int loopbackCommand(const Words& words) {
    if (words.positional.size() != 2) return usage("loopback needs a Send image and a Scan image");
    model::OperandValues values;
    model::ModelClock clock;
    std::string error;
    if (!commonInputs(words, values, clock, error)) return failure(error);
    int32_t baud = 9600;
    if (words.options.count("--baud")) {
        const std::optional<int64_t> rate = integer(words.options.at("--baud"));
        if (!rate || *rate < 50 || *rate > 10'000'000) return usage("--baud needs a rate from 50 to 10000000");
        baud = static_cast<int32_t>(*rate);
    }
    clsProtocolSendSrv send;
    clsProtocolScanSrv scan;
    if (!loadSet(send, words.positional[0], "Send", error) || !loadSet(scan, words.positional[1], "Scan", error))
        return failure(error);
    const model::LoopbackReport report =
        model::loopback(send, scan, baud, values, clock, model::ChecksumTable::Default());
    for (const model::LoopbackLine& line : report.Lines) {
        std::cout << "Send message " << line.SendMessage << " (" << textLine(line.Bytes) << "): ";
        if (line.ScanMessages.empty()) std::cout << "no Scan message\n";
        for (size_t i = 0; i < line.ScanMessages.size(); ++i)
            std::cout << (i ? ", " : "Scan message ") << line.ScanMessages[i]
                      << (i + 1 == line.ScanMessages.size() ? "\n" : "");
        for (const std::wstring& why : line.WhyNot) std::cout << "  " << toUtf8(why) << "\n";
    }
    for (const std::wstring& warning : report.Warnings) std::cout << "warning: " << toUtf8(warning) << "\n";
    std::cout << (report.Clean() ? "Loopback clean\n" : "Loopback found problems\n");
    return report.Clean() ? 0 : 1;
}

int decode(const Words& words) {
    const bool hexGiven = words.options.count("--hex") != 0;
    if (words.positional.size() != (hexGiven ? 1u : 2u))
        return usage("decode needs a Scan image and a capture file or --hex BYTES");
    std::string error;
    clsProtocolScanSrv scan;
    if (!loadSet(scan, words.positional[0], "Scan", error)) return failure(error);
    std::vector<uint8_t> capture;
    if (hexGiven) {
        const std::optional<std::vector<uint8_t>> bytes = parseHex(words.options.at("--hex"));
        if (!bytes) return usage("--hex needs pairs of hexadecimal digits");
        capture = *bytes;
    } else {
        const std::optional<std::vector<uint8_t>> bytes = readInput(words.positional[1], MaxCaptureBytes, error);
        if (!bytes) return failure(error);
        capture = *bytes;
    }
    const model::ChecksumTable table = model::ChecksumTable::Default();
    const model::ScanMatcher matcher(scan, table);
    size_t leftOver = 0, unmatched = 0;
    const std::vector<model::FrameSpan> frames = model::splitFrames(scan, capture, &leftOver);
    for (const model::FrameSpan& span : frames) {
        if (span.SkippedBefore) std::cout << span.SkippedBefore << " bytes before it belong to no frame\n";
        const std::span<const uint8_t> frame = std::span(capture).subspan(span.Offset, span.Length);
        const model::Recognition got = matcher.Recognize(frame);
        std::cout << "Frame at " << span.Offset << " (" << span.Length << " bytes): " << textLine(frame) << "\n";
        if (got.MessageNumber == 0) {
            ++unmatched;
            std::cout << "  no message\n";
            for (const std::wstring& why : got.WhyNot) std::cout << "  " << toUtf8(why) << "\n";
            continue;
        }
        std::cout << "  message " << got.MessageNumber << ", " << got.BytesReceived << " bytes received\n";
        for (const model::ReceivedField& field : got.Fields) {
            std::cout << "  field at position " << field.Position << ": ";
            for (size_t i = 0; i < field.Values.size(); ++i)
                std::cout << (i ? ", " : "")
                          << operandName(field.OperandType, field.OperandAddress + static_cast<int32_t>(i)) << " = "
                          << field.Values[i];
            if (field.HasDecimalPlaces)
                std::cout << "; " << operandName(field.DecimalPointType, field.DecimalPointAddress) << " = "
                          << field.DecimalPlaces << " decimal places";
            std::cout << "\n";
        }
    }
    if (leftOver) std::cout << leftOver << " bytes at the end make no complete frame\n";
    std::cout << frames.size() << " frames, " << frames.size() - unmatched << " recognised\n";
    return unmatched == 0 ? 0 : 1;
}

}  // namespace

bool isModelCommand(const std::string& command) {
    return command == "preview" || command == "loopback" || command == "decode";
}

int runModelCommand(const std::string& command, const std::vector<std::string>& words) {
    // The images register their operands with a host; this one is the command's own.
    ScopedHostContext host;
    std::string error;
    const std::vector<std::string> allowed =
        command == "preview"    ? std::vector<std::string>{"--message", "--values", "--clock"}
        : command == "loopback" ? std::vector<std::string>{"--baud", "--values", "--clock"}
                                : std::vector<std::string>{"--hex"};
    const std::optional<Words> split_ = split(words, allowed, error);
    if (!split_) return usage(error);
    try {
        if (command == "preview") return preview(*split_);
        if (command == "loopback") return loopbackCommand(*split_);
        return decode(*split_);
    } catch (const RuntimeError& e) {
        return failure("run-time error " + std::to_string(e.Number()) + ": " + toUtf8(e.Description()));
    }
}

}  // namespace qx::cli
