// The commands of qxfb that talk to a device over a serial port or a TCP
// socket: send (one rendered Send message onto the line), listen (every
// frame received, cut and recognised against a Scan set as it arrives) and
// simulate (a device that answers each recognised frame with a Send message
// chosen by a rule file). The link library carries the bytes, the runtime
// model renders and recognises them; this file joins the two.
#include <chrono>
#include <cstdio>
#include <ctime>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <thread>

#include "command_line.h"
#include "link/link.h"
#include "message/protocol_message.h"
#include "model_inputs.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/basics/text_place.h"
#include "runtime_model/frame_stream.h"
#include "runtime_model/scan_recognizer.h"
#include "runtime_model/send_renderer.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::cli {

const char* const linkCommandsHelp =
    R"(  qxfb send SEND --message N [--values FILE] [--clock TIME]
                [--crc16 R | --checksums FILE] LINE
      Renders message N of the Send set as preview does, puts its bytes on
      the line and prints them in hexadecimal and as text.
  qxfb listen SCAN LINE [--json] [--count N] [--timeout MS] [--frame-timeout MS]
                [--crc16 R | --checksums FILE]
      Cuts the bytes that arrive into frames by the Scan's terminator and
      prints one line for each frame: the time its last byte came (UTC), the
      Scan message it is and what each field received, or why no message
      took it; a frame begun and not finished within --frame-timeout MS
      (default 500) is printed as cut, one longer than the Scan allows as
      dropped. --json prints one JSON object a line instead. --count stops
      after N frames, --timeout after MS milliseconds in which nothing came
      (exit status 1 when it stops so before N frames).
  qxfb simulate --send SEND --scan SCAN --rules FILE LINE [--values FILE]
                [--clock TIME] [--crc16 R | --checksums FILE] [--count N]
                [--timeout MS]
      Plays a device: each frame that the Scan recognises writes its fields'
      values into the device's operands (which start as --values gives them)
      and is answered with the Send message that its rule names. The rule
      file is JSON:
        {"rules": [
          {"when": 2, "answer": 1,
           "values": {"MI 20": {"field": 1}, "MI 21": 42, "MI 22": {"operand": "MI 40"}}}]}
      "when" is a Scan message number, "answer" the Send message that answers
      it; "values" sets operands of the answer for this rule: a whole number,
      {"field": K} the first value of the K-th field received (counted from 1
      in the frame's order; "element": I for the I-th value of a vector), or
      {"operand": "MI 40"} an operand of the device. The first rule of a
      message wins; a frame with no rule or no message is printed and not
      answered. A mistake in the file is reported with its line and column.
      --count stops after N answers, --timeout after MS milliseconds in which
      nothing came.
      LINE is one of:
        --serial DEV [--baud B] [--data-bits 7|8] [--parity none|odd|even]
                     [--stop-bits 1|2] [--flow none|hardware|software]
            a serial port, by default 9600 baud, 8 data bits, no parity, 1
            stop bit, no flow control;
        --tcp HOST:PORT
            a TCP connection to a device; listen and simulate connect again
            when the device closes it;
        --listen PORT [--address A]   (listen and simulate)
            a TCP server on 127.0.0.1 (A when given) that serves one peer at
            a time; port 0 lets the system choose, and the address listened
            on is printed on standard error.
)";

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// The words that choose and set the line.
struct LineWords {
    std::string serial;
    int32_t baud = 9600;
    int32_t dataBits = 8;
    std::string parity = "none";
    int32_t stopBits = 1;
    std::string flow = "none";
    std::string tcp;
    int32_t listenPort = -1;
    std::string address = link::LoopbackAddress;
};

CLI::Validator hostPort() {
    return CLI::Validator(
        [](std::string& text) -> std::string {
            std::string host, error;
            uint16_t port = 0;
            return link::parseHostPort(text, host, port, error) ? "" : error;
        },
        "HOST:PORT");
}

