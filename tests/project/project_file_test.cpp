#include "project/project_file.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "platform/basics/ansi.h"
#include "project/child_process.h"
#include "support/scratch_files.h"
#include "support/sqlite_files.h"
#include "support/stored_link.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

namespace fs = std::filesystem;

// A link of the sample, with the types it allows.
StoredOperand linkedOperand(const std::wstring& key, int32_t type, int32_t address) {
    StoredOperand operand = test::storedLink(key, L"Status", type, address, L"Zähler € 1");
    operand.AllowedTypes = {{1, 3, true}, {1, 65, false}};
    return operand;
}

// A project touching every table: two nets, a Config with two links, a Send
// with a constant that has a constant list, a Buffer reset with no image,
// instances of both families, the host's tables and both settings.
Project sampleProject() {
    Project project;
    project.Settings.ExtendedOperands = true;
    project.Settings.AppFolder = L"/opt/rungs/bin";
    StoredOperation config;
    config.MethodID = 170101;
    config.FatherInstanceNum = 1;
    config.BinaryOperands = {0x02, 0x00};
    config.OutOperands = {linkedOperand(L"1", 1, 10), linkedOperand(L"2", 3, 20)};
    StoredOperation send;
    send.MethodID = 170103;
    send.HexFileVersion = 101;
    send.FatherInstanceNum = 1;
    send.IsConducting = true;
    send.BinaryOperands.assign(70000, 0);
    for (size_t i = 0; i < send.BinaryOperands.size(); ++i) send.BinaryOperands[i] = static_cast<uint8_t>(i * 7);
    StoredOperand constant = linkedOperand(L"1", 34, 5);
    constant.Mode = 2;
    constant.ConstantValue = -123456789012;
    constant.ConstantListMode = 1;
    constant.ConstantListOnly = true;
    constant.VectorLength = 5;
    constant.ConstantList = {{1, L"Socket 1"}, {2, L"Socket 2"}};
    send.InOperands = {linkedOperand(L"in", 5, 7)};
    send.OutOperands = {constant};
    send.FindOnly = {linkedOperand(L"1", 3, 40), linkedOperand(L"2", 3, 40), linkedOperand(L"3", 64, 50)};
    StoredOperation reset;
    reset.MethodID = 170105;
    project.Nets = {LadderNet{L"Start", {config}}, LadderNet{L"", {send, reset}}, LadderNet{L"empty net", {}}};
    project.Instances = {
        {170100, 1, L"Printer", {}}, {170100, 3, L"Scale", {1, 2, 3}}, {170200, 1, L"Cell", Bytes(418, 0x20)}};
    project.Constants = {{5, 34, -123456789012}};
    project.Links = {{1, 10, 1, 3, 1}, {3, 20, 1, 3, 2}, {34, 5, 2, 3, 1}};
    project.Descriptions = {{0, 1, 100, L"Remote IP"}, {0, 1, 104, L"Remote port ü"}, {2, 3, 20, L""}};
    project.NextConstantAddress = 6;
    return project;
}

using test::runSql;

std::string descriptionOf(const RuntimeError& e) { return toUtf8(e.Description()); }

class ProjectFileTest : public ::testing::Test {
protected:
    test::ScratchFolder folder{"qxfb_project"};
    fs::path file = folder.path() / "plant.qxfbproj";
    std::string path = file.string();
};

TEST_F(ProjectFileTest, ASavedProjectLoadsBackEqualInEveryPart) {
    const Project project = sampleProject();
    saveProject(path, project);
    const Project loaded = loadProject(path);
    ASSERT_EQ(loaded.Nets.size(), 3u);
    EXPECT_EQ(loaded.Nets[1].Operations[0].BinaryOperands, project.Nets[1].Operations[0].BinaryOperands);
    EXPECT_TRUE(loaded.Nets[1].Operations[1].BinaryOperands.empty());
    EXPECT_EQ(loaded.Nets[1].Operations[0].OutOperands[0].ConstantList,
              project.Nets[1].Operations[0].OutOperands[0].ConstantList);
    EXPECT_EQ(loaded.Nets[0].Operations[0].OutOperands[0].Description, L"Zähler € 1");
    EXPECT_EQ(loaded.Settings, project.Settings);
    EXPECT_EQ(loaded.Instances, project.Instances);
    EXPECT_EQ(loaded, project);
}

TEST_F(ProjectFileTest, TheFileIsMarkedAsAProjectOfItsSchema) {
    saveProject(path, sampleProject());
    const std::string bytes = test::readFile(file);
    ASSERT_GT(bytes.size(), 100u);
    EXPECT_EQ(bytes.substr(0, 16), std::string("SQLite format 3\0", 16));
    // The header's user version (offset 60) and application id (offset 68), big-endian.
    EXPECT_EQ(bytes.substr(60, 4), std::string("\0\0\0\x03", 4));
    EXPECT_EQ(bytes.substr(68, 4), "QxFB");
}

// A file of the first schema, without the descriptions' table, as the
// program before wrote it.
void makeFirstSchemaFile(const fs::path& file, const Project& project) {
    saveProject(file.string(), project);
    runSql(file, "DROP TABLE descriptions; DROP TABLE checksums; DROP TABLE text_forms; PRAGMA user_version = 1;");
}

