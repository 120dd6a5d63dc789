// Writes the seed corpora of the image fuzz targets: valid images made by the
// library's own writers, from hand-built sets (the documented worked
// examples, every field kind, frames, checksums, copy after ETX, empty sets)
// and from random valid sets. Each file is one input as the targets take it:
// the settings byte (bit 0: extended operands), then the image. The project
// file target's seeds are whole project files, saved by the project store.
//
// Usage: qxfb_fuzz_seeds CORPUS_ROOT   (writes CORPUS_ROOT/fuzz_<name>/seed_*)
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/host/host_context.h"
#include "project/project_file.h"
#include "serial/protocol_config.h"
#include "serial/protocol_copy_to_buffer.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/random_sets.h"
#include "support/stored_link.h"
#include "tcpip/mdl_eth_protocol.h"

namespace {

using namespace qx;
namespace fs = std::filesystem;

fs::path corpusRoot;
int written = 0;

void writeSeed(const std::string& target, const std::string& name, bool extended, const Bytes& image) {
    fs::path folder = corpusRoot / target;
    fs::create_directories(folder);
    std::ofstream out(folder / ("seed_" + name), std::ios::binary | std::ios::trunc);
    const char settings = extended ? 1 : 0;
    out.write(&settings, 1);
    out.write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
    ++written;
}

// Builds the set in a fresh context of the given settings and writes its image.
template <class Set>
void seed(const std::string& target, const std::string& name, bool extended, const std::function<void(Set&)>& build) {
    ScopedHostContext context;
    context->ExtendedOperands = extended;
    Set set;
    build(set);
    writeSeed(target, name + (extended ? "_ext" : ""), extended, set.BinaryData());
}

void putText(clsProtocolMessage& message, int32_t position, const std::wstring& text) {
    std::wstring all = message.MessageString();
    all.replace(static_cast<size_t>(position), text.size(), text);
    message.MessageString(all);
}

void link(clsOperand& operand, int32_t type, int32_t address) {
    operand.OperandType(type);
    operand.OperandAddress(address);
    operand.IsNew(false);
}

template <class Field>
std::shared_ptr<Field> place(clsProtocolMessage& message, std::shared_ptr<Field> field, int32_t& position) {
    field->StartPosition(position);
    position += field->Length();
    message.AddVar(field);
    return field;
}

// A, B and the control character 13: the worked example of both images.
void workedExample(clsProtocolMessage& message) {
    putText(message, 0, L"AB");
    message.AddControlChar(2, 13);
}

void richChecksum(clsProtocolCSVar& checksum) {
    checksum.CSLength(2);
    checksum.FormatView(1);
    checksum.CalculationType(3);
    checksum.ModulusType(2);
    checksum.OffsetFromForward(1);
    checksum.OffsetTillBackwards(2);
    checksum.STXInCS(true);
    checksum.SpecialAddition(true);
    checksum.SA_FromValue(10);
    checksum.SA_ToValue(200);
    checksum.SA_AddedValue(7);
}

void everySendFieldKind(clsProtocolSendSrv& set) {
    set.SendSTXLength(2);
    set.SetSendSTXValue(0, 2, false);
    set.SetSendSTXValue(1, '#', true);
    set.SendETXLength(1);
    set.SetSendETXValue(0, 3, false);
    set.EndOfSendMessageType(3);
    richChecksum(dynamic_cast<clsProtocolCSVar&>(*set.SendChecksum()));
    set.CopyBytesCount(12);
    link(*set.OpCopyDestination(), 5, 300);
    link(*set.OpCopyWhenOn(), 1, 301);
    link(*set.OpMessageNumber(), 3, 77);
    set.AppendMessage();
    set.AppendMessage();

    auto& first = *set.GetMessage(1);
    int32_t q = 0;
    putText(first, q, L"T=");
    q += 2;
    auto decimal = std::make_shared<clsProtocolNumericVar>();
    link(*decimal->LikedOperand(), 3, 10);
    decimal->BeforePoint(4);
    decimal->AfterPoint(2);
    decimal->PrefixSignFormat(2);
    decimal->LeadingZeros(1);
    place(first, decimal, q);
    first.AddControlChar(q++, 9);
    auto hex = std::make_shared<clsProtocolNumericVar>();
    link(*hex->LikedOperand(), 5, 11);
    hex->VarFormat(1);
    hex->BeforePoint(4);
    hex->VectorLength(2);
    place(first, hex, q);
    auto direct = std::make_shared<clsProtocolNumericVar>();
    link(*direct->LikedOperand(), 16, 12);
    direct->StreamForm(1);
    direct->CopyBytesFormat(2);
    direct->StreamVectorLength(3);
    place(first, direct, q);
    auto indirect = std::make_shared<clsProtocolNumericVar>();
    link(*indirect->LikedOperand(), 3, 13);
    indirect->StreamForm(1);
    indirect->CopyBytesFormat(5);
    indirect->StreamLengthAddress(400);
    place(first, indirect, q);
    putText(first, q, L" \xe9t\x20ac ");
    q += 5;
    first.AddControlChar(q++, 13);
    first.AddControlChar(q++, 10);

    auto& second = *set.GetMessage(2);
    q = 0;
    second.AddControlChar(q++, 2);
    auto binary = std::make_shared<clsProtocolBinaryVar>();
    link(*binary->LikedOperand(), 1, 40);
    binary->TextFor0(L"OFF");
    binary->TextFor1(L"ON");
    place(second, binary, q);
    auto list = std::make_shared<clsProtocolistTextVar>();
    link(*list->LikedOperand(), 3, 41);
    list->Texts({L"RED", L"GREEN", L"BLUE"});
    place(second, list, q);
    auto aligned = std::make_shared<clsProtocolistTextVar>();
    link(*aligned->LikedOperand(), 5, 42);
    aligned->AlignmentStringSize(4);
    aligned->Texts({L"A", L"LONGER ONE"});
    place(second, aligned, q);
    putText(second, q, L"@");
    ++q;
    auto date = std::make_shared<clsProtocolDateVar>();
    date->DateFormatType(3);
    place(second, date, q);
    auto time = std::make_shared<clsProtocolTimeVar>();
    time->TimeFormatType(1);
    place(second, time, q);
    auto checksum = std::make_shared<clsProtocolCSVar>();
    richChecksum(*checksum);
    place(second, checksum, q);
    second.AddControlChar(q++, 3);

    // A message of one numeric field and no text: S 1, 22 bytes.
    auto& third = *set.GetMessage(3);
    q = 0;
    auto lone = std::make_shared<clsProtocolNumericVar>();
    link(*lone->LikedOperand(), 3, 14);
    place(third, lone, q);
}

void everyScanFieldKind(clsProtocolScanSrv& set) {
    set.ScanSTXLength(1);
    set.SetScanSTXValue(0, 2, false);
    set.ScanETXLength(2);
    set.SetScanETXValue(0, 13, false);
    set.SetScanETXValue(1, 'x', true);
    set.EndOfScanMessageType(2);
    set.MessageLengthValue(70000);
    set.SilenceTimeValue(250);
    richChecksum(dynamic_cast<clsProtocolCSVar&>(*set.ScanChecksum()));
    set.AppendMessage();
    set.AppendMessage();

    auto& first = *set.GetMessage(1);
    first.MessageLength(10);
    int32_t q = 0;
    putText(first, q, L"V=");
    q += 2;
    for (int32_t format : {0, 1, 2}) {
        auto field = std::make_shared<clsProtocolScanNumericVar>();
        link(*field->LikedOperand(), 3, 20 + format);
        field->VarFormat(format);
        field->BeforePoint(3);
        field->PrefixSignFormat(format == 0 ? 2 : 0);
        if (format != 1) link(*field->DecimalPointOperand(), 5, 30 + format);
        place(first, field, q);
        first.AddControlChar(q++, 9);
    }
    auto& second = *set.GetMessage(2);
    q = 0;
    for (int32_t format : {3, 4}) {
        auto field = std::make_shared<clsProtocolScanNumericVar>();
        link(*field->LikedOperand(), 16, 40 + format);
        field->StreamForm(1);
        field->VarFormat(format);
        field->StreamVectorLength(2);
        field->CopyBytesFormat(format == 3 ? 1 : 5);
        field->AddNullToEndOfStream(format == 4);
        place(second, field, q);
    }
    auto checksum = std::make_shared<clsProtocolCSVar>();
    richChecksum(*checksum);
    place(second, checksum, q);
    putText(second, q, L"OK");
    // A message of only a numeric field: flags 0.
    auto& third = *set.GetMessage(3);
    q = 0;
    auto lone = std::make_shared<clsProtocolScanNumericVar>();
    link(*lone->LikedOperand(), 3, 50);
    place(third, lone, q);
}

// A linked operand of a Config, with the types it allows.
StoredOperand configOperand(const std::wstring& key, int32_t type, int32_t address) {
    StoredOperand operand = test::storedLink(key, L"Port", type, address, L"Z\xe4hler \x20ac 1");
    operand.AllowedTypes = {{1, 3, true}, {1, 65, false}};
    return operand;
}

// One net with a Config on port 2 and two links (one a constant with a
// constant list), the family's instances, the host's tables, both settings.
Project configProject() {
    Project project;
    project.Settings.ExtendedOperands = true;
    project.Settings.AppFolder = L"/opt/rungs/bin";
    StoredOperation config;
    config.MethodID = 170101;
    config.FatherInstanceNum = 1;
    config.IsConducting = true;
    config.BinaryOperands = {0x02, 0x00};
    StoredOperand constant = configOperand(L"2", 34, 5);
    constant.Mode = 2;
    constant.HasValue = true;
    constant.ConstantValue = 20000;
    constant.ConstantListMode = 1;
    constant.ConstantListOnly = true;
    constant.ConstantList = {{1, L"COM1"}, {2, L"COM2"}};
    config.InOperands = {constant};
    config.OutOperands = {configOperand(L"1", 1, 10)};
    project.Nets = {LadderNet{L"Start", {config}}};
    project.Instances = {{170100, 1, L"Printer", {0x02, 0x00}}, {170100, 3, L"Scale", {}}};
    project.Constants = {{5, 34, 20000}};
    project.Links = {{1, 10, 1, 3, 1}, {34, 5, 2, 3, 1}};
    project.NextConstantAddress = 6;
    return project;
}

// Several nets: an empty one, a Send with a short image, an operation with no image.
Project netsProject() {
    Project project;
    StoredOperation send;
    send.MethodID = 170103;
    send.HexFileVersion = 101;
    send.FatherInstanceNum = 2;
    send.BinaryOperands = {0x01, 0x00, 0x41, 0x42, 0x0D};
    send.InOperands = {configOperand(L"in", 5, 7)};
    // The operands of its image the host lists, with their descriptions.
    send.FindOnly = {configOperand(L"1", 3, 40), configOperand(L"2", 3, 41)};
    StoredOperation reset;
    reset.MethodID = 170105;
    project.Nets = {LadderNet{L"", {}}, LadderNet{L"Send \x20ac", {send, reset}}, LadderNet{L"end", {reset}}};
    project.Links = {{5, 7, 1, 3, 1}, {3, 40, 1, 3, 1}, {3, 41, 1, 3, 1}};
    project.Descriptions = {{0, 3, 40, L"Level"}, {0, 5, 7, L"Start \x20ac"}};
    return project;
}

// The table of a new TCP/IP Config: port 20000, "Address " and the index.
std::vector<EthAddress> newAddressTable() {
    std::vector<EthAddress> table(eth::AddressCount);
    for (size_t i = 0; i < table.size(); ++i) {
        table[i].Port.Value = 20000;
        table[i].Description = L"Address " + std::to_wstring(i);
    }
    return table;
}

OperandPtr linkedMI(int32_t address) {
    OperandPtr operand = newOperand();
    link(*operand, 3, address);
    return operand;
}

// Constants and linked MIs on both sides, a port with no IP, descriptions
// short, cut and outside ASCII.
std::vector<EthAddress> mixedAddressTable() {
    std::vector<EthAddress> table(eth::AddressCount);
    table[0] = {{nullptr, 0x0A01A8C0}, {nullptr, 502}, L"PLC NORTH 01"};
    table[1] = {{linkedMI(200), 0}, {linkedMI(204), 0}, L"Scale"};
    table[2] = {{nullptr, 0x0100000A}, {linkedMI(65535), 0}, L"A longer description"};
    table[3] = {{}, {nullptr, 20000}, L"Caf\xe9"};
    table[4] = {{linkedMI(0), 0}, {}, L"\x3a9\x20ac"};
    table[5] = {{nullptr, -1}, {nullptr, -1}, L""};
    return table;
}

void writeAddressTableSeeds() {
    const std::string target = "fuzz_address_table";
    ScopedHostContext context;
    writeSeed(target, "new_instance", false, BuildAddressTableImage(newAddressTable()));
    const std::vector<EthAddress> mixed = mixedAddressTable();
    const Bytes rows = BuildAddressTableImage(mixed);
    writeSeed(target, "mixed_rows", false, rows);
    writeSeed(target, "two_records", false, BuildAddressTableImage({mixed[0], mixed[1]}));
    writeSeed(target, "no_record", false, BuildAddressTableImage({}));
    writeSeed(target, "255_records", false, BuildAddressTableImage(std::vector<EthAddress>(255, mixed[0])));
    // A used flag of 7, parameter flags of 2 and 255 (both read as constants)
    // and a byte 0 in a description: bytes no writer makes.
    Bytes odd = rows;
    odd[2] = 7;
    odd[4] = 2;
    odd[10] = 0xFF;
    odd[16 + 11] = 0;
    writeSeed(target, "odd_flags", false, odd);
    // Short of their count: at the header, inside a parameter, one byte short.
    for (size_t length : {1u, 2u, 31u, 200u, 417u}) {
        writeSeed(target, "truncated_" + std::to_string(length), false,
                  Bytes(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(length)));
    }
    writeSeed(target, "empty", false, Bytes{});
}

std::string readWhole(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

// The inspector's seeds are the images of the other targets' seeds, which
// this run wrote: each once to be recognised by its content (kind byte 0)
// and, but for the random sets, once with its kind named (1 Send, 2 Scan,
// 3 Config, 4 Copy buffer, 5 address table).
void writeImageDumpSeeds() {
    const std::pair<const char*, char> sources[] = {{"fuzz_send_image", 1},
                                                    {"fuzz_scan_image", 2},
                                                    {"fuzz_config_image", 3},
                                                    {"fuzz_copy_buffer_image", 4},
                                                    {"fuzz_address_table", 5}};
    const fs::path folder = corpusRoot / "fuzz_image_dump";
    fs::create_directories(folder);
    for (const auto& [target, kind] : sources) {
        std::vector<fs::path> seeds;
        for (const auto& entry : fs::directory_iterator(corpusRoot / target))
            if (entry.path().filename().string().rfind("seed_", 0) == 0) seeds.push_back(entry.path());
        std::sort(seeds.begin(), seeds.end());
        for (const fs::path& seed : seeds) {
            std::string bytes = readWhole(seed);
            if (bytes.empty()) continue;
            const std::string name = std::string(target).substr(5) + "_" + seed.filename().string().substr(5);
            for (char pick : {char(0), kind}) {
                if (pick != 0 && name.find("random_") != std::string::npos) continue;
                bytes[0] = pick;
                std::ofstream out(folder / ("seed_" + name + (pick ? "_named" : "")),
                                  std::ios::binary | std::ios::trunc);
                out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
                ++written;
            }
        }
    }
}

void writeFileSeed(const std::string& target, const std::string& name, const std::string& bytes) {
    fs::path folder = corpusRoot / target;
    fs::create_directories(folder);
    std::ofstream out(folder / ("seed_" + name), std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    ++written;
}

// The file the project store saves, rewritten in pages of 512 bytes instead
// of its own 4 KiB: a tenth of the size, mostly structure rather than free
// space, for the fuzzer to mutate.
// alteration, when given, is SQL run on the saved file first, as another
// program would run it: a schema this program never writes.
std::string projectFile(const Project& project, const std::string& alteration = "") {
    const fs::path file = fs::temp_directory_path() / ("qxfb_fuzz_seeds_" + std::to_string(::getpid()) + ".qxfbproj");
    fs::remove(file);
    saveProject(file.string(), project);
    sqlite3* db = nullptr;
    const std::string sql = alteration + "PRAGMA page_size = 512; VACUUM;";
    const bool rewritten = sqlite3_open(file.c_str(), &db) == SQLITE_OK &&
                           sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    if (!rewritten) throw std::runtime_error("cannot rewrite " + file.string());
    std::string bytes = readWhole(file);
    fs::remove(file);
    return bytes;
}

void writeProjectSeeds() {
    const std::string target = "fuzz_project_file";
    writeFileSeed(target, "empty_project", projectFile(Project{}));
    const std::string config = projectFile(configProject());
    writeFileSeed(target, "config_project", config);
    writeFileSeed(target, "nets_project", projectFile(netsProject()));
    writeFileSeed(target, "truncated", config.substr(0, config.size() / 2));
    writeFileSeed(target, "text_file", "[Project]\nName=plant\n");
    // Schemas of other programs that look like ours: a CHECK constraint, an
    // expression index under an automatic index's name, an expression index
    // of its own name, a table without its key. The expressions are cheap,
    // so that a reader that evaluated them would still be fast to fuzz.
    const std::string writable = "PRAGMA writable_schema = ON;";
    writeFileSeed(
        target, "check_constraint",
        projectFile(configProject(),
                    writable + "UPDATE sqlite_schema SET sql = replace(sql, 'name TEXT NOT NULL',"
                               " 'name TEXT NOT NULL CHECK(length(hex(name)) < 1000)') WHERE name = 'instances';"
                               "PRAGMA writable_schema = OFF;"));
    writeFileSeed(target, "disguised_expression_index",
                  projectFile(netsProject(), "CREATE INDEX costly ON nets(length(hex(comment)));" + writable +
                                                 "UPDATE sqlite_schema SET name = 'sqlite_autoindex_nets_9', sql ="
                                                 " replace(sql, 'costly', 'sqlite_autoindex_nets_9') WHERE name ="
                                                 " 'costly'; PRAGMA writable_schema = OFF;"));
    writeFileSeed(target, "expression_index",
                  projectFile(configProject(), "CREATE INDEX by_upper_name ON instances(upper(name), data);"));
    writeFileSeed(target, "instances_without_key",
                  projectFile(configProject(),
                              "CREATE TABLE copy AS SELECT * FROM instances; DROP TABLE instances;"
                              "CREATE TABLE instances(father_id INTEGER NOT NULL, instance_num INTEGER NOT NULL,"
                              " name TEXT NOT NULL, data BLOB NOT NULL) STRICT;"
                              "INSERT INTO instances SELECT * FROM copy; INSERT INTO instances SELECT * FROM copy;"
                              " DROP TABLE copy;"));
}

// The runtime model's recognition: a Scan image and a capture, the image's
// length in two bytes in front. Scans with start and end characters and a
// number, with an end-of-message checksum, and ended by a length, each with
// a capture of good frames, noise and a cut frame.
void writeRecognizerSeed(const std::string& name, const Bytes& image, const std::string& capture) {
    const fs::path folder = corpusRoot / "fuzz_scan_recognizer";
    fs::create_directories(folder);
    std::ofstream out(folder / ("seed_" + name), std::ios::binary | std::ios::trunc);
    const char length[2] = {static_cast<char>(image.size() & 0xFF), static_cast<char>(image.size() >> 8)};
    out.write(length, 2);
    out.write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
    out.write(capture.data(), static_cast<std::streamsize>(capture.size()));
    ++written;
}

void writeRecognizerSeeds() {
    const auto row = [](const std::wstring& text) { return text + std::wstring(500 - text.size(), L' '); };
    const auto frameOf = [](clsProtocolScanSrv& set, std::initializer_list<uint8_t> stx,
                            std::initializer_list<uint8_t> etx) {
        int32_t i = 0;
        for (uint8_t byte : stx) set.SetScanSTXValue(i++, byte, false);
        set.ScanSTXLength(i);
        i = 0;
        for (uint8_t byte : etx) set.SetScanETXValue(i++, byte, false);
        set.ScanETXLength(i);
    };
    {
        ScopedHostContext context;
        clsProtocolScanSrv set;
        set.MessageLengthValue(0);
        set.AppendMessage();
        set.GetMessage(1)->MessageString(row(L"ST,"));
        auto weight = std::make_shared<clsProtocolScanNumericVar>();
        weight->StartPosition(3);
        weight->BeforePoint(6);
        set.GetMessage(1)->AddVar(weight);
        set.GetMessage(2)->MessageString(row(L"OL"));
        frameOf(set, {0x02}, {0x0D, 0x0A});
        writeRecognizerSeed("scale", set.BinaryData(), std::string("\x02ST,+012.34\r\n\x02OL\r\nxx\x02ST,-", 26));
    }
    {
        ScopedHostContext context;
        clsProtocolScanSrv set;
        set.MessageLengthValue(0);
        set.GetMessage(1)->MessageString(row(L"0103020007"));
        frameOf(set, {':'}, {0x0D, 0x0A});
        set.EndOfScanMessageType(2);
        auto checksum = std::dynamic_pointer_cast<clsProtocolCSVar>(set.ScanChecksum());
        checksum->CalculationType(10);
        checksum->FormatView(1);
        checksum->CSLength(2);
        writeRecognizerSeed("modbus_ascii", set.BinaryData(), ":0103020007F3\r\n:0103020007F4\r\n");
    }
    {
        ScopedHostContext context;
        clsProtocolScanSrv set;
        set.MessageLengthValue(4);
        set.GetMessage(1)->MessageString(row(L"A"));
        auto stream = std::make_shared<clsProtocolScanNumericVar>();
        stream->StartPosition(1);
        stream->StreamForm(1);
        stream->VarFormat(3);
        stream->StreamVectorLength(3);
        set.GetMessage(1)->AddVar(stream);
        frameOf(set, {0x02}, {});
        writeRecognizerSeed("length", set.BinaryData(),
                            std::string("\x02"
                                        "A\x01\x02\x03\x02"
                                        "A\x03",
                                        9));
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS_ROOT\n", argv[0]);
        return 2;
    }
    corpusRoot = argv[1];
    const std::string send = "fuzz_send_image";
    const std::string scan = "fuzz_scan_image";

    for (bool extended : {false, true}) {
        seed<clsProtocolSendSrv>(send, "worked_example", extended,
                                 [](clsProtocolSendSrv& set) { workedExample(*set.GetMessage(1)); });
        seed<clsProtocolSendSrv>(send, "no_message", extended, [](clsProtocolSendSrv&) {});
        seed<clsProtocolSendSrv>(send, "every_field_kind", extended, everySendFieldKind);
        seed<clsEthProtocolSendSrv>(send, "eth_every_field_kind", extended, everySendFieldKind);
        seed<clsProtocolScanSrv>(scan, "worked_example", extended,
                                 [](clsProtocolScanSrv& set) { workedExample(*set.GetMessage(1)); });
        seed<clsProtocolScanSrv>(scan, "no_message", extended, [](clsProtocolScanSrv&) {});
        seed<clsProtocolScanSrv>(scan, "every_field_kind", extended, everyScanFieldKind);
    }
    // An image of version 0 read with the extended operands on: the STX flags
    // of its checksums come from the rule for old images.
    {
        ScopedHostContext context;
        clsProtocolSendSrv set;
        everySendFieldKind(set);
        writeSeed(send, "every_field_kind_version0_read_ext", true, set.BinaryData());
    }
    {
        ScopedHostContext context;
        clsProtocolScanSrv set;
        everyScanFieldKind(set);
        writeSeed(scan, "every_field_kind_version0_read_ext", true, set.BinaryData());
    }

    // Random valid sets, small ones and a few as large as the image allows.
    const test::RandomSetShape small{
        .MaxMessages = 6, .MaxFieldsPerMessage = 6, .MaxTextRun = 30, .MaxTrailingEmpty = 1};
    const test::RandomSetShape many{
        .MinMessages = 255, .MaxMessages = 255, .MaxFieldsPerMessage = 2, .MaxTextRun = 12, .MaxTrailingEmpty = 0};
    const test::RandomSetShape full{
        .MinMessages = 255, .MaxMessages = 255, .MaxFieldsPerMessage = 50, .MaxTextRun = 8, .MaxTrailingEmpty = 0};
    for (uint32_t n = 1; n <= 24; ++n) {
        bool extended = n % 2 == 1;
        char name[32];
        std::snprintf(name, sizeof name, "random_%02u", n);
        seed<clsProtocolSendSrv>(send, name, extended, [n, &small](clsProtocolSendSrv& set) {
            std::mt19937 random(n);
            test::fillRandomSendSet(set, random, small);
        });
        seed<clsProtocolScanSrv>(scan, name, extended, [n, &small](clsProtocolScanSrv& set) {
            std::mt19937 random(n);
            test::fillRandomScanSet(set, random, small);
        });
    }
    for (uint32_t n = 1; n <= 2; ++n) {
        const test::RandomSetShape& shape = n == 1 ? many : full;
        std::string name = n == 1 ? "random_255_messages" : "random_near_65535";
        seed<clsProtocolSendSrv>(send, name, false, [&shape](clsProtocolSendSrv& set) {
            std::mt19937 random(7);
            test::fillRandomSendSet(set, random, shape);
        });
        seed<clsProtocolScanSrv>(scan, name, false, [&shape](clsProtocolScanSrv& set) {
            std::mt19937 random(7);
            test::fillRandomScanSet(set, random, shape);
        });
    }

    // Config: the three ports, a port outside them, and a one-byte image.
    const std::string config = "fuzz_config_image";
    for (uint8_t port : {1, 2, 3, 0, 255}) {
        ScopedHostContext context;
        clsProtocolConfigSrv srv;
        srv.ComPort(port);
        writeSeed(config, "port_" + std::to_string(port), port == 2, srv.BinaryData());
    }
    writeSeed(config, "one_byte", false, Bytes{2});

    // Copy buffer: the three formats, none chosen yet, one outside them, and
    // a one-byte image.
    const std::string copyBuffer = "fuzz_copy_buffer_image";
    for (uint8_t format : {1, 2, 4, 0, 255}) {
        ScopedHostContext context;
        clsProtocolCopyToBufferSrv srv;
        srv.CopyFormat(format);
        writeSeed(copyBuffer, "format_" + std::to_string(format), format == 2, srv.BinaryData());
    }
    writeSeed(copyBuffer, "one_byte", false, Bytes{2});

    writeAddressTableSeeds();
    writeProjectSeeds();
    writeRecognizerSeeds();
    writeImageDumpSeeds();

    std::printf("wrote %d seeds under %s\n", written, corpusRoot.string().c_str());
    return 0;
}