void addLineOptions(CLI::App& command, LineWords& words, bool server) {
    CLI::Option* serial =
        command.add_option("--serial", words.serial, "the serial port, e.g. /dev/ttyUSB0")->type_name("DEV");
    command.add_option("--baud", words.baud, "the serial port's baud rate")
        ->type_name("B")
        ->check(wholeNumber(50, 4'000'000))
        ->default_str("9600")
        ->needs(serial);
    command.add_option("--data-bits", words.dataBits, "7 or 8 data bits")
        ->type_name("7|8")
        ->check(CLI::IsMember({7, 8}))
        ->default_str("8")
        ->needs(serial);
    command.add_option("--parity", words.parity, "none, odd or even")
        ->type_name("P")
        ->check(CLI::IsMember({"none", "odd", "even"}))
        ->default_str("none")
        ->needs(serial);
    command.add_option("--stop-bits", words.stopBits, "1 or 2 stop bits")
        ->type_name("1|2")
        ->check(CLI::IsMember({1, 2}))
        ->default_str("1")
        ->needs(serial);
    command.add_option("--flow", words.flow, "flow control: none, hardware (RTS/CTS) or software (XON/XOFF)")
        ->type_name("F")
        ->check(CLI::IsMember({"none", "hardware", "software"}))
        ->default_str("none")
        ->needs(serial);
    CLI::Option* tcp = command.add_option("--tcp", words.tcp, "a TCP connection to HOST:PORT")
                           ->type_name("HOST:PORT")
                           ->check(hostPort());
    tcp->excludes(serial);
    if (!server) return;
    CLI::Option* listen = command.add_option("--listen", words.listenPort, "a TCP server on PORT, one peer at a time")
                              ->type_name("PORT")
                              ->check(wholeNumber(0, 65535))
                              ->excludes(serial)
                              ->excludes(tcp);
    command.add_option("--address", words.address, "the address the server listens on")
        ->type_name("A")
        ->default_str(link::LoopbackAddress)
        ->needs(listen);
}

bool lineChosen(const LineWords& words) { return !words.serial.empty() || !words.tcp.empty() || words.listenPort >= 0; }

std::unique_ptr<link::Link> openLine(const LineWords& words) {
    if (!words.serial.empty()) {
        link::SerialSettings settings;
        settings.Device = words.serial;
        settings.Baud = words.baud;
        settings.DataBits = words.dataBits;
        link::parityFromName(words.parity, settings.ParityBit);
        settings.StopBits = words.stopBits;
        link::flowFromName(words.flow, settings.Flow);
        return link::openSerial(settings);
    }
    if (!words.tcp.empty()) {
        std::string host, error;
        uint16_t port = 0;
        link::parseHostPort(words.tcp, host, port, error);
        return link::connectTcp(host, port);
    }
    auto server = link::listenTcp(static_cast<uint16_t>(words.listenPort), words.address);
    std::cerr << "qxfb: listening on " << server->Name() << std::endl;
    return server;
}

// The line's own words for what was chosen, for the first line printed.
std::string lineText(const LineWords& words) {
    if (words.serial.empty()) return "";
    link::SerialSettings settings;
    settings.Baud = words.baud;
    settings.DataBits = words.dataBits;
    link::parityFromName(words.parity, settings.ParityBit);
    settings.StopBits = words.stopBits;
    link::flowFromName(words.flow, settings.Flow);
    return " (" + link::describe(settings) + ")";
}

// "2026-11-24T20:15:03.123Z" of a moment of the steady clock.
class WallClock {
public:
    std::string operator()(Clock::time_point at) const {
        const auto wall = wallStart_ + std::chrono::duration_cast<std::chrono::system_clock::duration>(at - start_);
        const auto sinceEpoch = std::chrono::duration_cast<milliseconds>(wall.time_since_epoch()).count();
        const std::time_t seconds = static_cast<std::time_t>(sinceEpoch / 1000);
        std::tm utc{};
        gmtime_r(&seconds, &utc);
        char text[96];
        std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900, utc.tm_mon + 1,
                      utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, static_cast<int>(sinceEpoch % 1000));
        return text;
    }

private:
    Clock::time_point start_ = Clock::now();
    std::chrono::system_clock::time_point wallStart_ = std::chrono::system_clock::now();
};

// What stops a session on a line.
struct SessionLimits {
    int64_t count = 0;      // frames (listen) or answers (simulate); 0: no limit
    int64_t timeoutMs = 0;  // milliseconds with nothing received; 0: no limit
    int64_t frameTimeoutMs = 500;
};