TEST_F(ProjectFileTest, AFileOfTheFirstSchemaIsReadAndSavedAsTheNewOne) {
    Project project = sampleProject();
    project.Nets[1].Operations[0].FindOnly.clear();
    makeFirstSchemaFile(file, project);
    project.Descriptions.clear();
    EXPECT_EQ(loadProject(path), project);
    project.Descriptions = {{0, 1, 7, L"Valve"}};
    saveProject(path, project);
    EXPECT_EQ(test::readFile(file).substr(60, 4), std::string("\0\0\0\x03", 4));
    EXPECT_EQ(loadProject(path), project);
}

TEST_F(ProjectFileTest, AFindOnlyOperandInAFirstSchemaFileIsDamage) {
    makeFirstSchemaFile(file, sampleProject());
    EXPECT_EQ(descriptionOf(test::raisedError([&] { loadProject(path); })),
              "project file \"" + path + "\": is damaged (a value of side is out of range)");
}

TEST_F(ProjectFileTest, AFirstSchemaFileWithTheNewTableIsNotOfThisProgram) {
    saveProject(path, sampleProject());
    runSql(file, "DROP TABLE checksums; DROP TABLE text_forms; PRAGMA user_version = 1;");
    EXPECT_EQ(descriptionOf(test::raisedError([&] { loadProject(path); })),
              "project file \"" + path +
                  "\": is not a project file of this program (the table descriptions is not of a project)");
}

TEST_F(ProjectFileTest, ASecondSchemaFileWithTheChecksumTableIsNotOfThisProgram) {
    saveProject(path, sampleProject());
    runSql(file, "DROP TABLE text_forms; PRAGMA user_version = 2;");
    EXPECT_EQ(descriptionOf(test::raisedError([&] { loadProject(path); })),
              "project file \"" + path +
                  "\": is not a project file of this program (the table checksums is not of a project)");
}

TEST_F(ProjectFileTest, AFileOfTheSecondSchemaHasTheDefaultChecksumsAndIsSavedAsTheNewOne) {
    Project project = sampleProject();
    saveProject(path, project);
    runSql(file, "DROP TABLE checksums; DROP TABLE text_forms; PRAGMA user_version = 2;");
    EXPECT_EQ(loadProject(path), project);
    project.Settings.Checksums.Definition(3, model::knownChecksums()[10]);
    saveProject(path, project);
    EXPECT_EQ(test::readFile(file).substr(60, 4), std::string("\0\0\0\x03", 4));
    EXPECT_EQ(loadProject(path).Settings.Checksums.Definition(3).Name, "CRC-16/MODBUS");
    EXPECT_EQ(loadProject(path), project);
}

TEST_F(ProjectFileTest, TheChecksumTableIsKeptCodeByCodeAsThePersonSetIt) {
    Project project = sampleProject();
    const std::vector<model::ChecksumDefinition>& known = model::knownChecksums();
    // Every code a definition other than its default, the byte order too.
    for (int32_t code = 1; code <= 10; ++code) {
        model::ChecksumDefinition d = known[known.size() - static_cast<size_t>(code)];
        d.LowByteFirst = code % 2 == 0;
        project.Settings.Checksums.Definition(code, d);
    }
    saveProject(path, project);
    EXPECT_EQ(loadProject(path).Settings.Checksums, project.Settings.Checksums);
    EXPECT_EQ(test::querySql(file, "SELECT name, width, polynomial, low_byte_first FROM checksums WHERE code = 10"),
              known[known.size() - 10].Name + "|16|" + std::to_string(known[known.size() - 10].Polynomial) + "|1");
}

TEST_F(ProjectFileTest, AnUnsoundOrMisplacedChecksumIsDamage) {
    saveProject(path, sampleProject());
    const std::string good = test::readFile(file);
    const std::vector<std::pair<std::string, std::string>> cases{
        {"UPDATE checksums SET check_value = 1 WHERE code = 3",
         "the checksum code 3 is unsound: its check value 0x1 is not what it gives over \"123456789\" (0xBB3D)"},
        {"UPDATE checksums SET polynomial = 70000 WHERE code = 6",
         "the checksum code 6 is unsound: the polynomial 0x11170 is wider than 16 bits"},
        {"UPDATE checksums SET code = 11 WHERE code = 10", "a value of code is out of range"},
        {"UPDATE checksums SET rule = 7 WHERE code = 1", "a value of rule is out of range"},
        {"UPDATE checksums SET width = 0 WHERE code = 1", "a value of width is out of range"},
        {"UPDATE checksums SET name = '' WHERE code = 2", "the checksum code 2 is unsound: it has no name"},
    };
    for (const auto& [sql, why] : cases) {
        test::writeFile(file, good);
        runSql(file, sql);
        EXPECT_EQ(descriptionOf(test::raisedError([&] { loadProject(path); })),
                  "project file \"" + path + "\": is damaged (" + why + ")")
            << sql;
    }
}

