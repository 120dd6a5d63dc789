// The commands of qxfb that run a message set through the runtime model, with
// no component and no controller: preview (the wire bytes of a Send message),
// loopback (a Send set held against a Scan set) and decode (a capture of
// received bytes held against a Scan set). A set is given as its image or as
// its text form (JSON), whichever the file holds.
#include <iostream>
#include <memory>
#include <span>

#include "command_line.h"
#include "model_inputs.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "runtime_model/checksum_catalogue.h"
#include "runtime_model/loopback.h"
#include "runtime_model/scan_recognizer.h"
#include "runtime_model/send_renderer.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::cli {

const char* const modelCommandsHelp =
    R"(  qxfb preview SEND [--message N] [--values FILE] [--clock TIME]
                    [--crc16 R | --checksums FILE]
      Renders message N (default 1) of a Send image through the runtime
      model and prints its bytes in hexadecimal and as text, control
      characters named (<STX>, <CR>). Operand values come from FILE, one a
      line: "MI 12 = 1234" (type name, address, value; "#" starts a
      comment); an operand not given is 0. TIME is "YYYY-MM-DD HH:MM:SS"
      (default 2000-01-01 00:00:00).
  qxfb loopback SEND SCAN [--baud B] [--values FILE] [--clock TIME]
                          [--crc16 R | --checksums FILE]
      Renders every message of the Send image and holds it against the Scan
      image: which Scan message takes each, and warnings for a message none
      or two take, an end character a stream or a binary text can carry, and
      a silence shorter than 1.5 characters at B baud (default 9600). Exit
      status 1 when anything is warned about.
  qxfb decode SCAN (CAPTURE | --hex BYTES) [--crc16 R | --checksums FILE]
      Cuts a capture of received bytes (a file, or hexadecimal digits) into
      frames by the Scan's terminator and tells, frame by frame, which
      message it is and what each field received, or why no message
      matched. Exit status 1 when a frame matched nothing.
      SEND and SCAN are images or their text forms (JSON, as export writes
      them); a file whose first byte other than white space is "{" is read
      as a text form. The checksum codes are read by the default table
      ("CRC-16" is CRC-16/ARC), with --crc16 modbus "CRC-16" as
      CRC-16/MODBUS, low byte first (Modbus RTU), or by the table of
      --checksums FILE: a project file, or checksums.json as project export
      writes it.
)";

namespace {

// The words of one command, as the command line gave them.
struct Words {
    std::vector<std::string> sets;  // the Send and Scan files, in their order
    std::string capture;
    std::string hex;
    bool hexGiven = false;
    int32_t message = 1;
    int32_t baud = 9600;
    ModelInputs model;
};

int preview(const Words& words) {
    model::OperandValues values;
    model::ModelClock clock;
    std::string error;
    model::ChecksumTable table;
    if (!readValuesAndClock(words.model, values, clock, error) || !readChecksumTable(words.model, table, error))
        return failure(error);
    const int32_t message = words.message;
    const std::string& path = words.sets[0];
    const std::unique_ptr<clsProtocolSendSrv> loaded = loadSendSet(path, error);
    if (!loaded) return failure(error);
    const clsProtocolSendSrv& set = *loaded;
    if (message > set.NumberOfMessages())
        return failure(path + " has " + std::to_string(set.NumberOfMessages()) + " messages, not " +
                       std::to_string(message));
    const model::RenderedMessage out = model::renderSendMessage(set, message, values, clock, table);
    std::cout << "Message " << message << ": " << out.Bytes.size() << " bytes\n";
    std::cout << "  hex:  " << hexLine(out.Bytes) << "\n";
    std::cout << "  text: " << textLine(out.Bytes) << "\n";
    for (const std::wstring& note : out.Notes) std::cout << "  note: " << toUtf8(note) << "\n";
    return 0;
}

int loopbackCommand(const Words& words) {
    model::OperandValues values;
    model::ModelClock clock;
    std::string error;
    model::ChecksumTable table;
    if (!readValuesAndClock(words.model, values, clock, error) || !readChecksumTable(words.model, table, error))
        return failure(error);
    const std::unique_ptr<clsProtocolSendSrv> sendSet = loadSendSet(words.sets[0], error);
    if (!sendSet) return failure(error);
    const std::unique_ptr<clsProtocolScanSrv> scanSet = loadScanSet(words.sets[1], error);
    if (!scanSet) return failure(error);
    const clsProtocolSendSrv& send = *sendSet;
    const clsProtocolScanSrv& scan = *scanSet;
    const int32_t baud = words.baud;
    const model::LoopbackReport report = model::loopback(send, scan, baud, values, clock, table);
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
    if (words.hexGiven == !words.capture.empty())
        return usageError("decode needs a Scan image and a capture file or --hex BYTES");
    std::string error;
    const std::unique_ptr<clsProtocolScanSrv> scanSet = loadScanSet(words.sets[0], error);
    if (!scanSet) return failure(error);
    const clsProtocolScanSrv& scan = *scanSet;
    std::vector<uint8_t> capture;
    if (words.hexGiven) {
        const std::optional<std::vector<uint8_t>> bytes = parseHex(words.hex);
        if (!bytes) return usageError("--hex needs pairs of hexadecimal digits");
        capture = *bytes;
    } else {
        const std::optional<std::vector<uint8_t>> bytes = readInput(words.capture, MaxCaptureBytes, error);
        if (!bytes) return failure(error);
        capture = *bytes;
    }
    model::ChecksumTable table;
    if (!readChecksumTable(words.model, table, error)) return failure(error);
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
            std::cout << "  field at position " << field.Position << ": " << fieldText(field) << "\n";
        }
    }
    if (leftOver) std::cout << leftOver << " bytes at the end make no complete frame\n";
    std::cout << frames.size() << " frames, " << frames.size() - unmatched << " recognised\n";
    return unmatched == 0 ? 0 : 1;
}

}  // namespace