// Reads the line until the handler says stop or nothing came for the time
// limit; every frame, with what the Scan made of it, goes to the handler.
// A line that closes is opened again (a server waits for its next peer).
// True when the handler stopped it, false when the time ran out.
using FrameHandler = std::function<bool(const model::StreamFrame&, const model::Recognition*)>;

bool runLine(link::Link& line, const clsProtocolScanSrv& scan, const model::ChecksumTable& checksums,
             const SessionLimits& limits, const FrameHandler& handle) {
    const model::ScanMatcher matcher(scan, checksums);
    model::FrameStreamOptions options;
    options.CutAfter = milliseconds(limits.frameTimeoutMs);
    model::FrameStream stream(scan, options);
    bool stop = false;
    const model::FrameStream::Sink sink = [&](const model::StreamFrame& frame) {
        if (stop) return;
        if (frame.EndedBy == model::FrameEnd::Terminator || frame.EndedBy == model::FrameEnd::Silence) {
            const model::Recognition got = matcher.Recognize(frame.Bytes);
            stop = handle(frame, &got);
        } else {
            stop = handle(frame, nullptr);
        }
    };
    std::vector<uint8_t> buffer(4096);
    Clock::time_point lastHeard = Clock::now();
    const milliseconds quiet(limits.timeoutMs);
    while (!stop) {
        Clock::time_point now = Clock::now();
        // Wake for whatever ends first: the frame that waits, the time limit, or a look now and then.
        Clock::time_point wake = now + milliseconds(200);
        if (const std::optional<Clock::time_point> deadline = stream.Deadline()) wake = std::min(wake, *deadline);
        if (limits.timeoutMs > 0) wake = std::min(wake, lastHeard + quiet);
        const auto wait = std::max(milliseconds(0), std::chrono::ceil<milliseconds>(wake - now));
        const link::ReadResult got = line.read(buffer, wait);
        now = Clock::now();
        if (got.Status == link::ReadStatus::Data) {
            lastHeard = now;
            stream.Feed(std::span(buffer).subspan(0, got.Count), now, sink);
            continue;
        }
        stream.Idle(now, sink);
        if (stop) break;
        if (limits.timeoutMs > 0 && now - lastHeard >= quiet) return false;
        if (got.Status != link::ReadStatus::Closed) continue;
        stream.Flush(sink);
        std::cerr << "qxfb: " << line.Name() << " closed; opening it again" << std::endl;
        for (;;) {
            try {
                line.reopen();
                break;
            } catch (const RuntimeError& e) {
                if (limits.timeoutMs > 0 && Clock::now() - lastHeard >= quiet) throw;
                std::this_thread::sleep_for(milliseconds(200));
            }
        }
    }
    return true;
}

const char* endName(model::FrameEnd end) {
    switch (end) {
        case model::FrameEnd::Terminator:
            return "terminator";
        case model::FrameEnd::Silence:
            return "silence";
        case model::FrameEnd::Timeout:
            return "timeout";
        case model::FrameEnd::TooLong:
            return "too long";
    }
    return "";
}

std::string whyNotText(const model::Recognition& got) {
    std::string text;
    for (const std::wstring& why : got.WhyNot) text += (text.empty() ? "" : "; ") + toUtf8(why);
    return text;
}

// One line of listen and simulate for a frame, without its line end.
std::string frameLine(const model::StreamFrame& frame, const model::Recognition* got, int64_t frameTimeoutMs,
                      const WallClock& wall) {
    std::string text = wall(frame.LastByte) + "  ";
    if (frame.EndedBy == model::FrameEnd::TooLong) {
        text += "dropped: a frame of " + std::to_string(frame.DroppedBytes) + " bytes is longer than the Scan allows";
    } else if (!got) {
        text += "cut after " + std::to_string(frameTimeoutMs) + " ms: " + textLine(frame.Bytes);
    } else if (got->MessageNumber == 0) {
        text += "no message: " + textLine(frame.Bytes) + "  " + whyNotText(*got);
    } else {
        text += "message " + std::to_string(got->MessageNumber) + ": " + textLine(frame.Bytes);
        for (const model::ReceivedField& field : got->Fields) text += "  " + fieldText(field);
    }
    if (frame.SkippedBefore)
        text += "  (" + std::to_string(frame.SkippedBefore) + " bytes before it belong to no frame)";
    return text;
}

