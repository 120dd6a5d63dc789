// The commands of qxfb that turn a Send or Scan image into its text form
// (JSON that a person can read and diff) and back: export and import.

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>

#include "command_line.h"
#include "model_inputs.h"
#include "inspect/text_form.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::cli {

const char* const textFormCommandsHelp =
    R"(  qxfb export IMAGE [--kind send|scan]
      Writes the text form of a Send or Scan image to standard output: JSON
      of the format "qxfbcom2-message-set" version 1, whose schema is
      share/QxFBCom2/schema/qxfbcom2-message-set.v1.schema.json. Without
      --kind the image is read as a Send and as a Scan image, and the one
      that gives the same image back is taken. The extended operands are on
      when the image's version byte is 1.
  qxfb import JSON -o IMAGE
      Writes the image of a text form (a Send or Scan set, as its "kind"
      says) to IMAGE. An invalid text is reported with its line and column.
)";

namespace {

// An image of 16-bit offsets is below 64 KB; a text form of one is far
// below 16 MB.
constexpr uintmax_t MaxImageBytes = 65536;
constexpr uintmax_t MaxTextBytes = uintmax_t{16} << 20;

// Where each image keeps its version byte.
constexpr size_t SendVersionOffset = 24;
constexpr size_t ScanVersionOffset = 3;

std::optional<std::string> readFile(const std::string& path, uintmax_t limit, std::string& error) {
    const std::optional<std::vector<uint8_t>> bytes = readInput(path, limit, error);
    if (!bytes) return std::nullopt;
    return std::string(bytes->begin(), bytes->end());
}

bool isConstantType(uint8_t type) { return type == 34 || type == 35 || type == 37 || type == 38; }

// Offsets 6 and 7 of a Send image hold a constant's place in the host's
// constant table, which every load gives anew.
Bytes withoutConstantPlace(Bytes image) {
    if (image.size() > 7 && isConstantType(image[0])) image[6] = image[7] = 0;
    return image;
}

// The text form of the image read as one kind, in a host whose extended
// operands follow the image's version byte. With exact, only when the set
// read gives the same image back.
std::optional<std::string> exportAs(const Bytes& image, bool send, bool exact, std::string& error) {
    ScopedHostContext host;
    const size_t versionOffset = send ? SendVersionOffset : ScanVersionOffset;
    host->ExtendedOperands = image.size() > versionOffset && image[versionOffset] == 1;
    try {
        if (send) {
            clsProtocolSendSrv set;
            set.BinaryData(image);
            if (exact && withoutConstantPlace(set.BinaryData()) != withoutConstantPlace(image)) return std::nullopt;
            return textform::exportSendSet(set);
        }
        clsProtocolScanSrv set;
        set.BinaryData(image);
        if (exact && set.BinaryData() != image) return std::nullopt;
        return textform::exportScanSet(set);
    } catch (const RuntimeError& e) {
        error = toUtf8(e.Description()) + " (error " + std::to_string(e.Number()) + ")";
        return std::nullopt;
    }
}

struct Words {
    std::string path;
    std::string kind;  // send, scan, or empty: the image tells
    std::string output;
};

int exportCommand(const Words& words) {
    const std::string& path = words.path;
    const std::string& kind = words.kind;
    std::string error;
    const std::optional<std::string> bytes = readFile(path, MaxImageBytes, error);
    if (!bytes) return failure(error);
    const Bytes image(bytes->begin(), bytes->end());
    std::optional<std::string> text;
    if (!kind.empty()) {
        text = exportAs(image, kind == "send", false, error);
        if (!text) return failure(path + " is not a " + (kind == "send" ? "Send" : "Scan") + " image: " + error);
    } else {
        std::string sendError, scanError;
        std::optional<std::string> send = exportAs(image, true, true, sendError);
        std::optional<std::string> scan = exportAs(image, false, true, scanError);
        if (send && scan) return failure(path + " reads as a Send and as a Scan image alike; give --kind");
        if (!send && !scan)
            return failure(path + " is neither a Send nor a Scan image that gives itself back; --kind reads it as one");
        text = send ? send : scan;
    }
    std::cout << *text;
    std::cout.flush();
    return std::cout ? 0 : failure("cannot write the text to standard output");
}

int importCommand(const Words& words) {
    const std::string& path = words.path;
    const std::string& output = words.output;
    std::string error;
    const std::optional<std::string> text = readFile(path, MaxTextBytes, error);
    if (!text) return failure(error);
    const std::optional<textform::TextFormHeader> header = textform::peekHeader(*text);
    const std::string kind = header ? header->Kind : "";
    ScopedHostContext host;
    host->ExtendedOperands = header && header->ImageVersion == 1;
    Bytes image;
    try {
        if (kind == "scan")
            image = textform::importScanSet(*text)->BinaryData();
        else
            image = textform::importSendSet(*text)->BinaryData();
    } catch (const RuntimeError& e) {
        if (e.Number() == err::InvalidFileFormat) return failure(path + ": " + toUtf8(e.Description()));
        return failure(path + ": the set has no image: " + toUtf8(e.Description()) + " (error " +
                       std::to_string(e.Number()) + ")");
    }
    std::ofstream out(output, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
    out.close();
    if (!out) return failure("cannot write " + output + ": " + std::strerror(errno));
    return 0;
}

}  // namespace

void addTextFormCommands(CLI::App& qxfb, Command& chosen) {
    auto exported = std::make_shared<Words>();
    CLI::App* exportCommand_ = addCommand(qxfb, "export", "Writes the text form (JSON) of a Send or Scan image",
                                          "export needs a Send or Scan image");
    exportCommand_->add_option("IMAGE", exported->path, "the Send or Scan image")->type_name("FILE")->required();
    exportCommand_
        ->add_option("--kind", exported->kind, "how to read the image; without it, as whichever gives itself back")
        ->check(CLI::IsMember({"send", "scan"}));
    exportCommand_->callback([&chosen, exported] { chosen = [exported] { return exportCommand(*exported); }; });

    auto imported = std::make_shared<Words>();
    CLI::App* importCommand_ = addCommand(qxfb, "import", "Writes the image of a text form (JSON)",
                                          "import needs a text form (JSON) and -o IMAGE, the image file to write");
    importCommand_->add_option("JSON", imported->path, "the text form of a Send or Scan set")
        ->type_name("FILE")
        ->required();
    importCommand_->add_option("-o,--output", imported->output, "the image file to write")
        ->type_name("IMAGE")
        ->required();
    importCommand_->callback([&chosen, imported] { chosen = [imported] { return importCommand(*imported); }; });
}

}  // namespace qx::cli