int run(int (*command)(const Words&), const Words& words) {
    return runInHost([&] { return command(words); });
}

void addModelCommands(CLI::App& qxfb, Command& chosen) {
    auto previewed = std::make_shared<Words>();
    CLI::App* previewCommand = addCommand(qxfb, "preview", "Renders a Send message's bytes through the runtime model",
                                          "preview needs one Send image");
    auto previewSend = std::make_shared<std::string>();
    previewCommand->add_option("SEND", *previewSend, "the Send set: its image or its text form (JSON)")
        ->type_name("FILE")
        ->required();
    previewCommand->add_option("--message", previewed->message, "the message to render")
        ->type_name("N")
        ->check(wholeNumber(1, 255))
        ->default_str("1");
    addValuesAndClock(*previewCommand, previewed->model);
    addChecksumOptions(*previewCommand, previewed->model);
    previewCommand->callback([&chosen, previewed, previewSend] {
        previewed->sets = {*previewSend};
        chosen = [previewed] { return run(preview, *previewed); };
    });

    auto looped = std::make_shared<Words>();
    CLI::App* loopbackCommand_ = addCommand(qxfb, "loopback", "Holds every message of a Send set against a Scan set",
                                            "loopback needs a Send image and a Scan image");
    auto send = std::make_shared<std::string>();
    auto scan = std::make_shared<std::string>();
    loopbackCommand_->add_option("SEND", *send, "the Send set: its image or its text form (JSON)")
        ->type_name("FILE")
        ->required();
    loopbackCommand_->add_option("SCAN", *scan, "the Scan set: its image or its text form (JSON)")
        ->type_name("FILE")
        ->required();
    loopbackCommand_->add_option("--baud", looped->baud, "the line's rate, for the silence between messages")
        ->type_name("B")
        ->check(wholeNumber(50, 10'000'000))
        ->default_str("9600");
    addValuesAndClock(*loopbackCommand_, looped->model);
    addChecksumOptions(*loopbackCommand_, looped->model);
    loopbackCommand_->callback([&chosen, looped, send, scan] {
        looped->sets = {*send, *scan};
        chosen = [looped] { return run(loopbackCommand, *looped); };
    });

    auto decoded = std::make_shared<Words>();
    CLI::App* decodeCommand = addCommand(qxfb, "decode", "Tells which Scan message each received frame is",
                                         "decode needs a Scan image and a capture file or --hex BYTES");
    auto decodeScan = std::make_shared<std::string>();
    decodeCommand->add_option("SCAN", *decodeScan, "the Scan set: its image or its text form (JSON)")
        ->type_name("FILE")
        ->required();
    CLI::Option* capture =
        decodeCommand->add_option("CAPTURE", decoded->capture, "a file of received bytes")->type_name("FILE");
    decodeCommand->add_option("--hex", decoded->hex, "the received bytes in hexadecimal digits instead of a file")
        ->type_name("BYTES")
        ->excludes(capture);
    addChecksumOptions(*decodeCommand, decoded->model);
    decodeCommand->callback([&chosen, decoded, decodeScan, decodeCommand] {
        decoded->sets = {*decodeScan};
        decoded->hexGiven = decodeCommand->count("--hex") != 0;
        chosen = [decoded] { return run(decode, *decoded); };
    });
}

}  // namespace qx::cli