nlohmann::json frameJson(const model::StreamFrame& frame, const model::Recognition* got, const WallClock& wall) {
    nlohmann::json out;
    out["time"] = wall(frame.LastByte);
    out["end"] = endName(frame.EndedBy);
    out["skippedBefore"] = frame.SkippedBefore;
    if (frame.EndedBy == model::FrameEnd::TooLong) {
        out["droppedBytes"] = frame.DroppedBytes;
        return out;
    }
    out["bytes"] = hexLine(frame.Bytes);
    out["text"] = textLine(frame.Bytes);
    if (!got) return out;
    out["message"] = got->MessageNumber == 0 ? nlohmann::json() : nlohmann::json(got->MessageNumber);
    if (got->MessageNumber == 0) {
        nlohmann::json why = nlohmann::json::array();
        for (const std::wstring& line : got->WhyNot) why.push_back(toUtf8(line));
        out["whyNot"] = std::move(why);
        return out;
    }
    nlohmann::json fields = nlohmann::json::array();
    for (const model::ReceivedField& field : got->Fields) {
        nlohmann::json one{{"position", field.Position},
                           {"operand", operandName(field.OperandType, field.OperandAddress)},
                           {"values", field.Values}};
        if (field.HasDecimalPlaces)
            one["decimalPlaces"] = {{"operand", operandName(field.DecimalPointType, field.DecimalPointAddress)},
                                    {"value", field.DecimalPlaces}};
        fields.push_back(std::move(one));
    }
    out["fields"] = std::move(fields);
    return out;
}

// --- send

struct SendWords {
    std::string set;
    int32_t message = 1;
    ModelInputs model;
    LineWords line;
};

int sendCommand(const SendWords& words) {
    if (!lineChosen(words.line)) return usageError("send needs a line: --serial DEV or --tcp HOST:PORT");
    model::OperandValues values;
    model::ModelClock clock;
    std::string error;
    if (!readValuesAndClock(words.model, values, clock, error)) return failure(error);
    const std::unique_ptr<clsProtocolSendSrv> set = loadSendSet(words.set, error);
    if (!set) return failure(error);
    if (words.message > set->NumberOfMessages())
        return failure(words.set + " has " + std::to_string(set->NumberOfMessages()) + " messages, not " +
                       std::to_string(words.message));
    model::ChecksumTable checksums;
    if (!readChecksumTable(words.model, checksums, error)) return failure(error);
    const model::RenderedMessage out = model::renderSendMessage(*set, words.message, values, clock, checksums);
    try {
        const std::unique_ptr<link::Link> line = openLine(words.line);
        line->write(out.Bytes);
        line->close();
        std::cout << "Sent message " << words.message << " to " << line->Name() << lineText(words.line) << ": "
                  << out.Bytes.size() << " bytes\n";
    } catch (const RuntimeError& e) {
        return failure(toUtf8(e.Description()));
    }
    std::cout << "  hex:  " << hexLine(out.Bytes) << "\n";
    std::cout << "  text: " << textLine(out.Bytes) << "\n";
    for (const std::wstring& note : out.Notes) std::cout << "  note: " << toUtf8(note) << "\n";
    return 0;
}

// --- listen

struct ListenWords {
    std::string set;
    bool json = false;
    SessionLimits limits;
    ModelInputs model;
    LineWords line;
};

int listenCommand(const ListenWords& words) {
    if (!lineChosen(words.line))
        return usageError("listen needs a line: --serial DEV, --tcp HOST:PORT or --listen PORT");
    std::string error;
    const std::unique_ptr<clsProtocolScanSrv> scan = loadScanSet(words.set, error);
    if (!scan) return failure(error);
    model::ChecksumTable checksums;
    if (!readChecksumTable(words.model, checksums, error)) return failure(error);
    const WallClock wall;
    int64_t frames = 0;
    try {
        const std::unique_ptr<link::Link> line = openLine(words.line);
        const bool stopped = runLine(
            *line, *scan, checksums, words.limits, [&](const model::StreamFrame& frame, const model::Recognition* got) {
                if (words.json)
                    std::cout << frameJson(frame, got, wall).dump() << std::endl;
                else
                    std::cout << frameLine(frame, got, words.limits.frameTimeoutMs, wall) << std::endl;
                if (frame.EndedBy != model::FrameEnd::TooLong) ++frames;
                return words.limits.count > 0 && frames >= words.limits.count;
            });
        line->close();
        if (!stopped && words.limits.count > 0)
            return failure("nothing came for " + std::to_string(words.limits.timeoutMs) +
                           " ms: " + std::to_string(frames) + " of " + std::to_string(words.limits.count) + " frames");
    } catch (const RuntimeError& e) {
        return failure(toUtf8(e.Description()));
    }
    return 0;
}

