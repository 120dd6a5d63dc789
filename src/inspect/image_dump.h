// What an image means, range by range: the annotated dump of every image
// the library writes (Send, Scan, serial Config, Copy buffer, TCP/IP address
// table). The dump is a tree of byte ranges, each with a name and its value
// in words; the text listing, the JSON form and the diff of two images are
// all made from that one tree.
//
// A dump never reads outside the image and never does more work than the
// image's size allows: anything short, lying or out of place raises
// RuntimeError with the offset and what was expected there.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/basics/bytes.h"

namespace qx {

enum class ImageKind { Send, Scan, Config, CopyBuffer, AddressTable };

// "send", "scan", "config", "copy", "address": the names of --kind.
std::string_view imageKindName(ImageKind kind);
std::optional<ImageKind> imageKindOf(std::string_view name);
// "Send image", "Scan image", "Config image", "Copy buffer image",
// "TCP/IP address table".
std::string_view imageKindTitle(ImageKind kind);

// One byte range of an image and what it means. Names are those the diff
// speaks in ("message 2", "field at position 5", "BeforePoint"); values are
// words ("4", "Decimal ASCII: Fixed Length"). A range with children is
// described by them; its own value is only a summary.
struct DumpNode {
    size_t Offset = 0;
    size_t Length = 0;
    std::string Name;
    std::string Value;
    // Where something lies rather than what it is (offsets, lengths the
    // reader recomputes, padding): the diff names these only when nothing
    // else differs.
    bool Layout = false;
    std::vector<DumpNode> Children;
};

// How the kind of an image was found out.
enum class KindSource {
    Named,       // given by the caller
    Recognised,  // only this kind fits the content
    Ambiguous,   // a 2-byte image that both a Config and a Copy buffer image fit; read as a Config
};

struct ImageDump {
    ImageKind Kind = ImageKind::Send;
    KindSource Source = KindSource::Named;
    Bytes Image;
    // Covers the whole image; its children are the parts in image order.
    DumpNode Root;
};

struct Recognition {
    ImageKind Kind = ImageKind::Send;
    bool Ambiguous = false;
};

// The kind whose layout the content fits. RuntimeError(321) when none does,
// or when both a Send and a Scan image do.
Recognition recogniseImage(const Bytes& image);

// The annotated tree of the image, read as the kind given, else as the kind
// its content shows.
ImageDump dumpImage(const Bytes& image, std::optional<ImageKind> kind = std::nullopt);

// The listing: a title line, then one line a range, children indented under
// their parent: offset, length, name and value, and the bytes in hex for a
// range without children.
std::string dumpText(const ImageDump& dump);

// The same tree as JSON: {"kind", "title", "size", "root"}, each node with
// "offset", "length", "name", "value", "layout" and either "hex" or
// "children".
std::string dumpJson(const ImageDump& dump, int indent = 2);

// Hex in capitals, bytes separated by blanks: "41 42 0D".
std::string hexText(const Bytes& image, size_t offset, size_t length);

}  // namespace qx
