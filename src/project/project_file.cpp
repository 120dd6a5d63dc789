#include "project/project_file.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <map>
#include <tuple>

#include "platform/basics/ansi.h"

namespace qx {

namespace {

// How long a load or save waits for another program's lock before it says so.
constexpr int LockWaitMilliseconds = 100;

[[noreturn]] void fail(int32_t number, const std::string& path, const std::string& cause) {
    throw RuntimeError(number, L"QxFBCom2 project file", fromUtf8("project file \"" + path + "\": " + cause));
}

[[noreturn]] void damaged(const std::string& path, const std::string& what) {
    fail(err::InvalidFileFormat, path, "is damaged (" + what + ")");
}

// The error for an SQLite result code, in the words a user needs.
[[noreturn]] void failWithSqlite(const std::string& path, int code, const char* detail) {
    const std::string why = detail && *detail ? detail : sqlite3_errstr(code);
    switch (code & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            fail(err::PermissionDenied, path, "is locked by another program");
        case SQLITE_NOTADB:
            fail(err::InvalidFileFormat, path, "is not a project file (not an SQLite database)");
        case SQLITE_CORRUPT:
            damaged(path, why);
        case SQLITE_READONLY:
            if (code == SQLITE_READONLY_ROLLBACK)
                fail(err::PermissionDenied, path,
                     "cannot be opened: a save was cut short, and its journal cannot be applied without write access");
            [[fallthrough]];
        case SQLITE_PERM:
        case SQLITE_AUTH:
            fail(err::PermissionDenied, path, "cannot be written (" + why + ")");
        case SQLITE_FULL:
            fail(err::DiskFull, path, "cannot be written: the disk is full");
        case SQLITE_IOERR:
            fail(err::DeviceIOError, path, "cannot be read or written (" + why + ")");
        case SQLITE_CANTOPEN:
            fail(err::PathFileAccessError, path, "cannot be opened (" + why + ")");
        case SQLITE_NOMEM:
            fail(err::OutOfMemory, path, "cannot be read or written: out of memory");
        case SQLITE_TOOBIG:
            fail(err::Overflow, path, "cannot be written: a block is too large");
        case SQLITE_CONSTRAINT:
            fail(err::InvalidProcedureCall, path, "cannot be saved: the project holds a key twice (" + why + ")");
        case SQLITE_ERROR:
            // A statement of our schema that fails on a file of ours: a table
            // or column is missing or of another shape.
            damaged(path, why);
        default:
            fail(err::PathFileAccessError, path, why);
    }
}

class Database;

// One prepared statement; every column read checks the value's type and
// range, so that no content of the file can become a wrong value unnoticed.
class Statement {
public:
    Statement(Database& db, const char* sql);
    ~Statement() { sqlite3_finalize(statement_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& bind(int index, int64_t value) {
        check(sqlite3_bind_int64(statement_, index, value));
        return *this;
    }
    Statement& bind(int index, const std::wstring& value) {
        const std::string text = toUtf8(value);
        check(sqlite3_bind_text(statement_, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT));
        return *this;
    }
    Statement& bind(int index, const Bytes& value) {
        if (value.size() > static_cast<size_t>(std::numeric_limits<int>::max()))
            fail(err::Overflow, path(), "a block is too large");
        // An empty block stays a block: a null pointer would store NULL.
        check(value.empty() ? sqlite3_bind_zeroblob(statement_, index, 0)
                            : sqlite3_bind_blob(statement_, index, value.data(), static_cast<int>(value.size()),
                                                SQLITE_TRANSIENT));
        return *this;
    }
    // One more row; false at the end.
    bool step() {
        const int code = sqlite3_step(statement_);
        if (code == SQLITE_ROW) return true;
        if (code == SQLITE_DONE) return false;
        check(code);
        return false;
    }
    // Runs a statement that gives no rows, then makes it ready for the next binds.
    void run() {
        step();
        sqlite3_reset(statement_);
    }

    int64_t integer(int column, int64_t min, int64_t max) {
        expectType(column, SQLITE_INTEGER, "integer");
        const int64_t value = sqlite3_column_int64(statement_, column);
        if (value < min || value > max) damaged(path(), "a value of " + columnName(column) + " is out of range");
        return value;
    }
    int64_t i64(int column) {
        return integer(column, std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::max());
    }
    int32_t i32(int column) {
        return static_cast<int32_t>(
            integer(column, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
    }
    bool boolean(int column) { return integer(column, 0, 1) != 0; }
    std::wstring text(int column) {
        expectType(column, SQLITE_TEXT, "text");
        const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
        return fromUtf8(std::string(data ? data : "", static_cast<size_t>(sqlite3_column_bytes(statement_, column))));
    }
    Bytes blob(int column) {
        expectType(column, SQLITE_BLOB, "block of bytes");
        const auto* data = static_cast<const uint8_t*>(sqlite3_column_blob(statement_, column));
        const int size = sqlite3_column_bytes(statement_, column);
        return data && size > 0 ? Bytes(data, data + size) : Bytes{};
    }

private:
    const std::string& path() const;
    void check(int code);
    void expectType(int column, int type, const char* what) {
        if (sqlite3_column_type(statement_, column) != type) damaged(path(), columnName(column) + " holds no " + what);
    }
    std::string columnName(int column) {
        const char* name = sqlite3_column_name(statement_, column);
        return name ? name : "a column";
    }

    Database& db_;
    sqlite3_stmt* statement_ = nullptr;
};

class Database {
public:
    Database(const std::string& path, int flags) : path_(path) {
        const int code = sqlite3_open_v2(path.c_str(), &db_, flags | SQLITE_OPEN_NOFOLLOW, nullptr);
        if (code != SQLITE_OK) {
            // A failed open still gives a handle, which only a close frees.
            const std::string detail = db_ ? sqlite3_errmsg(db_) : "";
            const int systemError = db_ ? sqlite3_system_errno(db_) : 0;
            sqlite3_close_v2(db_);
            if ((code & 0xFF) == SQLITE_CANTOPEN && systemError == EACCES)
                fail(err::PermissionDenied, path_, "cannot be opened: permission denied");
            failWithSqlite(path_, code, detail.c_str());
        }
        sqlite3_extended_result_codes(db_, 1);
        sqlite3_busy_timeout(db_, LockWaitMilliseconds);
        // The file is not trusted: no writing to the schema, no functions
        // with side effects from it.
        sqlite3_db_config(db_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
        sqlite3_db_config(db_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    }
    ~Database() { sqlite3_close_v2(db_); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void exec(const char* sql) {
        char* message = nullptr;
        const int code = sqlite3_exec(db_, sql, nullptr, nullptr, &message);
        if (code != SQLITE_OK) {
            const std::string detail = message ? message : "";
            sqlite3_free(message);
            failWithSqlite(path_, code, detail.c_str());
        }
    }
    int32_t pragma(const char* name) {
        Statement statement(*this, (std::string("PRAGMA ") + name).c_str());
        if (!statement.step()) damaged(path_, std::string("no ") + name);
        return statement.i32(0);
    }
    int64_t count(const char* sql) {
        Statement statement(*this, sql);
        return statement.step() ? statement.integer(0, 0, std::numeric_limits<int64_t>::max()) : 0;
    }
    const std::string& path() const { return path_; }
    sqlite3* handle() { return db_; }

private:
    std::string path_;
    sqlite3* db_ = nullptr;
};

Statement::Statement(Database& db, const char* sql) : db_(db) {
    check(sqlite3_prepare_v2(db.handle(), sql, -1, &statement_, nullptr));
}
const std::string& Statement::path() const { return db_.path(); }
void Statement::check(int code) {
    if (code != SQLITE_OK && code != SQLITE_ROW && code != SQLITE_DONE)
        failWithSqlite(db_.path(), code, sqlite3_errmsg(db_.handle()));
}

// Version 1 of the schema. Positions keep the order of nets, operations,
// operands and list entries; STRICT keeps every column's type honest.
constexpr const char* SchemaSql = R"sql(
CREATE TABLE settings(name TEXT PRIMARY KEY, value ANY NOT NULL) STRICT;
CREATE TABLE nets(id INTEGER PRIMARY KEY, position INTEGER NOT NULL, comment TEXT NOT NULL) STRICT;
CREATE TABLE operations(
  id INTEGER PRIMARY KEY, net_id INTEGER NOT NULL REFERENCES nets(id), position INTEGER NOT NULL,
  method_id INTEGER NOT NULL, hex_file_version INTEGER NOT NULL, father_instance_num INTEGER NOT NULL,
  is_conducting INTEGER NOT NULL, binary_operands BLOB NOT NULL) STRICT;
CREATE TABLE operands(
  id INTEGER PRIMARY KEY, operation_id INTEGER NOT NULL REFERENCES operations(id), side INTEGER NOT NULL,
  position INTEGER NOT NULL, key TEXT NOT NULL, caption TEXT NOT NULL, title TEXT NOT NULL,
  description TEXT NOT NULL, is_new INTEGER NOT NULL, mode INTEGER NOT NULL, type INTEGER NOT NULL,
  net_id INTEGER NOT NULL, address INTEGER NOT NULL, has_value INTEGER NOT NULL,
  constant_value INTEGER NOT NULL, format INTEGER NOT NULL, constant_list_mode INTEGER NOT NULL,
  constant_list_only INTEGER NOT NULL, vector_length INTEGER NOT NULL) STRICT;
CREATE TABLE allowed_types(
  operand_id INTEGER NOT NULL REFERENCES operands(id), position INTEGER NOT NULL,
  mode INTEGER NOT NULL, type INTEGER NOT NULL, allowed INTEGER NOT NULL) STRICT;
CREATE TABLE constant_lists(
  operand_id INTEGER NOT NULL REFERENCES operands(id), position INTEGER NOT NULL,
  value INTEGER NOT NULL, text TEXT NOT NULL) STRICT;
CREATE TABLE instances(
  father_id INTEGER NOT NULL, instance_num INTEGER NOT NULL, name TEXT NOT NULL, data BLOB NOT NULL,
  PRIMARY KEY(father_id, instance_num)) STRICT;
CREATE TABLE constants(address INTEGER PRIMARY KEY, type INTEGER NOT NULL, value INTEGER NOT NULL) STRICT;
CREATE TABLE links(
  type INTEGER NOT NULL, address INTEGER NOT NULL, mode INTEGER NOT NULL, format INTEGER NOT NULL,
  count INTEGER NOT NULL, PRIMARY KEY(type, address)) STRICT;
)sql";

constexpr const char* ClearSql =
    "DELETE FROM constant_lists; DELETE FROM allowed_types; DELETE FROM operands; DELETE FROM operations;"
    "DELETE FROM nets; DELETE FROM instances; DELETE FROM constants; DELETE FROM links; DELETE FROM settings;";

// The tables of the schema, and nothing else may be in the file.
constexpr const wchar_t* SchemaTables[] = {L"settings",  L"nets",          L"operations",
                                           L"operands",  L"allowed_types", L"constant_lists",
                                           L"instances", L"constants",     L"links"};

enum class FileKind { Empty, Project };

// What the database is: an empty one (a new file), or a project of a schema
// this program reads. Anything else is refused.
FileKind kindOf(Database& db) {
    const int32_t application = db.pragma("application_id");
    const int32_t schema = db.pragma("user_version");
    if (application != project_file::ApplicationId) {
        if (application == 0 && schema == 0 && db.count("SELECT count(*) FROM sqlite_schema") == 0)
            return FileKind::Empty;
        fail(err::InvalidFileFormat, db.path(), "is an SQLite database of another program, not a project file");
    }
    if (schema > project_file::SchemaVersion)
        fail(err::InvalidFileFormat, db.path(),
             "was written by a newer version of the program (project schema " + std::to_string(schema) +
                 "; this one reads schema " + std::to_string(project_file::SchemaVersion) + " and older)");
    if (schema < 1) damaged(db.path(), "no schema version");
    // Only the tables of the schema and their own indexes: a view or a
    // trigger put in a table's place would run code of the file's choosing.
    Statement objects(db, "SELECT type, name FROM sqlite_schema");
    while (objects.step()) {
        const std::wstring type = objects.text(0);
        const std::wstring name = objects.text(1);
        const bool known = (type == L"table" && std::find(std::begin(SchemaTables), std::end(SchemaTables), name) !=
                                                    std::end(SchemaTables)) ||
                           (type == L"index" && name.starts_with(L"sqlite_autoindex_"));
        if (!known) damaged(db.path(), "the " + toUtf8(type) + " " + toUtf8(name) + " is not of a project");
    }
    // The reader's queries may take their values from an index rather than
    // the table, so a damaged index would give wrong values that no type
    // or range check sees: the whole file is checked first.
    Statement check(db, "PRAGMA integrity_check(1)");
    if (!check.step()) damaged(db.path(), "its integrity check gave no answer");
    if (const std::wstring verdict = check.text(0); verdict != L"ok") damaged(db.path(), toUtf8(verdict));
    return FileKind::Project;
}

// The file must be a regular file; missing is an error when it must exist.
// A symbolic link is refused by name: SQLite keeps its journal beside the
// name it opened, which for a link is not beside the file.
bool existsAsRegularFile(const std::string& path, bool mustExist) {
    if (path.empty()) fail(err::FileNotFound, path, "no file named");
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
        if (errno == ENOENT && !mustExist) return false;
        if (errno == ENOENT || errno == ENOTDIR) fail(err::FileNotFound, path, "not found");
        fail(err::PathFileAccessError, path, std::strerror(errno));
    }
    if (S_ISLNK(info.st_mode)) fail(err::PathFileAccessError, path, "is a symbolic link; name the file it points to");
    if (!S_ISREG(info.st_mode)) fail(err::PathFileAccessError, path, "is not a regular file");
    return true;
}

// The identity of the file at path now, to remove only the file a save made.
std::pair<dev_t, ino_t> identityOf(const std::string& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) return {0, 0};
    return {info.st_dev, info.st_ino};
}

StoredOperand readOperand(Statement& row) {
    StoredOperand operand;
    operand.Key = row.text(3);
    operand.Caption = row.text(4);
    operand.Title = row.text(5);
    operand.Description = row.text(6);
    operand.IsNew = row.boolean(7);
    operand.Mode = row.i32(8);
    operand.Type = row.i32(9);
    operand.NetID = row.i32(10);
    operand.Address = row.i32(11);
    operand.HasValue = row.boolean(12);
    operand.ConstantValue = row.i64(13);
    operand.Format = row.i32(14);
    operand.ConstantListMode = row.i32(15);
    operand.ConstantListOnly = row.boolean(16);
    operand.VectorLength = row.i32(17);
    return operand;
}

Project readProject(Database& db) {
    Project project;
    {
        Statement settings(db, "SELECT name, value FROM settings");
        while (settings.step()) {
            const std::wstring name = settings.text(0);
            if (name == L"ExtendedOperands")
                project.Settings.ExtendedOperands = settings.boolean(1);
            else if (name == L"AppFolder")
                project.Settings.AppFolder = settings.text(1);
            else if (name == L"NextConstantAddress")
                project.NextConstantAddress = settings.i32(1);
            // A setting this program does not know is left alone.
        }
    }
    std::map<int64_t, size_t> netOf;
    {
        Statement nets(db, "SELECT id, comment FROM nets ORDER BY position, id");
        while (nets.step()) {
            netOf[nets.i64(0)] = project.Nets.size();
            project.Nets.push_back(LadderNet{nets.text(1), {}});
        }
    }
    // A row names its parent by id; the parent is found again by the places
    // it took in the vectors, which stay right while the vectors grow.
    struct OperationAt {
        size_t net, operation;
    };
    struct OperandAt {
        OperationAt operation;
        bool out;
        size_t operand;
    };
    const auto operationAt = [&project](const OperationAt& at) -> StoredOperation& {
        return project.Nets[at.net].Operations[at.operation];
    };
    const auto sideOf = [&](const OperationAt& at, bool out) -> std::vector<StoredOperand>& {
        return out ? operationAt(at).OutOperands : operationAt(at).InOperands;
    };
    std::map<int64_t, OperationAt> operationOf;
    {
        Statement operations(db,
                             "SELECT id, net_id, method_id, hex_file_version, father_instance_num, is_conducting,"
                             " binary_operands FROM operations ORDER BY position, id");
        while (operations.step()) {
            const auto found = netOf.find(operations.i64(1));
            if (found == netOf.end()) damaged(db.path(), "an operation belongs to no net");
            StoredOperation operation;
            operation.MethodID = operations.i32(2);
            operation.HexFileVersion = operations.i32(3);
            operation.FatherInstanceNum = operations.i32(4);
            operation.IsConducting = operations.boolean(5);
            operation.BinaryOperands = operations.blob(6);
            std::vector<StoredOperation>& net = project.Nets[found->second].Operations;
            net.push_back(std::move(operation));
            operationOf[operations.i64(0)] = {found->second, net.size() - 1};
        }
    }
    std::map<int64_t, OperandAt> operandOf;
    {
        Statement operands(db,
                           "SELECT id, operation_id, side, key, caption, title, description, is_new, mode, type,"
                           " net_id, address, has_value, constant_value, format, constant_list_mode,"
                           " constant_list_only, vector_length FROM operands ORDER BY position, id");
        while (operands.step()) {
            const auto found = operationOf.find(operands.i64(1));
            if (found == operationOf.end()) damaged(db.path(), "an operand belongs to no operation");
            const bool out = operands.boolean(2);
            std::vector<StoredOperand>& side = sideOf(found->second, out);
            side.push_back(readOperand(operands));
            operandOf[operands.i64(0)] = {found->second, out, side.size() - 1};
        }
    }
    const auto operandOfRow = [&](Statement& row, const char* what) -> StoredOperand& {
        const auto found = operandOf.find(row.i64(0));
        if (found == operandOf.end()) damaged(db.path(), std::string(what) + " belongs to no operand");
        return sideOf(found->second.operation, found->second.out)[found->second.operand];
    };
    {
        Statement allowed(db, "SELECT operand_id, mode, type, allowed FROM allowed_types ORDER BY position, rowid");
        while (allowed.step())
            operandOfRow(allowed, "an allowed type")
                .AllowedTypes.push_back({allowed.i32(1), allowed.i32(2), allowed.boolean(3)});
        Statement constants(db, "SELECT operand_id, value, text FROM constant_lists ORDER BY position, rowid");
        while (constants.step())
            operandOfRow(constants, "a constant list entry")
                .ConstantList.emplace_back(constants.i32(1), constants.text(2));
    }
    {
        Statement instances(
            db, "SELECT father_id, instance_num, name, data FROM instances ORDER BY father_id, instance_num");
        while (instances.step())
            project.Instances.push_back({instances.i32(0), instances.i32(1), instances.text(2), instances.blob(3)});
        Statement constants(db, "SELECT address, type, value FROM constants ORDER BY address");
        while (constants.step()) project.Constants.push_back({constants.i32(0), constants.i32(1), constants.i64(2)});
        // New constants take addresses from NextConstantAddress on: one at or
        // below a constant of the table would overwrite it.
        for (const StoredConstant& constant : project.Constants)
            if (constant.Address >= project.NextConstantAddress)
                damaged(db.path(), "the next constant address is in use");
        Statement links(db, "SELECT type, address, mode, format, count FROM links ORDER BY type, address");
        while (links.step())
            project.Links.push_back({links.i32(0), links.i32(1), links.i32(2), links.i32(3), links.i32(4)});
    }
    return project;
}

void writeOperands(Database& db, Statement& insert, Statement& allowed, Statement& constants, int64_t operation,
                   const std::vector<StoredOperand>& operands, bool out) {
    int64_t position = 0;
    for (const StoredOperand& operand : operands) {
        insert.bind(1, operation).bind(2, int64_t{out}).bind(3, position++).bind(4, operand.Key);
        insert.bind(5, operand.Caption).bind(6, operand.Title).bind(7, operand.Description);
        insert.bind(8, int64_t{operand.IsNew}).bind(9, operand.Mode).bind(10, operand.Type);
        insert.bind(11, operand.NetID).bind(12, operand.Address).bind(13, int64_t{operand.HasValue});
        insert.bind(14, operand.ConstantValue).bind(15, operand.Format).bind(16, operand.ConstantListMode);
        insert.bind(17, int64_t{operand.ConstantListOnly}).bind(18, operand.VectorLength);
        insert.run();
        const int64_t id = sqlite3_last_insert_rowid(db.handle());
        int64_t entry = 0;
        for (const AllowedType& type : operand.AllowedTypes) {
            allowed.bind(1, id).bind(2, entry++).bind(3, type.Mode).bind(4, type.OperandType);
            allowed.bind(5, int64_t{type.Allowed}).run();
        }
        entry = 0;
        for (const auto& [value, text] : operand.ConstantList)
            constants.bind(1, id).bind(2, entry++).bind(3, value).bind(4, text).run();
    }
}

void writeProject(Database& db, const Project& project) {
    {
        Statement setting(db, "INSERT INTO settings(name, value) VALUES(?, ?)");
        setting.bind(1, std::wstring(L"ExtendedOperands")).bind(2, int64_t{project.Settings.ExtendedOperands}).run();
        setting.bind(1, std::wstring(L"AppFolder")).bind(2, project.Settings.AppFolder).run();
        setting.bind(1, std::wstring(L"NextConstantAddress")).bind(2, project.NextConstantAddress).run();
    }
    Statement net(db, "INSERT INTO nets(position, comment) VALUES(?, ?)");
    Statement operation(db,
                        "INSERT INTO operations(net_id, position, method_id, hex_file_version, father_instance_num,"
                        " is_conducting, binary_operands) VALUES(?, ?, ?, ?, ?, ?, ?)");
    Statement operand(
        db,
        "INSERT INTO operands(operation_id, side, position, key, caption, title, description, is_new,"
        " mode, type, net_id, address, has_value, constant_value, format, constant_list_mode,"
        " constant_list_only, vector_length) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    Statement allowed(db, "INSERT INTO allowed_types(operand_id, position, mode, type, allowed) VALUES(?, ?, ?, ?, ?)");
    Statement constantList(db, "INSERT INTO constant_lists(operand_id, position, value, text) VALUES(?, ?, ?, ?)");
    int64_t netPosition = 0;
    for (const LadderNet& ladderNet : project.Nets) {
        net.bind(1, netPosition++).bind(2, ladderNet.Comment).run();
        const int64_t netId = sqlite3_last_insert_rowid(db.handle());
        int64_t position = 0;
        for (const StoredOperation& stored : ladderNet.Operations) {
            operation.bind(1, netId).bind(2, position++).bind(3, stored.MethodID).bind(4, stored.HexFileVersion);
            operation.bind(5, stored.FatherInstanceNum).bind(6, int64_t{stored.IsConducting});
            operation.bind(7, stored.BinaryOperands).run();
            const int64_t operationId = sqlite3_last_insert_rowid(db.handle());
            writeOperands(db, operand, allowed, constantList, operationId, stored.InOperands, false);
            writeOperands(db, operand, allowed, constantList, operationId, stored.OutOperands, true);
        }
    }
    Statement instance(db, "INSERT INTO instances(father_id, instance_num, name, data) VALUES(?, ?, ?, ?)");
    for (const StoredInstance& stored : project.Instances)
        instance.bind(1, stored.FatherID).bind(2, stored.InstanceNum).bind(3, stored.Name).bind(4, stored.Data).run();
    Statement constant(db, "INSERT INTO constants(address, type, value) VALUES(?, ?, ?)");
    for (const StoredConstant& stored : project.Constants)
        constant.bind(1, stored.Address).bind(2, stored.Type).bind(3, stored.Value).run();
    Statement link(db, "INSERT INTO links(type, address, mode, format, count) VALUES(?, ?, ?, ?, ?)");
    for (const StoredLink& stored : project.Links)
        link.bind(1, stored.Type)
            .bind(2, stored.Address)
            .bind(3, stored.Mode)
            .bind(4, stored.Format)
            .bind(5, stored.Count)
            .run();
}

}  // namespace

Project loadProject(const std::string& path) {
    existsAsRegularFile(path, true);
    // Opened for writing, so that the journal of a save that was cut short
    // is applied; a file no one may write opens read-only all the same.
    Database db(path, SQLITE_OPEN_READWRITE);
    // One read transaction: the whole project as one moment of the file.
    db.exec("BEGIN");
    if (kindOf(db) != FileKind::Project) fail(err::InvalidFileFormat, path, "is empty, not a project file");
    Project project = readProject(db);
    db.exec("COMMIT");
    return project;
}

void saveProject(const std::string& path, const Project& project) {
    const bool existed = existsAsRegularFile(path, false);
    std::pair<dev_t, ino_t> made{0, 0};
    try {
        Database db(path, SQLITE_OPEN_READWRITE | (existed ? 0 : SQLITE_OPEN_CREATE));
        if (!existed) made = identityOf(path);
        // The write lock first, then the look at what the file is: nobody
        // can change it in between.
        db.exec("BEGIN IMMEDIATE");
        try {
            if (kindOf(db) == FileKind::Empty) {
                db.exec(SchemaSql);
                db.exec(("PRAGMA application_id = " + std::to_string(project_file::ApplicationId)).c_str());
                db.exec(("PRAGMA user_version = " + std::to_string(project_file::SchemaVersion)).c_str());
            } else {
                db.exec(ClearSql);
            }
            writeProject(db, project);
            db.exec("COMMIT");
        } catch (...) {
            sqlite3_exec(db.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
            throw;
        }
    } catch (...) {
        // A file this save made and could not fill is not left behind, nor
        // its journal; a file someone else put there meanwhile stays.
        if (!existed && made.second != 0 && identityOf(path) == made) {
            ::unlink(path.c_str());
            ::unlink((path + "-journal").c_str());
        }
        throw;
    }
}

}  // namespace qx