// --- simulate

// Where a value of a rule comes from.
struct RuleValue {
    enum Kind { Fixed, Field, Operand } From = Fixed;
    int64_t Value = 0;        // Fixed
    int32_t FieldNumber = 0;  // Field: 1-based
    int32_t Element = 0;      // Field: 0-based
    std::pair<int32_t, int32_t> Source{};
};

struct Rule {
    int32_t When = 0;
    int32_t Answer = 0;
    std::vector<std::pair<std::pair<int32_t, int32_t>, RuleValue>> Values;
};

// Where a value of a valid JSON text begins, by its path ("rules", "0",
// "when"): the place of a mistake that the parser did not see.
class JsonPlaces {
public:
    explicit JsonPlaces(const std::string& text) : text_(text) {}

    // The place of the value, or with key of the member's name.
    std::string at(const std::vector<std::string>& path, bool key = false) const {
        const size_t offset = find(skipBlanks(0), path, 0, key);
        size_t line = 1, column = 1;
        for (size_t i = 0; i < offset && i < text_.size(); ++i) {
            if (text_[i] == '\n') {
                ++line;
                column = 1;
            } else {
                ++column;
            }
        }
        return std::to_string(line) + ":" + std::to_string(column);
    }

private:
    size_t skipBlanks(size_t i) const {
        while (i < text_.size() && (text_[i] == ' ' || text_[i] == '\t' || text_[i] == '\r' || text_[i] == '\n')) ++i;
        return i;
    }
    // From the opening quote to behind the closing one; the raw text between.
    size_t string(size_t i, std::string& raw) const {
        raw.clear();
        for (++i; i < text_.size() && text_[i] != '"'; ++i) {
            if (text_[i] == '\\' && i + 1 < text_.size()) raw += text_[i++];
            raw += text_[i];
        }
        return i + 1;
    }
    size_t skipValue(size_t i) const {
        std::string ignored;
        if (i >= text_.size()) return i;
        if (text_[i] == '"') return string(i, ignored);
        if (text_[i] == '{' || text_[i] == '[') {
            const char close = text_[i] == '{' ? '}' : ']';
            i = skipBlanks(i + 1);
            while (i < text_.size() && text_[i] != close) {
                if (close == '}') i = skipBlanks(string(i, ignored) + 1);
                i = skipBlanks(skipValue(skipBlanks(i)));
                if (i < text_.size() && text_[i] == ',') i = skipBlanks(i + 1);
            }
            return i + 1;
        }
        while (i < text_.size() && text_[i] != ',' && text_[i] != '}' && text_[i] != ']' && text_[i] != ' ' &&
               text_[i] != '\n' && text_[i] != '\r' && text_[i] != '\t')
            ++i;
        return i;
    }
    size_t find(size_t i, const std::vector<std::string>& path, size_t depth, bool atKey) const {
        if (depth == path.size() || i >= text_.size()) return i;
        if (text_[i] != '{' && text_[i] != '[') return i;
        const bool object = text_[i] == '{';
        const char close = object ? '}' : ']';
        i = skipBlanks(i + 1);
        std::string key;
        for (size_t index = 0; i < text_.size() && text_[i] != close; ++index) {
            const size_t keyAt = i;
            if (object) i = skipBlanks(string(i, key) + 1);
            i = skipBlanks(i);
            if (object ? key == path[depth] : std::to_string(index) == path[depth]) {
                if (atKey && object && depth + 1 == path.size()) return keyAt;
                return find(i, path, depth + 1, atKey);
            }
            i = skipBlanks(skipValue(i));
            if (i < text_.size() && text_[i] == ',') i = skipBlanks(i + 1);
        }
        return i;
    }

    const std::string& text_;
};

// A mistake in the rule file, with its place.
struct RuleError {
    std::vector<std::string> Path;
    std::string What;
    // The place is the member's name, not its value.
    bool AtKey = false;
};

