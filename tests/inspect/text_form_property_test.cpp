// The text form of random valid sets: for every seed a Send or Scan set is
// generated and exported; the text, imported into a fresh host of the same
// settings, gives the set's image byte for byte, and exported again gives
// the same text. Every text is valid against the schema of the format.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <string>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

#include "platform/basics/ansi.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/random_sets.h"
#include "inspect/text_form.h"

namespace qx {
namespace {

constexpr uint32_t kSetsOfEachKind = 150;

bool extendedFor(uint32_t seed) { return seed % 2 == 1; }
bool ethernetFor(uint32_t seed) { return seed % 5 == 0; }

std::unique_ptr<clsProtocolSendSrv> newSendSet(bool ethernet) {
    if (ethernet) return std::make_unique<clsEthProtocolSendSrv>();
    return std::make_unique<clsProtocolSendSrv>();
}

std::unique_ptr<clsProtocolScanSrv> newScanSet(bool ethernet) {
    if (ethernet) return std::make_unique<clsEthProtocolScanSrv>();
    return std::make_unique<clsProtocolScanSrv>();
}

// With QXFB_TEXTFORM_DUMP set to a folder, every text is written there too,
// for a look at what the format makes of many sets.
void dump(const std::string& name, const std::string& text) {
    if (const char* folder = std::getenv("QXFB_TEXTFORM_DUMP")) std::ofstream(std::string(folder) + "/" + name) << text;
}

bool isConstantType(int32_t type) { return type == 34 || type == 35 || type == 37 || type == 38; }

// Offsets 6 and 7 of a Send image hold a constant message number's place in
// the host's constant table, which each load (and the writer, for a single
// message) gives anew; the text form holds the constant's value, which lies
// in offsets 2 to 5.
Bytes withoutConstantPlace(Bytes image) {
    if (image.size() > 7 && isConstantType(image[0])) image[6] = image[7] = 0;
    return image;
}

class SchemaCheck {
public:
    SchemaCheck() {
        std::ifstream in(QXFB_TEXTFORM_SCHEMA);
        std::stringstream text;
        text << in.rdbuf();
        document_ = nlohmann::json::parse(text.str());
        valijson::SchemaParser parser;
        valijson::adapters::NlohmannJsonAdapter adapter(document_);
        parser.populateSchema(adapter, schema_);
    }

    // The reasons the text is invalid, empty when it is valid.
    std::string problems(const std::string& text) const {
        const nlohmann::json value = nlohmann::json::parse(text);
        valijson::Validator validator;
        valijson::ValidationResults results;
        valijson::adapters::NlohmannJsonAdapter adapter(value);
        if (validator.validate(schema_, adapter, &results)) return "";
        std::string out;
        valijson::ValidationResults::Error error;
        while (results.popError(error)) {
            std::string where;
            for (const std::string& part : error.context) where += part;
            out += where + ": " + error.description + "\n";
        }
        return out.empty() ? "invalid" : out;
    }

