// The JSON form of a dump, written through nlohmann::json; the library's
// headers do not show it.
#include <nlohmann/json.hpp>

#include "inspect/image_dump.h"

namespace qx {

namespace {

using Json = nlohmann::ordered_json;

std::string_view sourceName(KindSource source) {
    switch (source) {
        case KindSource::Named:
            return "named";
        case KindSource::Recognised:
            return "recognised";
        case KindSource::Ambiguous:
            return "ambiguous";
    }
    return "";
}

Json nodeJson(const DumpNode& node, const Bytes& image) {
    Json out;
    out["offset"] = node.Offset;
    out["length"] = node.Length;
    out["name"] = node.Name;
    out["value"] = node.Value;
    out["layout"] = node.Layout;
    if (node.Children.empty()) {
        out["hex"] = hexText(image, node.Offset, node.Length);
    } else {
        Json children = Json::array();
        for (const DumpNode& child : node.Children) children.push_back(nodeJson(child, image));
        out["children"] = std::move(children);
    }
    return out;
}

}  // namespace

std::string dumpJson(const ImageDump& dump, int indent) {
    Json out;
    out["kind"] = imageKindName(dump.Kind);
    out["title"] = imageKindTitle(dump.Kind);
    out["size"] = dump.Image.size();
    out["kind_from"] = sourceName(dump.Source);
    out["root"] = nodeJson(dump.Root, dump.Image);
    // A byte the code page leaves undefined may not be valid UTF-8; it is
    // written as U+FFFD rather than refused.
    return out.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace qx