int64_t wholeNumberIn(const nlohmann::json& value, int64_t min, int64_t max, const std::vector<std::string>& path,
                      const std::string& what) {
    if (!value.is_number_integer() || value.get<int64_t>() < min || value.get<int64_t>() > max)
        throw RuleError{path, what + " must be a whole number from " + std::to_string(min) + " to " +
                                  std::to_string(max) + ", not " + value.dump()};
    return value.get<int64_t>();
}

std::pair<int32_t, int32_t> operandIn(const std::string& name, const std::vector<std::string>& path, bool isKey) {
    const std::optional<std::pair<int32_t, int32_t>> operand = parseOperand(name);
    if (!operand) throw RuleError{path, "\"" + name + "\" is no operand (\"MI 20\": a type and an address)", isKey};
    return *operand;
}

void onlyKeys(const nlohmann::json& object, std::initializer_list<const char*> keys,
              const std::vector<std::string>& path, const std::string& what) {
    for (const auto& item : object.items()) {
        bool known = false;
        for (const char* key : keys) known = known || item.key() == key;
        if (known) continue;
        std::string list;
        for (const char* key : keys) list += std::string(list.empty() ? "" : ", ") + "\"" + key + "\"";
        std::vector<std::string> at = path;
        at.push_back(item.key());
        throw RuleError{at, "unknown key \"" + item.key() + "\" in " + what + " (" + list + ")", true};
    }
}

RuleValue ruleValue(const nlohmann::json& value, const std::vector<std::string>& path) {
    RuleValue out;
    if (value.is_number_integer()) {
        out.Value = value.get<int64_t>();
        return out;
    }
    if (value.is_object() && value.contains("field")) {
        onlyKeys(value, {"field", "element"}, path, "a value from a field");
        out.From = RuleValue::Field;
        std::vector<std::string> at = path;
        at.push_back("field");
        out.FieldNumber = static_cast<int32_t>(wholeNumberIn(value["field"], 1, 500, at, "\"field\""));
        if (value.contains("element")) {
            at.back() = "element";
            out.Element = static_cast<int32_t>(wholeNumberIn(value["element"], 1, 500, at, "\"element\"")) - 1;
        }
        return out;
    }
    if (value.is_object() && value.contains("operand") && value["operand"].is_string()) {
        onlyKeys(value, {"operand"}, path, "a value from an operand");
        out.From = RuleValue::Operand;
        std::vector<std::string> at = path;
        at.push_back("operand");
        out.Source = operandIn(value["operand"].get<std::string>(), at, false);
        return out;
    }
    throw RuleError{path,
                    "a value must be a whole number, {\"field\": K} or {\"operand\": \"MI 40\"}, not " + value.dump()};
}

std::vector<Rule> rulesOf(const nlohmann::json& file, int32_t scanMessages, int32_t sendMessages) {
    if (!file.is_object() || !file.contains("rules") || !file["rules"].is_array())
        throw RuleError{{}, "the file must be an object with \"rules\": a list of rules"};
    onlyKeys(file, {"rules"}, {}, "the file");
    std::vector<Rule> rules;
    for (size_t i = 0; i < file["rules"].size(); ++i) {
        const nlohmann::json& rule = file["rules"][i];
        const std::vector<std::string> path{"rules", std::to_string(i)};
        if (!rule.is_object()) throw RuleError{path, "a rule must be an object with \"when\" and \"answer\""};
        onlyKeys(rule, {"when", "answer", "values"}, path, "a rule");
        for (const char* key : {"when", "answer"})
            if (!rule.contains(key)) throw RuleError{path, std::string("the rule has no \"") + key + "\""};
        const auto at = [&](const std::string& key) {
            std::vector<std::string> place = path;
            place.push_back(key);
            return place;
        };
        Rule out;
        out.When = static_cast<int32_t>(
            wholeNumberIn(rule["when"], 1, scanMessages, at("when"), "\"when\" (a message of the Scan)"));
        out.Answer = static_cast<int32_t>(
            wholeNumberIn(rule["answer"], 1, sendMessages, at("answer"), "\"answer\" (a message of the Send)"));
        if (rule.contains("values")) {
            if (!rule["values"].is_object())
                throw RuleError{at("values"), "\"values\" must be an object: {\"MI 20\": 42}"};
            for (const auto& item : rule["values"].items()) {
                std::vector<std::string> place = at("values");
                place.push_back(item.key());
                out.Values.emplace_back(operandIn(item.key(), place, true), ruleValue(item.value(), place));
            }
        }
        rules.push_back(std::move(out));
    }
    return rules;
}