TEST_F(ProjectFileTest, AnOperandDescribedTwiceIsRefusedBeforeAnythingIsWritten) {
    Project project = sampleProject();
    project.Descriptions.push_back({0, 1, 100, L"again"});
    EXPECT_EQ(descriptionOf(test::raisedError([&] { saveProject(path, project); })),
              "project file \"" + path +
                  "\": cannot be saved: the project holds the description of type 1 at address 100 twice");
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(ProjectFileTest, SavingAgainReplacesTheWholeContent) {
    saveProject(path, sampleProject());
    Project smaller;
    smaller.Nets = {LadderNet{L"only", {}}};
    smaller.Settings.AppFolder = L"elsewhere";
    saveProject(path, smaller);
    EXPECT_EQ(loadProject(path), smaller);
}

TEST_F(ProjectFileTest, AnEmptyProjectRoundTrips) {
    saveProject(path, Project{});
    EXPECT_EQ(loadProject(path), Project{});
}

TEST_F(ProjectFileTest, AMissingFileIsNamedAsNotFound) {
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(e.Number(), err::FileNotFound);
    EXPECT_EQ(descriptionOf(e), "project file \"" + path + "\": not found");
}

TEST_F(ProjectFileTest, AFolderOrFifoIsNoProjectFileAndIsNotOpened) {
    const RuntimeError onFolder = test::raisedError([&] { loadProject(folder.path().string()); });
    EXPECT_EQ(onFolder.Number(), err::PathFileAccessError);
    EXPECT_NE(descriptionOf(onFolder).find("is not a regular file"), std::string::npos);
    const fs::path fifo = folder.path() / "pipe";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(test::raisedError([&] { loadProject(fifo.string()); }).Number(), err::PathFileAccessError);
    EXPECT_EQ(test::raisedError([&] { saveProject(fifo.string(), Project{}); }).Number(), err::PathFileAccessError);
    EXPECT_TRUE(fs::is_fifo(fifo));
}

TEST_F(ProjectFileTest, ATextFileIsNoProjectAndIsLeftAsItWas) {
    test::writeFile(file, std::string(4096, 'x'));
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(e.Number(), err::InvalidFileFormat);
    EXPECT_EQ(descriptionOf(e), "project file \"" + path + "\": is not a project file (not an SQLite database)");
    EXPECT_EQ(test::raisedError([&] { saveProject(path, sampleProject()); }).Number(), err::InvalidFileFormat);
    EXPECT_EQ(test::readFile(file), std::string(4096, 'x'));
}

TEST_F(ProjectFileTest, AnotherProgramsDatabaseIsRefusedAndLeftAsItWas) {
    runSql(file, "CREATE TABLE customers(name TEXT); INSERT INTO customers VALUES('Ada');");
    const std::string before = test::readFile(file);
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(e.Number(), err::InvalidFileFormat);
    EXPECT_EQ(descriptionOf(e),
              "project file \"" + path + "\": is an SQLite database of another program, not a project file");
    EXPECT_EQ(test::raisedError([&] { saveProject(path, sampleProject()); }).Number(), err::InvalidFileFormat);
    EXPECT_EQ(test::readFile(file), before);
}

TEST_F(ProjectFileTest, AProjectOfANewerSchemaIsRefusedAndLeftAsItWas) {
    saveProject(path, sampleProject());
    runSql(file, "PRAGMA user_version = 4;");
    const std::string before = test::readFile(file);
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(e.Number(), err::InvalidFileFormat);
    EXPECT_EQ(descriptionOf(e), "project file \"" + path +
                                    "\": was written by a newer version of the program (project schema 4; this one "
                                    "reads schema 3 and older)");
    EXPECT_EQ(test::raisedError([&] { saveProject(path, Project{}); }).Number(), err::InvalidFileFormat);
    EXPECT_EQ(test::readFile(file), before);
}

TEST_F(ProjectFileTest, AnEmptyFileIsNoProjectButMayBecomeOne) {
    test::writeFile(file, "");
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(e.Number(), err::InvalidFileFormat);
    EXPECT_EQ(descriptionOf(e), "project file \"" + path + "\": is empty, not a project file");
    saveProject(path, sampleProject());
    EXPECT_EQ(loadProject(path), sampleProject());
}

TEST_F(ProjectFileTest, ALockedFileIsNamedAsLockedAndSavingChangesNothing) {
    saveProject(path, sampleProject());
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    const RuntimeError onLoad = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(onLoad.Number(), err::PermissionDenied);
    EXPECT_EQ(descriptionOf(onLoad), "project file \"" + path + "\": is locked by another program");
    EXPECT_EQ(test::raisedError([&] { saveProject(path, Project{}); }).Number(), err::PermissionDenied);
    sqlite3_exec(other, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    EXPECT_EQ(loadProject(path), sampleProject());
}

TEST_F(ProjectFileTest, ADamagedFileGivesAnErrorAndNeverACrash) {
    saveProject(path, sampleProject());
    const std::string good = test::readFile(file);
    // Cut short, and pages overwritten at several places past the header.
    std::vector<std::string> damaged{good.substr(0, good.size() / 2), good.substr(0, 4096 + 100)};
    for (size_t at = 100; at < good.size(); at += 1024) {
        std::string bytes = good;
        for (size_t i = at; i < std::min(bytes.size(), at + 64); ++i) bytes[i] = static_cast<char>(0xA5 ^ i);
        damaged.push_back(bytes);
    }
    int refused = 0;
    for (const std::string& bytes : damaged) {
        test::writeFile(file, bytes);
        try {
            // What still loads must be a project this program can save and
            // read back as it was.
            const Project loaded = loadProject(path);
            const std::string copy = (folder.path() / "copy.qxfbproj").string();
            fs::remove(copy);
            saveProject(copy, loaded);
            EXPECT_EQ(loadProject(copy), loaded);
        } catch (const RuntimeError& e) {
            ++refused;
            EXPECT_TRUE(e.Number() == err::InvalidFileFormat || e.Number() == 57) << descriptionOf(e);
            EXPECT_EQ(descriptionOf(e).rfind("project file \"" + path + "\": ", 0), 0u) << descriptionOf(e);
        }
    }
    // A cut file and most overwritten pages are noticed; a page of the big
    // image's bytes can change unnoticed, as in any file without checksums.
    EXPECT_GT(refused, 2);
}

// The page of a table or index, as the schema names it.
int64_t rootPageOf(const fs::path& file, const std::string& name) {
    sqlite3* db = nullptr;
    EXPECT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
    sqlite3_stmt* query = nullptr;
    sqlite3_prepare_v2(db, ("SELECT rootpage FROM sqlite_schema WHERE name = '" + name + "'").c_str(), -1, &query,
                       nullptr);
    const int64_t page = sqlite3_step(query) == SQLITE_ROW ? sqlite3_column_int64(query, 0) : 0;
    sqlite3_finalize(query);
    sqlite3_close(db);
    return page;
}

TEST_F(ProjectFileTest, ASymbolicLinkIsRefusedByName) {
    saveProject(path, sampleProject());
    const fs::path link = folder.path() / "link.qxfbproj";
    fs::create_symlink(file, link);
    const RuntimeError e = test::raisedError([&] { loadProject(link.string()); });
    EXPECT_EQ(e.Number(), err::PathFileAccessError);
    EXPECT_EQ(descriptionOf(e),
              "project file \"" + link.string() + "\": is a symbolic link; name the file it points to");
    EXPECT_EQ(test::raisedError([&] { saveProject(link.string(), Project{}); }).Number(), err::PathFileAccessError);
    EXPECT_EQ(loadProject(path), sampleProject());
}

TEST_F(ProjectFileTest, AViewOrATriggerInTheFileIsDamageAndRunsNothing) {
    saveProject(path, sampleProject());
    runSql(file,
           "DROP TABLE links;"
           "CREATE VIEW links AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n)"
           " SELECT i AS type, i AS address, 1 AS mode, 3 AS format, 1 AS count FROM n;");
    EXPECT_EQ(
        descriptionOf(test::raisedError([&] { loadProject(path); })),
        "project file \"" + path + "\": is not a project file of this program (the view links is not of a project)");
    const std::string other = (folder.path() / "other.qxfbproj").string();
    saveProject(other, sampleProject());
    runSql(other, "CREATE TRIGGER hidden AFTER INSERT ON nets BEGIN DELETE FROM operations; END;");
    const std::string before = test::readFile(other);
    EXPECT_EQ(descriptionOf(test::raisedError([&] { saveProject(other, sampleProject()); })),
              "project file \"" + other +
                  "\": is not a project file of this program (the trigger hidden is not of a project)");
    EXPECT_EQ(test::readFile(other), before);
}

TEST_F(ProjectFileTest, ANextConstantAddressInUseIsDamage) {
    saveProject(path, sampleProject());
    runSql(file, "UPDATE settings SET value = 5 WHERE name = 'NextConstantAddress';");
    EXPECT_EQ(descriptionOf(test::raisedError([&] { loadProject(path); })),
              "project file \"" + path + "\": is damaged (the next constant address is in use)");
}

TEST_F(ProjectFileTest, AnIndexThatNoLongerMatchesItsTableIsDamage) {
    saveProject(path, sampleProject());
    // The keys of the instances live in an index too; change the last bytes
    // of its page, where its records are, and leave the table as it was.
    const int64_t page = rootPageOf(file, "sqlite_autoindex_instances_1");
    ASSERT_GT(page, 1);
    std::string bytes = test::readFile(file);
    const size_t pageSize = static_cast<uint8_t>(bytes[16]) * 256 + static_cast<uint8_t>(bytes[17]);
    const size_t end = static_cast<size_t>(page) * pageSize;
    ASSERT_LE(end, bytes.size());
    for (size_t i = end - 3; i < end; ++i) bytes[i] = static_cast<char>(bytes[i] ^ 0x5A);
    test::writeFile(file, bytes);
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(e.Number(), err::InvalidFileFormat);
    EXPECT_EQ(descriptionOf(e).rfind("project file \"" + path + "\": is damaged (", 0), 0u) << descriptionOf(e);
    EXPECT_EQ(test::raisedError([&] { saveProject(path, sampleProject()); }).Number(), err::InvalidFileFormat);
    EXPECT_EQ(test::readFile(file), bytes);
}

TEST_F(ProjectFileTest, ATableWithoutStrictTypesIsNotOfThisProgram) {
    saveProject(path, sampleProject());
    // Another program may write what STRICT would refuse once the table is remade without it.
    runSql(file,
           "PRAGMA writable_schema = ON;"
           "UPDATE sqlite_schema SET sql = replace(sql, ') STRICT', ')') WHERE name = 'operations';"
           "PRAGMA writable_schema = OFF;");
    runSql(file, "UPDATE operations SET method_id = 'Send' WHERE method_id = 170103;");
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(e.Number(), err::InvalidFileFormat);
    EXPECT_EQ(descriptionOf(e), "project file \"" + path +
                                    "\": is not a project file of this program (the table operations is not the one "
                                    "this program writes)");
}

TEST_F(ProjectFileTest, AnOperationOfNoNetIsDamage) {
    saveProject(path, sampleProject());
    runSql(file, "DELETE FROM nets WHERE comment = 'Start';");
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(descriptionOf(e), "project file \"" + path + "\": is damaged (an operation belongs to no net)");
}

TEST_F(ProjectFileTest, AMissingTableIsDamage) {
    saveProject(path, sampleProject());
    runSql(file, "DROP TABLE links;");
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(e.Number(), err::InvalidFileFormat);
    EXPECT_EQ(descriptionOf(e), "project file \"" + path + "\": is damaged (no such table: links)");
}

TEST_F(ProjectFileTest, ANewFileThatCannotBeMadeLeavesNothingBehind) {
    const fs::path inMissingFolder = folder.path() / "missing" / "p.qxfbproj";
    const RuntimeError e = test::raisedError([&] { saveProject(inMissingFolder.string(), sampleProject()); });
    EXPECT_EQ(e.Number(), err::PathFileAccessError);
    EXPECT_FALSE(fs::exists(inMissingFolder));
}

TEST_F(ProjectFileTest, ANewFileWhoseSaveFailsHalfwayIsRemovedWithItsJournal) {
    Project twice = sampleProject();
    twice.Instances.push_back(twice.Instances.front());
    const RuntimeError e = test::raisedError([&] { saveProject(path, twice); });
    EXPECT_EQ(e.Number(), err::InvalidProcedureCall);
    EXPECT_EQ(descriptionOf(e),
              "project file \"" + path + "\": cannot be saved: the project holds the instance 170100/1 twice");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_FALSE(fs::exists(path + "-journal"));
    // Over an existing project the same failure leaves the project as it was.
    saveProject(path, sampleProject());
    const std::string before = test::readFile(file);
    EXPECT_EQ(test::raisedError([&] { saveProject(path, twice); }).Number(), err::InvalidProcedureCall);
    EXPECT_EQ(test::readFile(file), before);
}

TEST_F(ProjectFileTest, ASaveCutShortLoadsAsTheProjectBeforeIt) {
    saveProject(path, sampleProject());
    // A save caught in the middle: the file with pages already written and
    // the journal of the pages it replaced, as a crash would leave them.
    sqlite3* saving = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &saving), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(saving,
                           "PRAGMA cache_size = 1; BEGIN IMMEDIATE; DELETE FROM operands; DELETE FROM nets;"
                           "UPDATE operations SET binary_operands = zeroblob(200000);",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    const fs::path cut = folder.path() / "cut.qxfbproj";
    fs::copy_file(file, cut);
    ASSERT_TRUE(fs::exists(path + "-journal"));
    fs::copy_file(path + "-journal", cut.string() + "-journal");
    sqlite3_exec(saving, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(saving);
    EXPECT_NE(test::readFile(cut), test::readFile(file));
    EXPECT_EQ(loadProject(cut.string()), sampleProject());
    EXPECT_FALSE(fs::exists(cut.string() + "-journal"));
}

TEST_F(ProjectFileTest, APathThatIsNotUtf8IsUsedAsItsBytes) {
    const std::string latin1 = (folder.path() /
                                "Anlage M\xFC"
                                "hle.qxfbproj")
                                   .string();
    saveProject(latin1, sampleProject());
    EXPECT_TRUE(fs::exists(latin1));
    EXPECT_EQ(loadProject(latin1), sampleProject());
    const std::string missing = latin1 + "\xFF";
    EXPECT_EQ(toUtf8(test::raisedError([&] { loadProject(missing); }).Description()),
              "project file \"" + missing + "\": not found");
}

TEST_F(ProjectFileTest, ASettingThisProgramDoesNotKnowIsIgnored) {
    saveProject(path, sampleProject());
    runSql(file, "INSERT INTO settings VALUES('FutureSetting', 42);");
    EXPECT_EQ(loadProject(path), sampleProject());
}

// The current folder for one test, and back.
class InFolder {
public:
    explicit InFolder(const fs::path& folder) : before_(fs::current_path()) { fs::current_path(folder); }
    ~InFolder() { fs::current_path(before_); }

private:
    fs::path before_;
};

double secondsFor(const std::function<void()>& call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Replaces the SQL that the file keeps for one of its objects, as another
// program can, without running it on the rows already there.
void rewriteSchemaSql(const fs::path& file, const std::string& name, const std::string& sql) {
    std::string quoted;
    for (char c : sql) quoted += c == '\'' ? std::string("''") : std::string(1, c);
    runSql(file, "PRAGMA writable_schema = ON; UPDATE sqlite_schema SET sql = '" + quoted + "' WHERE name = '" + name +
                     "'; PRAGMA writable_schema = OFF;");
}

TEST_F(ProjectFileTest, ACheckConstraintThatWouldTakeMinutesIsRefusedAtOnce) {
    saveProject(path, sampleProject());
    // 3,000 instances under a CHECK that builds 40 MB for each row: an
    // integrity check would evaluate it 3,000 times.
    runSql(file,
           "WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 3009)"
           " INSERT INTO instances SELECT 170100, i, 'x', x'00' FROM n;");
    rewriteSchemaSql(
        file, "instances",
        "CREATE TABLE instances(\n  father_id INTEGER NOT NULL, instance_num INTEGER NOT NULL, name TEXT "
        "NOT NULL, data BLOB NOT NULL CHECK(length(hex(zeroblob(20000000 + length(data)))) > 0),\n  PRIMARY "
        "KEY(father_id, instance_num)) STRICT");
    ASSERT_LT(fs::file_size(file), 256u * 1024);
    std::string message;
    const double seconds = secondsFor([&] { message = descriptionOf(test::raisedError([&] { loadProject(path); })); });
    EXPECT_EQ(message, "project file \"" + path +
                           "\": is not a project file of this program (the table instances is not the one this "
                           "program writes)");
    EXPECT_LT(seconds, 2.0);
    const std::string before = test::readFile(file);
    EXPECT_EQ(descriptionOf(test::raisedError([&] { saveProject(path, sampleProject()); })), message);
    EXPECT_EQ(test::readFile(file), before);
}

TEST_F(ProjectFileTest, AnExpressionIndexDisguisedAsAKeyIndexIsRefused) {
    saveProject(path, sampleProject());
    runSql(file, "CREATE INDEX costly ON nets(length(hex(zeroblob(1000))));");
    runSql(file,
           "PRAGMA writable_schema = ON;"
           "UPDATE sqlite_schema SET name = 'sqlite_autoindex_nets_9', sql = replace(sql, 'costly',"
           " 'sqlite_autoindex_nets_9') WHERE name = 'costly'; PRAGMA writable_schema = OFF;");
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(e.Number(), err::InvalidFileFormat);
    EXPECT_EQ(descriptionOf(e), "project file \"" + path +
                                    "\": is not a project file of this program (the index sqlite_autoindex_nets_9 "
                                    "is not of a project)");
}

TEST_F(ProjectFileTest, ADefaultOrACheckOnAColumnIsNotOfThisProgram) {
    saveProject(path, sampleProject());
    rewriteSchemaSql(file, "constants",
                     "CREATE TABLE constants(address INTEGER PRIMARY KEY, type INTEGER NOT NULL DEFAULT 3, value "
                     "INTEGER NOT NULL CHECK(value < 0)) STRICT");
    EXPECT_EQ(descriptionOf(test::raisedError([&] { loadProject(path); })),
              "project file \"" + path +
                  "\": is not a project file of this program (the table constants is not the one this program "
                  "writes)");
    // A save is refused alike, before any row could break the CHECK.
    EXPECT_EQ(descriptionOf(test::raisedError([&] { saveProject(path, sampleProject()); })),
              "project file \"" + path +
                  "\": is not a project file of this program (the table constants is not the one this program "
                  "writes)");
}

TEST_F(ProjectFileTest, TheSchemaMayDifferInLetterCaseAndWhiteSpaceOnly) {
    saveProject(path, sampleProject());
    rewriteSchemaSql(file, "constants",
                     "create table constants (\n\taddress integer primary key,  type INTEGER NOT NULL , value "
                     "INTEGER NOT NULL )  STRICT");
    EXPECT_EQ(loadProject(path), sampleProject());
}

TEST_F(ProjectFileTest, ATableRebuiltWithoutItsKeyIsRefusedEvenWithNoKeyTwice) {
    saveProject(path, sampleProject());
    runSql(file,
           "CREATE TABLE copy AS SELECT * FROM instances; DROP TABLE instances;"
           "CREATE TABLE instances(father_id INTEGER NOT NULL, instance_num INTEGER NOT NULL, name TEXT NOT NULL,"
           " data BLOB NOT NULL) STRICT;"
           "INSERT INTO instances SELECT * FROM copy; INSERT INTO instances SELECT * FROM copy WHERE instance_num = 1;"
           "DROP TABLE copy;");
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(e.Number(), err::InvalidFileFormat);
    EXPECT_EQ(descriptionOf(e), "project file \"" + path +
                                    "\": is not a project file of this program (the table instances is not the one "
                                    "this program writes)");
}

TEST_F(ProjectFileTest, AKeyTwiceInTheProjectIsNamedAndNothingIsWritten) {
    Project twice = sampleProject();
    twice.Constants.push_back({5, 1, 7});
    EXPECT_EQ(descriptionOf(test::raisedError([&] { saveProject(path, twice); })),
              "project file \"" + path + "\": cannot be saved: the project holds the constant at address 5 twice");
    twice = sampleProject();
    twice.Links.push_back({3, 20, 1, 0, 9});
    EXPECT_EQ(descriptionOf(test::raisedError([&] { saveProject(path, twice); })),
              "project file \"" + path +
                  "\": cannot be saved: the project holds the operand link of type 3 at address 20 twice");
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(ProjectFileTest, ANameThatLooksLikeAUriWithMemoryModeIsAFileOfThatName) {
    const InFolder here(folder.path());
    saveProject("file:x.qxfbproj?mode=memory", sampleProject());
    EXPECT_TRUE(fs::is_regular_file(folder.path() / "file:x.qxfbproj?mode=memory"));
    EXPECT_EQ(loadProject("file:x.qxfbproj?mode=memory"), sampleProject());
    EXPECT_EQ(loadProject((folder.path() / "file:x.qxfbproj?mode=memory").string()), sampleProject());
    saveProject(":memory:", sampleProject());
    EXPECT_EQ(loadProject((folder.path() / ":memory:").string()), sampleProject());
}

TEST_F(ProjectFileTest, SavingToAFileColonNameLeavesTheFileWithoutThePrefixAlone) {
    const InFolder here(folder.path());
    Project other;
    other.Nets = {LadderNet{L"other", {}}};
    saveProject("plant.qxfbproj", sampleProject());
    const std::string before = test::readFile(file);
    saveProject("file:plant.qxfbproj", other);
    EXPECT_EQ(test::readFile(file), before);
    EXPECT_EQ(loadProject("plant.qxfbproj"), sampleProject());
    EXPECT_EQ(loadProject("file:plant.qxfbproj"), other);
}

TEST_F(ProjectFileTest, LoadingAFileColonNameReadsThatFileNotTheDecoy) {
    const InFolder here(folder.path());
    Project named;
    named.Nets = {LadderNet{L"the one named", {}}};
    saveProject("decoy.qxfbproj", sampleProject());
    saveProject("file:decoy.qxfbproj", named);
    EXPECT_EQ(loadProject("file:decoy.qxfbproj"), named);
    fs::remove(folder.path() / "file:decoy.qxfbproj");
    EXPECT_EQ(descriptionOf(test::raisedError([&] { loadProject("file:decoy.qxfbproj"); })),
              "project file \"file:decoy.qxfbproj\": not found");
}

TEST_F(ProjectFileTest, ABlockLargerThanAnyImageIsDamageAndIsNotRead) {
    saveProject(path, sampleProject());
    runSql(file, "UPDATE operations SET binary_operands = zeroblob(17 * 1024 * 1024) WHERE method_id = 170105;");
    sqlite3_memory_highwater(1);
    const RuntimeError e = test::raisedError([&] { loadProject(path); });
    EXPECT_EQ(e.Number(), err::InvalidFileFormat);
    EXPECT_EQ(descriptionOf(e),
              "project file \"" + path + "\": is damaged (a value is larger than any project holds (16777216 bytes))");
    EXPECT_LT(sqlite3_memory_highwater(0), 8 * 1024 * 1024);
    // And a project holding one is not saved.
    Project large = sampleProject();
    large.Instances[0].Data.assign(16 * 1024 * 1024 + 1, 0);
    const fs::path other = folder.path() / "large.qxfbproj";
    EXPECT_EQ(descriptionOf(test::raisedError([&] { saveProject(other.string(), large); })),
              "project file \"" + other.string() +
                  "\": cannot be saved: a block of 16777217 bytes is larger than any image can be");
    EXPECT_FALSE(fs::exists(other));
}

TEST_F(ProjectFileTest, LoadingHoldsNoMoreThanAFewBlocksInSqlitesMemory) {
    // 200 operations of 64 KiB: a sort of the rows with their blocks would
    // hold all 12.5 MiB at once.
    Project project;
    project.Nets.resize(4);
    for (int i = 0; i < 200; ++i) {
        StoredOperation operation;
        operation.MethodID = 170103;
        operation.BinaryOperands.assign(64 * 1024, static_cast<uint8_t>(i));
        project.Nets[static_cast<size_t>(i % 4)].Operations.push_back(std::move(operation));
    }
    saveProject(path, project);
    // The rows stored backwards: the order of the nets comes from positions.
    runSql(file, "UPDATE operations SET id = -id; UPDATE operations SET id = 1000 + id;");
    sqlite3_memory_highwater(1);
    const int64_t before = sqlite3_memory_used();
    const Project loaded = loadProject(path);
    EXPECT_LT(sqlite3_memory_highwater(0) - before, 4 * 1024 * 1024);
    EXPECT_EQ(loaded, project);
}

TEST_F(ProjectFileTest, InstancesStoredOutOfKeyOrderLoadInKeyOrder) {
    Project project = sampleProject();
    std::reverse(project.Instances.begin(), project.Instances.end());
    saveProject(path, project);
    const Project loaded = loadProject(path);
    ASSERT_EQ(loaded.Instances.size(), 3u);
    EXPECT_EQ(loaded.Instances[0].FatherID, 170100);
    EXPECT_EQ(loaded.Instances[0].InstanceNum, 1);
    EXPECT_EQ(loaded.Instances[1].InstanceNum, 3);
    EXPECT_EQ(loaded.Instances[2].FatherID, 170200);
}

TEST_F(ProjectFileTest, AFolderNamedLikeTheJournalIsNamedAsTheCause) {
    saveProject(path, sampleProject());
    fs::create_directory(path + "-journal");
    const RuntimeError e = test::raisedError([&] { saveProject(path, Project{}); });
    EXPECT_EQ(e.Number(), err::PathFileAccessError);
    EXPECT_EQ(descriptionOf(e), "project file \"" + path + "\": cannot be saved: its journal \"" + path +
                                    "-journal\" cannot be made, something that is no file has its name");
    fs::remove(path + "-journal");
    EXPECT_EQ(loadProject(path), sampleProject());
}

// The answer of a child, or a skip when the child could not set itself up.
#define QXFB_CHILD_ANSWER(answer, call)             \
    const std::string answer = test::inChild(call); \
    if (answer.rfind(test::ChildCannot, 0) == 0) GTEST_SKIP() << answer;

TEST_F(ProjectFileTest, ASaveIntoAFolderThatCannotBeWrittenSaysSo) {
    saveProject(path, sampleProject());
    fs::permissions(file, fs::perms::all);
    // Read-only for its owner too, for a run that is not root's.
    const test::ReadOnlyFolder readOnly(folder.path());
    QXFB_CHILD_ANSWER(answer, [&] {
        if (std::string cannot = test::becomeNobody(); !cannot.empty()) return cannot;
        saveProject(path, Project{});
        return std::string("saved");
    });
    EXPECT_EQ(answer, "RuntimeError 70: project file \"" + path + "\": cannot be saved: its folder \"" +
                          folder.path().string() +
                          "\" cannot be written (Permission denied), and a save makes its "
                          "journal \"" +
                          path + "-journal\" there");
    const std::string fresh = (folder.path() / "new.qxfbproj").string();
    QXFB_CHILD_ANSWER(created, [&] {
        if (std::string cannot = test::becomeNobody(); !cannot.empty()) return cannot;
        saveProject(fresh, Project{});
        return std::string("saved");
    });
    EXPECT_EQ(created, "RuntimeError 70: project file \"" + fresh + "\": cannot be saved: its folder \"" +
                           folder.path().string() +
                           "\" cannot be written (Permission denied), and a save makes its "
                           "journal \"" +
                           fresh + "-journal\" there");
    EXPECT_EQ(loadProject(path), sampleProject());
}

TEST_F(ProjectFileTest, ASaveOnAReadOnlyFileSystemSaysSo) {
    const fs::path mount = folder.path() / "mnt";
    fs::create_directory(mount);
    const std::string inside = (mount / "p.qxfbproj").string();
    QXFB_CHILD_ANSWER(answer, [&] {
        if (std::string cannot = test::mountPrivateTmpfs(mount.string(), 0, "size=1m"); !cannot.empty()) return cannot;
        saveProject(inside, sampleProject());
        if (std::string cannot = test::remountReadOnly(mount.string()); !cannot.empty()) return cannot;
        const std::string loaded = loadProject(inside) == sampleProject() ? "loads; " : "does not load; ";
        try {
            saveProject(inside, Project{});
        } catch (const RuntimeError& e) {
            return loaded + toUtf8(e.Description());
        }
        return loaded + "saved";
    });
    EXPECT_EQ(answer, "loads; project file \"" + inside + "\": cannot be written: the file system of its folder \"" +
                          mount.string() + "\" is read-only (Read-only file system)");
}

TEST_F(ProjectFileTest, NoRoomForTheJournalSaysSoAndNamesIt) {
    const fs::path mount = folder.path() / "mnt";
    fs::create_directory(mount);
    const std::string inside = (mount / "p.qxfbproj").string();
    QXFB_CHILD_ANSWER(answer, [&] {
        // Room for the folder and the project file, and no inode for a journal.
        if (std::string cannot = test::mountPrivateTmpfs(mount.string(), 0, "size=1m,nr_inodes=2"); !cannot.empty())
            return cannot;
        try {
            saveProject(inside, sampleProject());
        } catch (const RuntimeError& e) {
            return "RuntimeError " + std::to_string(e.Number()) + ": " + toUtf8(e.Description());
        }
        return std::string("saved");
    });
    EXPECT_EQ(answer, "RuntimeError 61: project file \"" + inside +
                          "\": cannot be saved: no room on the disk for the file or its journal \"" + inside +
                          "-journal\" (No space left on device)");
}

TEST_F(ProjectFileTest, AWalProjectInAFolderThatCannotBeWrittenSaysWhy) {
    saveProject(path, sampleProject());
    runSql(file, "PRAGMA journal_mode = WAL;");
    ASSERT_FALSE(fs::exists(path + "-wal"));
    const test::ReadOnlyFolder readOnly(folder.path());
    QXFB_CHILD_ANSWER(answer, [&] {
        if (std::string cannot = test::becomeNobody(); !cannot.empty()) return cannot;
        loadProject(path);
        return std::string("loaded");
    });
    EXPECT_EQ(answer, "RuntimeError 70: project file \"" + path +
                          "\": cannot be read without write access to its "
                          "folder \"" +
                          folder.path().string() +
                          "\": it is in WAL mode, and a reader of such a file "
                          "makes \"" +
                          path + "-wal\" and \"" + path + "-shm\" beside it (Permission denied)");
}

}  // namespace
}  // namespace qx
