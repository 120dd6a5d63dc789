// Fuzz target of the image inspector (dumpImage, dumpText, dumpJson,
// diffImages). Input layout: byte 0 picks the kind, 0 for recognition by
// content and 1 to 5 for Send, Scan, Config, Copy buffer and address table
// (higher values wrap); the rest is the image.
//
// A dump may refuse an image only with RuntimeError. One it accepts must
// list ranges that lie inside the image, render as text and JSON, and
// differ from the same image with a byte changed. A Send or Scan image it accepts must load in
// the set's own reader too, with every field where the dump put it.
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "image_round_trip.h"
#include "inspect/image_diff.h"
#include "inspect/image_dump.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace {

using namespace qx;

void checkRanges(const DumpNode& node, const Bytes& image) {
    if (node.Offset > image.size() || node.Length > image.size() - node.Offset)
        fuzz::finding("a range of the dump lies outside the image", image);
    for (const DumpNode& child : node.Children) checkRanges(child, image);
}

// The positions of the fields of each message, as the dump names them. The
// dump lists the parts in image order, which need not be message order.
std::map<int32_t, std::vector<int32_t>> dumpedPositions(const ImageDump& dump) {
    std::map<int32_t, std::vector<int32_t>> messages;
    const std::string message = "message ";
    const std::string field = "field at position ";
    for (const DumpNode& node : dump.Root.Children) {
        if (node.Name.rfind(message, 0) != 0 || node.Name == "message offsets") continue;
        std::vector<int32_t>& positions = messages[std::stoi(node.Name.substr(message.size()))];
        for (const DumpNode& segment : node.Children)
            if (segment.Name.rfind(field, 0) == 0) positions.push_back(std::stoi(segment.Name.substr(field.size())));
    }
    return messages;
}

template <class Set>
void checkAgainstReader(const ImageDump& dump, const Bytes& image) {
    ScopedHostContext context;
    Set set;
    try {
        set.BinaryData(image);
    } catch (const RuntimeError& error) {
        fuzz::unexpectedError("the reader of an image the dump accepted", error, image);
    }
    for (const auto& [number, positions] : dumpedPositions(dump)) {
        clsProtocolMessage& message = *set.GetMessage(number);
        std::vector<int32_t> read;
        for (int32_t i = 1; i <= message.NumberOfVars(); ++i) read.push_back(message.GetVar(i)->StartPosition());
        if (read != positions) fuzz::finding("the dump places a field elsewhere than the reader", image);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    static const ImageKind kinds[] = {ImageKind::Send, ImageKind::Scan, ImageKind::Config, ImageKind::CopyBuffer,
                                      ImageKind::AddressTable};
    const size_t pick = data[0] % 6;
    const std::optional<ImageKind> kind = pick == 0 ? std::nullopt : std::optional<ImageKind>(kinds[pick - 1]);
    const Bytes image(data + 1, data + size);
    ImageDump dump;
    try {
        dump = dumpImage(image, kind);
    } catch (const RuntimeError&) {
        return 0;
    }
    checkRanges(dump.Root, image);
    if (dumpText(dump).empty() || dumpJson(dump).empty()) fuzz::finding("an empty listing", image);
    // Every byte lies in some range, so a changed byte is always a difference.
    if (!image.empty()) {
        Bytes changed = image;
        changed.back() ^= 0x5A;
        try {
            if (diffImages(dump, dumpImage(changed, dump.Kind)).empty())
                fuzz::finding("a changed byte makes no difference", image);
        } catch (const RuntimeError&) {
        }
    }
    if (dump.Kind == ImageKind::Send) checkAgainstReader<clsProtocolSendSrv>(dump, image);
    if (dump.Kind == ImageKind::Scan) checkAgainstReader<clsProtocolScanSrv>(dump, image);
    return 0;
}
