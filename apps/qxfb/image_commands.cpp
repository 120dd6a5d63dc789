#include "image_commands.h"

#include <fstream>
#include <iostream>
#include <optional>

#include "inspect/image_diff.h"
#include "inspect/image_dump.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"

namespace qxfb {

namespace {

using qx::Bytes;
using qx::ImageDump;
using qx::ImageKind;

// No image of the library comes near this; a larger file is not read.
constexpr std::streamoff maxImageSize = 1 << 20;

struct Arguments {
    std::string command;
    std::vector<std::string> files;
    std::optional<ImageKind> kind;
    bool json = false;
};

int usageError(const std::string& message) {
    std::cerr << "qxfb: " << message << "\nTry 'qxfb --help'.\n";
    return 2;
}

// Empty when the words are fine, else the usage error.
std::string parse(const std::vector<std::string>& args, Arguments& out) {
    out.command = args.at(0);
    for (size_t i = 1; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--kind") {
            if (i + 1 >= args.size()) return "--kind needs a value: send, scan, config, copy or address";
            out.kind = qx::imageKindOf(args[++i]);
            if (!out.kind) return "unknown kind " + args[i] + ": send, scan, config, copy or address";
        } else if (arg == "--json" && out.command == "dump") {
            out.json = true;
        } else if (arg.rfind("--", 0) == 0) {
            return "unknown option " + arg + " of " + out.command;
        } else {
            out.files.push_back(arg);
        }
    }
    const size_t wanted = out.command == "dump" ? 1 : 2;
    if (out.files.size() < wanted)
        return out.command == "dump" ? "dump needs an image file" : "diff needs two image files";
    if (out.files.size() > wanted) return "unexpected argument " + out.files[wanted];
    return "";
}

// The file's bytes; an error names the file. At most one byte more than the
// limit is read, so that a device or a pipe without end stops too.
Bytes readImage(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error(file + ": cannot be read");
    Bytes bytes(static_cast<size_t>(maxImageSize) + 1);
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (in.bad()) throw std::runtime_error(file + ": cannot be read");
    bytes.resize(static_cast<size_t>(in.gcount()));
    if (bytes.size() > static_cast<size_t>(maxImageSize))
        throw std::runtime_error(file + ": more than " + std::to_string(maxImageSize) +
                                 " bytes, more than any image holds");
    return bytes;
}

std::string describe(const qx::RuntimeError& e) { return qx::toUtf8(e.Description()); }

int dump(const Arguments& args) {
    const std::string& file = args.files[0];
    try {
        const ImageDump image = qx::dumpImage(readImage(file), args.kind);
        std::cout << (args.json ? qx::dumpJson(image) : qx::dumpText(image));
        return 0;
    } catch (const qx::RuntimeError& e) {
        std::cerr << "qxfb: " << file << ": " << describe(e) << "\n";
    } catch (const std::exception& e) {
        std::cerr << "qxfb: " << e.what() << "\n";
    }
    return 1;
}

int diff(const Arguments& args) {
    const std::string& fileA = args.files[0];
    const std::string& fileB = args.files[1];
    const std::string* current = &fileA;
    try {
        const Bytes a = readImage(fileA);
        current = &fileB;
        const Bytes b = readImage(fileB);
        std::optional<ImageKind> kind = args.kind;
        if (!kind) {
            // A 2-byte image that a Config and a Copy buffer image both fit
            // is read as the kind of the other one.
            current = &fileA;
            const qx::Recognition ra = qx::recogniseImage(a);
            current = &fileB;
            const qx::Recognition rb = qx::recogniseImage(b);
            if (ra.Kind != rb.Kind && ra.Ambiguous && !rb.Ambiguous) {
                kind = rb.Kind;
            } else if (ra.Kind != rb.Kind && rb.Ambiguous && !ra.Ambiguous) {
                kind = ra.Kind;
            } else if (ra.Kind != rb.Kind) {
                std::cerr << "qxfb: " << fileA << " is a " << qx::imageKindTitle(ra.Kind) << ", " << fileB << " a "
                          << qx::imageKindTitle(rb.Kind) << ": only images of one kind can be compared\n";
                return 2;
            } else {
                kind = ra.Kind;
            }
        }
        current = &fileA;
        const ImageDump dumpA = qx::dumpImage(a, kind);
        current = &fileB;
        const ImageDump dumpB = qx::dumpImage(b, kind);
        const std::vector<qx::ImageDifference> differences = qx::diffImages(dumpA, dumpB);
        for (const qx::ImageDifference& d : differences) std::cout << d.Text() << "\n";
        return differences.empty() ? 0 : 1;
    } catch (const qx::RuntimeError& e) {
        std::cerr << "qxfb: " << *current << ": " << describe(e) << "\n";
    } catch (const std::exception& e) {
        std::cerr << "qxfb: " << e.what() << "\n";
    }
    return 2;
}

}  // namespace

bool isInspectCommand(const std::string& word) { return word == "dump" || word == "diff"; }

int runInspectCommand(const std::vector<std::string>& args) {
    Arguments parsed;
    const std::string error = parse(args, parsed);
    if (!error.empty()) return usageError(error);
    return parsed.command == "dump" ? dump(parsed) : diff(parsed);
}

}  // namespace qxfb