std::optional<std::vector<Rule>> loadRules(const std::string& path, int32_t scanMessages, int32_t sendMessages,
                                           std::string& error) {
    const std::optional<std::vector<uint8_t>> bytes = readInput(path, 16u << 20, error);
    if (!bytes) return std::nullopt;
    const std::string text(bytes->begin(), bytes->end());
    nlohmann::json file;
    try {
        file = nlohmann::json::parse(text);
    } catch (const nlohmann::json::exception& e) {
        // "[json.exception.parse_error.101] parse error at line 3, column 7: syntax error ...", or a number too
        // large for any type, which comes without a place.
        const std::string what = e.what();
        int line = 0, column = 0;
        const size_t at = what.find("at line ");
        if (at != std::string::npos && std::sscanf(what.c_str() + at, "at line %d, column %d", &line, &column) == 2)
            error = path + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + jsonFaultReason(what);
        else
            error = path + ": " + jsonFaultReason(what);
        return std::nullopt;
    }
    try {
        return rulesOf(file, scanMessages, sendMessages);
    } catch (const RuleError& e) {
        error = path + ":" + JsonPlaces(text).at(e.Path, e.AtKey) + ": " + e.What;
        return std::nullopt;
    }
}

struct SimulateWords {
    std::string send, scan, rules;
    SessionLimits limits;
    ModelInputs model;
    LineWords line;
};

// The device's operands after a frame: each field's values from its operand on.
void store(const model::Recognition& got, model::OperandValues& memory) {
    for (const model::ReceivedField& field : got.Fields) {
        for (size_t i = 0; i < field.Values.size(); ++i)
            memory.Set(field.OperandType, field.OperandAddress + static_cast<int32_t>(i), field.Values[i]);
        if (field.HasDecimalPlaces) memory.Set(field.DecimalPointType, field.DecimalPointAddress, field.DecimalPlaces);
    }
}

int64_t valueOf(const RuleValue& value, const model::Recognition& got, const model::OperandValues& memory) {
    switch (value.From) {
        case RuleValue::Fixed:
            return value.Value;
        case RuleValue::Operand:
            return memory.Get(value.Source.first, value.Source.second);
        case RuleValue::Field:
            break;
    }
    const size_t field = static_cast<size_t>(value.FieldNumber - 1);
    if (field >= got.Fields.size() || static_cast<size_t>(value.Element) >= got.Fields[field].Values.size()) return 0;
    return got.Fields[field].Values[static_cast<size_t>(value.Element)];
}

int simulateCommand(const SimulateWords& words) {
    if (!lineChosen(words.line))
        return usageError("simulate needs a line: --serial DEV, --tcp HOST:PORT or --listen PORT");
    model::OperandValues memory;
    model::ModelClock clock;
    std::string error;
    if (!readValuesAndClock(words.model, memory, clock, error)) return failure(error);
    const std::unique_ptr<clsProtocolSendSrv> send = loadSendSet(words.send, error);
    if (!send) return failure(error);
    const std::unique_ptr<clsProtocolScanSrv> scan = loadScanSet(words.scan, error);
    if (!scan) return failure(error);
    const std::optional<std::vector<Rule>> rules =
        loadRules(words.rules, scan->NumberOfMessages(), send->NumberOfMessages(), error);
    if (!rules) return failure(error);
    model::ChecksumTable checksums;
    if (!readChecksumTable(words.model, checksums, error)) return failure(error);
    const WallClock wall;
    int64_t answers = 0;
    try {
        const std::unique_ptr<link::Link> line = openLine(words.line);
        const bool stopped = runLine(
            *line, *scan, checksums, words.limits, [&](const model::StreamFrame& frame, const model::Recognition* got) {
                std::string text = frameLine(frame, got, words.limits.frameTimeoutMs, wall);
                const Rule* rule = nullptr;
                if (got && got->MessageNumber != 0) {
                    store(*got, memory);
                    for (const Rule& candidate : *rules)
                        if (!rule && candidate.When == got->MessageNumber) rule = &candidate;
                    if (!rule) text += "  -> no rule answers message " + std::to_string(got->MessageNumber);
                }
                if (rule) {
                    model::OperandValues values = memory;
                    for (const auto& [operand, value] : rule->Values)
                        values.Set(operand.first, operand.second, valueOf(value, *got, memory));
                    const model::RenderedMessage answer =
                        model::renderSendMessage(*send, rule->Answer, values, clock, checksums);
                    line->write(answer.Bytes);
                    ++answers;
                    text += "  -> message " + std::to_string(rule->Answer) + ": " + textLine(answer.Bytes);
                }
                std::cout << text << std::endl;
                return words.limits.count > 0 && answers >= words.limits.count;
            });
        line->close();
        if (!stopped && words.limits.count > 0)
            return failure("nothing came for " + std::to_string(words.limits.timeoutMs) + " ms: " +
                           std::to_string(answers) + " of " + std::to_string(words.limits.count) + " answers");
    } catch (const RuntimeError& e) {
        return failure(toUtf8(e.Description()));
    }
    return 0;
}