    static const SchemaCheck& instance() {
        static const SchemaCheck check;
        return check;
    }

private:
    nlohmann::json document_;
    valijson::Schema schema_;
};

void checkSendSeed(uint32_t seed, const test::RandomSetShape& shape) {
    SCOPED_TRACE("Send seed " + std::to_string(seed));
    const bool extended = extendedFor(seed);
    std::string text;
    Bytes image;
    {
        ScopedHostContext host;
        host->ExtendedOperands = extended;
        std::mt19937 random(seed);
        auto set = newSendSet(ethernetFor(seed));
        test::fillRandomSendSet(*set, random, shape);
        // The image first: with a single message the writer turns the
        // message number into the constant 0, and the text shows that.
        image = set->BinaryData();
        text = textform::exportSendSet(*set);
        EXPECT_EQ(withoutConstantPlace(set->BinaryData()), withoutConstantPlace(image));
    }
    dump("send_" + std::to_string(seed) + ".json", text);
    EXPECT_EQ(SchemaCheck::instance().problems(text), "");
    ScopedHostContext later;
    later->ExtendedOperands = extended;
    std::unique_ptr<clsProtocolSendSrv> imported;
    try {
        imported = textform::importSendSet(text);
    } catch (const RuntimeError& e) {
        FAIL() << toUtf8(e.Description()) << "\n" << text;
    }
    EXPECT_EQ(withoutConstantPlace(imported->BinaryData()), withoutConstantPlace(image));
    EXPECT_EQ(textform::exportSendSet(*imported), text);
}

void checkScanSeed(uint32_t seed, const test::RandomSetShape& shape) {
    SCOPED_TRACE("Scan seed " + std::to_string(seed));
    const bool extended = extendedFor(seed);
    std::string text;
    Bytes image;
    {
        ScopedHostContext host;
        host->ExtendedOperands = extended;
        std::mt19937 random(seed);
        auto set = newScanSet(ethernetFor(seed));
        test::fillRandomScanSet(*set, random, shape);
        image = set->BinaryData();
        text = textform::exportScanSet(*set);
    }
    dump("scan_" + std::to_string(seed) + ".json", text);
    EXPECT_EQ(SchemaCheck::instance().problems(text), "");
    ScopedHostContext later;
    later->ExtendedOperands = extended;
    std::unique_ptr<clsProtocolScanSrv> imported;
    try {
        imported = textform::importScanSet(text);
    } catch (const RuntimeError& e) {
        FAIL() << toUtf8(e.Description()) << "\n" << text;
    }
    EXPECT_EQ(imported->BinaryData(), image);
    EXPECT_EQ(textform::exportScanSet(*imported), text);
}

TEST(TextFormProperty, RandomSendSetsGiveTheSameImageAndTheSameTextBack) {
    for (uint32_t seed = 1; seed <= kSetsOfEachKind; ++seed) {
        checkSendSeed(seed, test::RandomSetShape{});
        if (::testing::Test::HasFailure()) return;
    }
}

TEST(TextFormProperty, RandomScanSetsGiveTheSameImageAndTheSameTextBack) {
    for (uint32_t seed = 1; seed <= kSetsOfEachKind; ++seed) {
        checkScanSeed(seed, test::RandomSetShape{});
        if (::testing::Test::HasFailure()) return;
    }
}

TEST(TextFormProperty, SetsOf255FullMessagesGiveTheSameImageBack) {
    const test::RandomSetShape full{
        .MinMessages = 255, .MaxMessages = 255, .MaxFieldsPerMessage = 50, .MaxTextRun = 8, .MaxTrailingEmpty = 0};
    for (uint32_t seed = 2001; seed < 2004; ++seed) {
        checkSendSeed(seed, full);
        checkScanSeed(seed, full);
    }
}

// A set read from an image, whatever it held before, has a text form that
// gives that image back.
TEST(TextFormProperty, SetsLoadedFromTheirImageGiveTheSameTextAsTheSetItself) {
    for (uint32_t seed = 300; seed < 340; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        ScopedHostContext host;
        host->ExtendedOperands = extendedFor(seed);
        std::mt19937 random(seed);
        clsProtocolScanSrv set;
        test::fillRandomScanSet(set, random);
        const Bytes image = set.BinaryData();
        clsProtocolScanSrv loaded;
        loaded.BinaryData(image);
        EXPECT_EQ(textform::exportScanSet(loaded), textform::exportScanSet(set));

        std::mt19937 sendRandom(seed);
        clsProtocolSendSrv send;
        test::fillRandomSendSet(send, sendRandom);
        const Bytes sendImage = send.BinaryData();
        clsProtocolSendSrv sendLoaded;
        sendLoaded.BinaryData(sendImage);
        EXPECT_EQ(textform::exportSendSet(sendLoaded), textform::exportSendSet(send));
    }
}

}  // namespace
}  // namespace qx
