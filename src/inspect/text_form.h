// The text form of Send and Scan message sets: JSON that a person can read
// and diff, in the format "qxfbcom2-message-set", version 1. It holds what
// the image of the set holds, no more: the frame, the end of message and its
// checksum, the set's own operands and terminators, and every message as a
// list of segments, fixed text with its control characters escaped
// ("<STX>", "<CR>", "<0x81>", "<LT>" for a literal "<") and fields as
// objects with their settings by name. The schema lies in
// resources/schema/qxfbcom2-message-set.v1.schema.json.
//
// A set written to an image and one read back from its text form give the
// same bytes, and the text form of a set read from a text form is that text
// again. Standard C++ only; the JSON library stays inside the unit.
#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qx {

class clsProtocolSendSrv;
class clsProtocolScanSrv;

namespace textform {

inline constexpr std::string_view FormatName = "qxfbcom2-message-set";
inline constexpr int32_t FormatVersion = 1;

// The text of the set, UTF-8, indented by two (a container that fits a line
// on one line), ending with a line break. The image version it records is
// the one an image of the set is written with now: 1 when the extended
// operands are on. The messages are those an image holds, 1 to the last one
// that is not empty. A control code above 255 raises RuntimeError(6), as the
// image writer would; any other value is written as the set holds it, and
// one that no image can hold (a byte setting above 255) gives a text that
// the import refuses.
std::string exportSendSet(const clsProtocolSendSrv& set);
std::string exportScanSet(const clsProtocolScanSrv& set);

// A new set from its text form, inside the current host context, whose
// extended operands must match the text's image version. Anything that is
// not a valid text form of the kind raises RuntimeError(321) with a
// description "line L, column C: " and the rule broken.
std::unique_ptr<clsProtocolSendSrv> importSendSet(std::string_view json);
std::unique_ptr<clsProtocolScanSrv> importScanSet(std::string_view json);

// What a text form says of itself, read without checking the rest, so that a
// caller can choose the set and the host settings before the import: "send"
// or "scan" and the image version. Nothing when the text does not say.
struct TextFormHeader {
    std::string Kind;
    int32_t ImageVersion = 0;
};
std::optional<TextFormHeader> peekHeader(std::string_view json);

}  // namespace textform
}  // namespace qx