void addSessionOptions(CLI::App& command, SessionLimits& limits, const char* counted) {
    command.add_option("--count", limits.count, std::string("stops after N ") + counted)
        ->type_name("N")
        ->check(wholeNumber(1, 1'000'000'000));
    command.add_option("--timeout", limits.timeoutMs, "stops after MS milliseconds in which nothing came")
        ->type_name("MS")
        ->check(wholeNumber(1, 86'400'000));
    command.add_option("--frame-timeout", limits.frameTimeoutMs, "cuts a frame not finished MS ms after its last byte")
        ->type_name("MS")
        ->check(wholeNumber(1, 3'600'000))
        ->default_str("500");
}

}  // namespace

void addLinkCommands(CLI::App& qxfb, Command& chosen) {
    auto sent = std::make_shared<SendWords>();
    CLI::App* send = addCommand(qxfb, "send", "Puts a rendered Send message on a serial port or a TCP connection",
                                "send needs a Send set and a line");
    send->add_option("SEND", sent->set, "the Send set: its image or its text form (JSON)")
        ->type_name("FILE")
        ->required();
    send->add_option("--message", sent->message, "the message to send")
        ->type_name("N")
        ->check(wholeNumber(1, 255))
        ->required();
    addValuesAndClock(*send, sent->model);
    addChecksumOptions(*send, sent->model);
    addLineOptions(*send, sent->line, false);
    send->callback([&chosen, sent] { chosen = [sent] { return runInHost([&] { return sendCommand(*sent); }); }; });

    auto heard = std::make_shared<ListenWords>();
    CLI::App* listen = addCommand(qxfb, "listen", "Prints each frame received and the Scan message it is",
                                  "listen needs a Scan set and a line");
    listen->add_option("SCAN", heard->set, "the Scan set: its image or its text form (JSON)")
        ->type_name("FILE")
        ->required();
    listen->add_flag("--json", heard->json, "one JSON object a line");
    addSessionOptions(*listen, heard->limits, "frames");
    addChecksumOptions(*listen, heard->model);
    addLineOptions(*listen, heard->line, true);
    listen->callback(
        [&chosen, heard] { chosen = [heard] { return runInHost([&] { return listenCommand(*heard); }); }; });

    auto played = std::make_shared<SimulateWords>();
    CLI::App* simulate = addCommand(qxfb, "simulate", "Plays a device that answers Scan messages with Send messages",
                                    "simulate needs --send SEND, --scan SCAN, --rules FILE and a line");
    simulate->add_option("--send", played->send, "the device's answers: a Send set")->type_name("SEND")->required();
    simulate->add_option("--scan", played->scan, "what the device understands: a Scan set")
        ->type_name("SCAN")
        ->required();
    simulate->add_option("--rules", played->rules, "which answer each message gets (JSON; see qxfb --help)")
        ->type_name("FILE")
        ->required();
    addValuesAndClock(*simulate, played->model);
    addChecksumOptions(*simulate, played->model);
    addSessionOptions(*simulate, played->limits, "answers");
    addLineOptions(*simulate, played->line, true);
    simulate->callback(
        [&chosen, played] { chosen = [played] { return runInHost([&] { return simulateCommand(*played); }); }; });
}

}  // namespace qx::cli
