// Fuzz target of the text form's import: arbitrary bytes as a text form of
// a Send or a Scan set. The importer may only refuse with RuntimeError. A
// text it accepts must give an image (or an overflow error, as a set the
// dialogs would have refused does), and that set's own text must import
// again to the same image and export to the same text.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz_finding.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "inspect/text_form.h"

using qx::fuzz::finding;

namespace {

bool isConstantType(uint8_t type) { return type == 34 || type == 35 || type == 37 || type == 38; }

// A constant message number's place in the host's table is given anew by
// every writer of a single message and every load.
qx::Bytes withoutConstantPlace(qx::Bytes image) {
    if (image.size() > 7 && isConstantType(image[0])) image[6] = image[7] = 0;
    return image;
}

template <class Set, class Import, class Export>
void check(std::string_view text, Import importSet, Export exportSet, bool send) {
    std::unique_ptr<Set> set;
    try {
        set = importSet(text);
    } catch (const qx::RuntimeError&) {
        return;
    }
    qx::Bytes image;
    try {
        image = set->BinaryData();
    } catch (const qx::RuntimeError&) {
        return;
    }
    const std::string exported = exportSet(*set);
    std::unique_ptr<Set> again;
    try {
        again = importSet(exported);
    } catch (const qx::RuntimeError&) {
        finding("an exported text is refused by the import");
    }
    qx::Bytes second = again->BinaryData();
    if (send ? withoutConstantPlace(second) != withoutConstantPlace(image) : second != image)
        finding("an exported text gives another image");
    if (exportSet(*again) != exported) finding("an exported text exports to another text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::optional<qx::textform::TextFormHeader> header = qx::textform::peekHeader(text);
    qx::ScopedHostContext host;
    host->ExtendedOperands = header && header->ImageVersion == 1;
    if (!header || header->Kind != "scan")
        check<qx::clsProtocolSendSrv>(text, qx::textform::importSendSet, qx::textform::exportSendSet, true);
    if (!header || header->Kind != "send")
        check<qx::clsProtocolScanSrv>(text, qx::textform::importScanSet, qx::textform::exportScanSet, false);
    return 0;
}
