// The commands of qxfb that read images without the component: "dump", the
// annotated listing of an image, and "diff", what two images of one kind
// say differently.
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>

#include "command_line.h"
#include "inspect/image_diff.h"
#include "inspect/image_dump.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"

namespace qx::cli {

namespace {

// No image of the library comes near this; a larger file is not read.
constexpr std::streamoff maxImageSize = 1 << 20;

struct Arguments {
    std::vector<std::string> files;
    std::string kind;  // empty: the content tells
    bool json = false;
};

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

std::string describe(const RuntimeError& e) { return toUtf8(e.Description()); }

std::optional<ImageKind> kindOf(const Arguments& args) {
    return args.kind.empty() ? std::nullopt : imageKindOf(args.kind);
}

int dump(const Arguments& args) {
    const std::string& file = args.files[0];
    try {
        const ImageDump image = dumpImage(readImage(file), kindOf(args));
        std::cout << (args.json ? dumpJson(image) : dumpText(image));
        return 0;
    } catch (const RuntimeError& e) {
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
        std::optional<ImageKind> kind = kindOf(args);
        if (!kind) {
            // A 2-byte image that a Config and a Copy buffer image both fit
            // is read as the kind of the other one.
            current = &fileA;
            const Recognition ra = recogniseImage(a);
            current = &fileB;
            const Recognition rb = recogniseImage(b);
            if (ra.Kind != rb.Kind && ra.Ambiguous && !rb.Ambiguous) {
                kind = rb.Kind;
            } else if (ra.Kind != rb.Kind && rb.Ambiguous && !ra.Ambiguous) {
                kind = ra.Kind;
            } else if (ra.Kind != rb.Kind) {
                std::cerr << "qxfb: " << fileA << " is a " << imageKindTitle(ra.Kind) << ", " << fileB << " a "
                          << imageKindTitle(rb.Kind) << ": only images of one kind can be compared\n";
                return 2;
            } else {
                kind = ra.Kind;
            }
        }
        current = &fileA;
        const ImageDump dumpA = dumpImage(a, kind);
        current = &fileB;
        const ImageDump dumpB = dumpImage(b, kind);
        const std::vector<ImageDifference> differences = diffImages(dumpA, dumpB);
        for (const ImageDifference& d : differences) std::cout << d.Text() << "\n";
        return differences.empty() ? 0 : 1;
    } catch (const RuntimeError& e) {
        std::cerr << "qxfb: " << *current << ": " << describe(e) << "\n";
    } catch (const std::exception& e) {
        std::cerr << "qxfb: " << e.what() << "\n";
    }
    return 2;
}

}  // namespace

const std::vector<std::string> Kinds = {"send", "scan", "config", "copy", "address"};

void addImageCommands(CLI::App& qxfb, Command& chosen) {
    auto dumped = std::make_shared<Arguments>();
    CLI::App* dumpCommand = addCommand(qxfb, "dump", "Shows what an image means, range by range (no component)",
                                       "dump needs an image file");
    auto file = std::make_shared<std::string>();
    dumpCommand->add_option("FILE", *file, "the image")->type_name("FILE")->required();
    dumpCommand->add_option("--kind", dumped->kind, "the kind of image; without it the content tells")
        ->check(CLI::IsMember(Kinds));
    dumpCommand->add_flag("--json", dumped->json, "the same tree as JSON");
    dumpCommand->callback([&chosen, dumped, file] {
        dumped->files = {*file};
        chosen = [dumped] { return dump(*dumped); };
    });

    auto compared = std::make_shared<Arguments>();
    CLI::App* diffCommand =
        addCommand(qxfb, "diff", "Names what two images of one kind say differently", "diff needs two image files");
    auto first = std::make_shared<std::string>();
    auto second = std::make_shared<std::string>();
    diffCommand->add_option("A", *first, "the first image")->type_name("FILE")->required();
    diffCommand->add_option("B", *second, "the second image")->type_name("FILE")->required();
    diffCommand->add_option("--kind", compared->kind, "the kind of both images; without it their content tells")
        ->check(CLI::IsMember(Kinds));
    diffCommand->callback([&chosen, compared, first, second] {
        compared->files = {*first, *second};
        chosen = [compared] { return diff(*compared); };
    });
}

}  // namespace qx::cli
