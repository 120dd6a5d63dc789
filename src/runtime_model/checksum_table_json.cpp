#include "runtime_model/checksum_table_json.h"

#include <nlohmann/json.hpp>
#include <set>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/basics/text_place.h"

namespace qx::model {

namespace {

using Json = nlohmann::ordered_json;

const char* const ruleNames[] = {"crc", "sum", "xor", "two's complement", "lrc of hex text"};

std::string hexText(uint32_t value, int32_t width) {
    const int digits = std::max(2, (std::min(width, 32) + 3) / 4);
    std::string text(static_cast<size_t>(digits), '0');
    for (int i = digits - 1; i >= 0; --i, value >>= 4) text[static_cast<size_t>(i)] = "0123456789ABCDEF"[value & 15];
    return "0x" + text;
}

[[noreturn]] void fail(const std::string& what) {
    throw RuntimeError(err::InvalidFileFormat, L"QxFBCom2.ChecksumTable", fromUtf8(what));
}

// Builds the document, taking every complaint of nlohmann's reader with its
// place: a number too large for its types comes as out_of_range, not as a
// parse_error, and must be refused in the same words.
class DomReader : public nlohmann::detail::json_sax_dom_parser<Json> {
public:
    DomReader(Json& root, std::string_view text) : json_sax_dom_parser(root, false), text_(text) {}
    bool parse_error(size_t position, const std::string&, const nlohmann::detail::exception& error) {
        fail(lineAndColumn(text_, position > 0 ? position - 1 : 0) + ": not JSON: " + jsonFaultReason(error.what()));
    }

private:
    std::string_view text_;
};

// Reads one entry's keys; every complaint names the entry.
class Entry {
public:
    Entry(const Json& json, std::string place) : json_(json), place_(std::move(place)) {
        if (!json_.is_object()) fail("an object expected");
    }
    [[noreturn]] void fail(const std::string& why) const { model::fail(place_ + ": " + why); }
    const Json* find(const char* key) const {
        const auto found = json_.find(key);
        return found == json_.end() ? nullptr : &*found;
    }
    const Json& need(const char* key) const {
        const Json* value = find(key);
        if (!value) fail("\"" + std::string(key) + "\" is missing");
        return *value;
    }
    std::string text(const char* key) const {
        const Json& value = need(key);
        if (!value.is_string()) fail("\"" + std::string(key) + "\" must be a string");
        return value.get<std::string>();
    }
    bool flag(const char* key, bool otherwise) const {
        const Json* value = find(key);
        if (!value) return otherwise;
        if (!value->is_boolean()) fail("\"" + std::string(key) + "\" must be true or false");
        return value->get<bool>();
    }
    // A number, or a string of hexadecimal digits behind "0x".
    uint32_t number(const char* key, uint32_t otherwise, bool required = false) const {
        const Json* value = required ? &need(key) : find(key);
        if (!value) return otherwise;
        if (value->is_number_unsigned() && value->get<uint64_t>() <= 0xFFFFFFFFu)
            return static_cast<uint32_t>(value->get<uint64_t>());
        if (value->is_string()) {
            const std::string text = value->get<std::string>();
            if (text.size() > 2 && text.size() <= 10 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X') &&
                text.find_first_not_of("0123456789abcdefABCDEF", 2) == std::string::npos)
                return static_cast<uint32_t>(std::stoul(text.substr(2), nullptr, 16));
        }
        fail("\"" + std::string(key) + "\" must be a number from 0 to 4294967295 or \"0x\" and hexadecimal digits");
    }

private:
    const Json& json_;
    std::string place_;
};

}  // namespace

std::string checksumTableToJson(const ChecksumTable& table) {
    std::string out =
        "{\n  \"format\": \"" + std::string(ChecksumTableFormat) + "\",\n  \"version\": 1,\n  \"codes\": [\n";
    for (int32_t code = FirstCalculationCode; code <= LastCalculationCode; ++code) {
        const ChecksumDefinition& d = table.Definition(code);
        Json entry;
        entry["code"] = code;
        entry["list name"] = toUtf8(calculationName(code));
        entry["name"] = d.Name;
        entry["rule"] = ruleNames[static_cast<size_t>(d.Rule)];
        entry["width"] = d.Width;
        if (d.Rule == ChecksumRule::Crc) {
            entry["polynomial"] = hexText(d.Polynomial, d.Width);
            entry["init"] = hexText(d.Init, d.Width);
            entry["reflect in"] = d.ReflectIn;
            entry["reflect out"] = d.ReflectOut;
            entry["xor out"] = hexText(d.XorOut, d.Width);
        }
        entry["check"] = hexText(d.Check, d.Width);
        entry["byte order"] = d.LowByteFirst ? "low first" : "high first";
        // One code a line, with a blank behind each comma and colon.
        std::string line;
        for (const auto& [key, value] : entry.items())
            line += (line.empty() ? "{" : ", ") + Json(key).dump() + ": " +
                    value.dump(-1, ' ', false, nlohmann::detail::error_handler_t::replace);
        out += "    " + line + "}";
        out += code == LastCalculationCode ? "\n" : ",\n";
    }
    return out + "  ]\n}\n";
}

ChecksumTable checksumTableFromJson(std::string_view text) {
    Json json;
    DomReader reader(json, text);
    Json::sax_parse(text.begin(), text.end(), &reader);
    const Entry top(json, "the checksum table");
    if (top.text("format") != ChecksumTableFormat)
        top.fail("\"format\" must be \"" + std::string(ChecksumTableFormat) + "\"");
    const Json& version = top.need("version");
    if (!version.is_number_integer() || version.get<int64_t>() != 1) top.fail("\"version\" must be 1");
    const Json& codes = top.need("codes");
    if (!codes.is_array()) top.fail("\"codes\" must be a list");

    ChecksumTable table = ChecksumTable::Default();
    std::set<int32_t> seen;
    for (size_t i = 0; i < codes.size(); ++i) {
        const Entry entry(codes[i], "codes[" + std::to_string(i) + "]");
        const Json& codeValue = entry.need("code");
        if (!codeValue.is_number_integer() || codeValue.get<int64_t>() < FirstCalculationCode ||
            codeValue.get<int64_t>() > LastCalculationCode)
            entry.fail("\"code\" must be a whole number from 1 to 10");
        const auto code = static_cast<int32_t>(codeValue.get<int64_t>());
        if (!seen.insert(code).second) entry.fail("code " + std::to_string(code) + " is given twice");
        const Entry named(codes[i], "code " + std::to_string(code));

        ChecksumDefinition d;
        d.Name = named.text("name");
        const std::string rule = named.text("rule");
        const auto* found = std::find(std::begin(ruleNames), std::end(ruleNames), rule);
        if (found == std::end(ruleNames))
            named.fail("\"rule\" must be \"crc\", \"sum\", \"xor\", \"two's complement\" or \"lrc of hex text\"");
        d.Rule = static_cast<ChecksumRule>(found - std::begin(ruleNames));
        d.Width = static_cast<int32_t>(std::min<uint32_t>(named.number("width", 0, true), 1000));
        if (d.Rule == ChecksumRule::Crc) {
            d.Polynomial = named.number("polynomial", 0, true);
            d.Init = named.number("init", 0);
            d.ReflectIn = named.flag("reflect in", false);
            d.ReflectOut = named.flag("reflect out", false);
            d.XorOut = named.number("xor out", 0);
        }
        if (const Json* order = named.find("byte order")) {
            if (*order != "low first" && *order != "high first")
                named.fail("\"byte order\" must be \"low first\" or \"high first\"");
            d.LowByteFirst = *order == "low first";
        }
        const std::string problem = checksumParameterProblem(d);
        if (!problem.empty()) named.fail(problem);
        // The check value may be left out; given, it must be right.
        d.Check = checkValueOf(d);
        if (named.find("check")) {
            const uint32_t given = named.number("check", 0);
            if (given != d.Check) {
                d.Check = given;
                named.fail(checksumProblem(d));
            }
        }
        table.Definition(code, d);
    }
    return table;
}

}  // namespace qx::model
