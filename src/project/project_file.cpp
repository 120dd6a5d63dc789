#include "project/project_file.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <map>
#include <set>
#include <tuple>

#include "platform/basics/ansi.h"
#include "project/operation_text_form.h"

namespace qx {

namespace {

// How long a load or save waits for another program's lock before it says so.
constexpr int LockWaitMilliseconds = 100;

// The largest block a project holds. An image of 255 messages of 500
// positions stays well below a megabyte; anything past this bound is damage,
// refused before it is read, so that a file cannot make the reader allocate
// what it likes.
constexpr int64_t MaxBlockBytes = 16 * 1024 * 1024;
// Room beside the largest block for the rest of its row.
constexpr int64_t MaxRowOverhead = 64 * 1024;

// The name SQLite gets for a path: never a URI, never ":memory:". A
// relative name starts with "./", so that "file:x" is the file of that name.
std::string sqliteName(const std::string& path) { return path.starts_with('/') ? path : "./" + path; }

// The folder of a path, for messages about the folder and its journal.
std::string folderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

[[noreturn]] void fail(int32_t number, const std::string& path, const std::string& cause) {
    throw RuntimeError(number, L"QxFBCom2 project file", fromUtf8("project file \"" + path + "\": " + cause));
}

[[noreturn]] void damaged(const std::string& path, const std::string& what) {
    fail(err::InvalidFileFormat, path, "is damaged (" + what + ")");
}

[[noreturn]] void notOurs(const std::string& path, const std::string& what) {
    fail(err::InvalidFileFormat, path, "is not a project file of this program (" + what + ")");
}

// Why a write of the file or of its journal beside it failed, found out
// from the file system, since SQLite's own words ("unable to open database
// file", "disk I/O error") do not say which file or why.
[[noreturn]] void failToWrite(const std::string& path, int systemError, const std::string& why) {
    const std::string folder = folderOf(path), journal = path + "-journal";
    struct stat info {};
    if (::lstat(journal.c_str(), &info) == 0 && !S_ISREG(info.st_mode))
        fail(err::PathFileAccessError, path,
             "cannot be saved: its journal \"" + journal + "\" cannot be made, something that is no file has its name");
    struct statvfs volume {};
    if (systemError == EROFS || (::statvfs(folder.c_str(), &volume) == 0 && (volume.f_flag & ST_RDONLY)))
        fail(err::PermissionDenied, path,
             "cannot be written: the file system of its folder \"" + folder + "\" is read-only (" +
                 std::strerror(EROFS) + ")");
    if (::access(folder.c_str(), F_OK) != 0)
        fail(err::PathFileAccessError, path,
             "cannot be saved: its folder \"" + folder + "\" cannot be reached (" + std::strerror(errno) + ")");
    if (::access(path.c_str(), F_OK) == 0 && ::access(path.c_str(), W_OK) != 0)
        fail(err::PermissionDenied, path,
             "cannot be written: the file is read-only (" + std::string(std::strerror(errno)) + ")");
    if (::access(folder.c_str(), W_OK) != 0)
        fail(err::PermissionDenied, path,
             "cannot be saved: its folder \"" + folder + "\" cannot be written (" + std::strerror(errno) +
                 "), and a save makes its journal \"" + journal + "\" there");
    // SQLite's errno may be of a later call than the one that failed; making
    // the journal here tells what the file system says to it.
    if (const int probe = ::open(journal.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
        probe >= 0) {
        ::close(probe);
        ::unlink(journal.c_str());
    } else if (errno != EEXIST) {
        systemError = errno;
    }
    switch (systemError) {
        case 0:
            break;
        case ENOSPC:
        case EDQUOT:
            fail(err::DiskFull, path,
                 "cannot be saved: no room on the disk for the file or its journal \"" + journal + "\" (" +
                     std::strerror(systemError) + ")");
        case EIO:
            fail(err::DeviceIOError, path,
                 "cannot be read or written: the device failed (" + std::string(std::strerror(systemError)) + ")");
        case EACCES:
        case EPERM:
            fail(err::PermissionDenied, path,
                 "cannot be written, nor its journal \"" + journal + "\" (" + std::strerror(systemError) + ")");
        default:
            fail(err::PathFileAccessError, path,
                 "cannot be read or written (" + std::string(std::strerror(systemError)) + "; " + why + ")");
    }
    fail(err::PathFileAccessError, path, "cannot be written (" + why + ")");
}

// The error for an SQLite result code, in the words a user needs; the
// system's errno of the failing call, where there is one, says the cause.
[[noreturn]] void failWithSqlite(const std::string& path, int code, const char* detail, int systemError = 0,
                                 bool wal = false) {
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
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
        case SQLITE_AUTH:
        case SQLITE_IOERR:
        case SQLITE_FULL:
            if (wal && ::access(folderOf(path).c_str(), W_OK) != 0)
                fail(err::PermissionDenied, path,
                     "cannot be read without write access to its folder \"" + folderOf(path) +
                         "\": it is in WAL mode, and a reader of such a file makes \"" + path + "-wal\" and \"" + path +
                         "-shm\" beside it (" + std::strerror(errno) + ")");
            failToWrite(path, systemError, why);
        case SQLITE_NOMEM:
            fail(err::OutOfMemory, path, "cannot be read or written: out of memory");
        case SQLITE_TOOBIG:
            // Every block and text is bound to MaxBlockBytes (see bind for a save).
            damaged(path, "a value is larger than any project holds (" + std::to_string(MaxBlockBytes) + " bytes)");
        case SQLITE_CONSTRAINT:
            if (code == SQLITE_CONSTRAINT_PRIMARYKEY || code == SQLITE_CONSTRAINT_UNIQUE)
                fail(err::InvalidProcedureCall, path, "cannot be saved: the project holds a key twice (" + why + ")");
            fail(err::InvalidProcedureCall, path, "cannot be saved: a value breaks a rule of the file (" + why + ")");
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
        if (value.size() > static_cast<size_t>(MaxBlockBytes))
            fail(err::Overflow, path(),
                 "cannot be saved: a block of " + std::to_string(value.size()) +
                     " bytes is larger than any image can be");
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
    bool isNull(int column) { return sqlite3_column_type(statement_, column) == SQLITE_NULL; }
    std::wstring text(int column) {
        expectType(column, SQLITE_TEXT, "text");
        const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
        return fromUtf8(std::string(data ? data : "", static_cast<size_t>(sqlite3_column_bytes(statement_, column))));
    }
    Bytes blob(int column) {
        expectType(column, SQLITE_BLOB, "block of bytes");
        const auto* data = static_cast<const uint8_t*>(sqlite3_column_blob(statement_, column));
        const int size = sqlite3_column_bytes(statement_, column);
        if (size > MaxBlockBytes)
            damaged(path(), "the block of " + columnName(column) + " is larger than any image can be");
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
    Database(const std::string& path, int flags, bool wal) : path_(path), wal_(wal) {
        const int code = sqlite3_open_v2(sqliteName(path).c_str(), &db_, flags | SQLITE_OPEN_NOFOLLOW, nullptr);
        if (code != SQLITE_OK) {
            // A failed open still gives a handle, which only a close frees.
            const std::string detail = db_ ? sqlite3_errmsg(db_) : "";
            const int systemError = db_ ? sqlite3_system_errno(db_) : 0;
            sqlite3_close_v2(db_);
            db_ = nullptr;
            if ((code & 0xFF) == SQLITE_CANTOPEN && systemError == EACCES && !(flags & SQLITE_OPEN_CREATE))
                fail(err::PermissionDenied, path_, "cannot be opened: permission denied");
            failWithSqlite(path_, code, detail.c_str(), systemError, wal_);
        }
        sqlite3_extended_result_codes(db_, 1);
        sqlite3_busy_timeout(db_, LockWaitMilliseconds);
        // No text or block larger than any project holds is ever read: SQLite
        // refuses it before it allocates it.
        sqlite3_limit(db_, SQLITE_LIMIT_LENGTH, static_cast<int>(MaxBlockBytes + MaxRowOverhead));
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
            failed(code, detail.c_str());
        }
    }
    [[noreturn]] void failed(int code, const char* detail) {
        failWithSqlite(path_, code, detail, sqlite3_system_errno(db_), wal_);
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
    bool wal_ = false;
    sqlite3* db_ = nullptr;
};

Statement::Statement(Database& db, const char* sql) : db_(db) {
    check(sqlite3_prepare_v2(db.handle(), sql, -1, &statement_, nullptr));
}
const std::string& Statement::path() const { return db_.path(); }
void Statement::check(int code) {
    if (code != SQLITE_OK && code != SQLITE_ROW && code != SQLITE_DONE) db_.failed(code, sqlite3_errmsg(db_.handle()));
}

// Version 1 of the schema. Positions keep the order of nets, operations,
// operands and list entries; STRICT keeps every column's type honest.
constexpr const char* SchemaV1Sql = R"sql(
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

// What version 2 adds to version 1.
constexpr const char* SchemaV2Sql = R"sql(
CREATE TABLE descriptions(
  net_id INTEGER NOT NULL, type INTEGER NOT NULL, address INTEGER NOT NULL, text TEXT NOT NULL,
  PRIMARY KEY(net_id, type, address)) STRICT;
)sql";

// What version 3 adds: the checksum table, and the text form of every
// operation that holds a message set, kept beside its image for a person
// who reads the file; the image stays what is loaded.
constexpr const char* SchemaV3Sql = R"sql(
CREATE TABLE checksums(
  code INTEGER PRIMARY KEY, name TEXT NOT NULL, rule INTEGER NOT NULL, width INTEGER NOT NULL,
  polynomial INTEGER NOT NULL, init INTEGER NOT NULL, reflect_in INTEGER NOT NULL, reflect_out INTEGER NOT NULL,
  xor_out INTEGER NOT NULL, check_value INTEGER NOT NULL, low_byte_first INTEGER NOT NULL) STRICT;
CREATE TABLE text_forms(operation_id INTEGER PRIMARY KEY REFERENCES operations(id), json TEXT NOT NULL) STRICT;
)sql";

constexpr const char* ClearSql =
    "DELETE FROM constant_lists; DELETE FROM allowed_types; DELETE FROM operands; DELETE FROM operations;"
    "DELETE FROM nets; DELETE FROM instances; DELETE FROM constants; DELETE FROM links; DELETE FROM settings;"
    "DELETE FROM descriptions; DELETE FROM checksums; DELETE FROM text_forms;";

// One object of a schema: type, name, its table, and its SQL (empty for the
// indexes SQLite makes for keys), normalised.
struct SchemaObject {
    std::string Type, Name, Table, Sql;
    auto operator<=>(const SchemaObject&) const = default;
};

// SQL as SQLite keeps it, with the differences that change nothing taken
// out: letter case, and white space, which goes where it may be left out.
std::string normalisedSql(const std::string& sql) {
    std::string out;
    bool space = false;
    for (const char c : sql) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v') {
            space = true;
            continue;
        }
        const bool tight = std::strchr("(),", c) != nullptr;
        if (space && !out.empty() && !tight && !std::strchr("(,", out.back())) out += ' ';
        space = false;
        out += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    }
    return out;
}

// The objects a schema version this program reads consists of, as SQLite
// itself records them: made once for each version in a database in memory.
std::vector<SchemaObject> makeSchema(int32_t version) {
    std::vector<SchemaObject> made;
    sqlite3* db = nullptr;
    sqlite3_stmt* query = nullptr;
    const bool ok =
        sqlite3_open_v2(":memory:", &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) == SQLITE_OK &&
        sqlite3_exec(db, SchemaV1Sql, nullptr, nullptr, nullptr) == SQLITE_OK &&
        (version < 2 || sqlite3_exec(db, SchemaV2Sql, nullptr, nullptr, nullptr) == SQLITE_OK) &&
        (version < 3 || sqlite3_exec(db, SchemaV3Sql, nullptr, nullptr, nullptr) == SQLITE_OK) &&
        sqlite3_prepare_v2(db, "SELECT type, name, tbl_name, sql FROM sqlite_schema", -1, &query, nullptr) == SQLITE_OK;
    while (ok && sqlite3_step(query) == SQLITE_ROW) {
        const auto column = [query](int i) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(query, i));
            return std::string(text ? text : "");
        };
        made.push_back({column(0), column(1), column(2), normalisedSql(column(3))});
    }
    sqlite3_finalize(query);
    sqlite3_close_v2(db);
    if (!ok || made.empty()) throw RuntimeError(err::OutOfMemory, L"QxFBCom2 project file", L"out of memory");
    std::sort(made.begin(), made.end());
    return made;
}

const std::vector<SchemaObject>& schemaOfThisProgram(int32_t version) {
    static const std::vector<SchemaObject> v1 = makeSchema(1);
    static const std::vector<SchemaObject> v2 = makeSchema(2);
    static const std::vector<SchemaObject> v3 = makeSchema(3);
    return version < 2 ? v1 : version < 3 ? v2 : v3;
}

// Every object of the file's schema must be one of this program's, word for
// word: a CHECK constraint, a default, an expression index, a view or a
// trigger would run expressions of the file's choosing, and a table of
// another shape (a key left out) would hold what no project holds. Only the
// text of the schema is read here, so this costs nothing however large the
// tables are.
void checkSchema(Database& db, int32_t version) {
    const std::vector<SchemaObject>& ours = schemaOfThisProgram(version);
    std::vector<SchemaObject> found;
    Statement objects(db, "SELECT type, name, tbl_name, sql FROM sqlite_schema");
    while (objects.step()) {
        SchemaObject object{toUtf8(objects.text(0)), toUtf8(objects.text(1)), toUtf8(objects.text(2)),
                            objects.isNull(3) ? "" : normalisedSql(toUtf8(objects.text(3)))};
        if (!std::binary_search(ours.begin(), ours.end(), object)) {
            const bool known = std::any_of(ours.begin(), ours.end(), [&](const SchemaObject& mine) {
                return mine.Type == object.Type && mine.Name == object.Name;
            });
            notOurs(db.path(), "the " + object.Type + " " + object.Name +
                                   (known ? " is not the one this program writes" : " is not of a project"));
        }
        found.push_back(std::move(object));
    }
    // A missing table is named rather than the index of its key.
    for (const bool tables : {true, false})
        for (const SchemaObject& mine : ours)
            if ((mine.Type == "table") == tables && std::find(found.begin(), found.end(), mine) == found.end())
                damaged(db.path(), "no such " + mine.Type + ": " + mine.Name);
}

// What the database is: an empty one (a new file, schema 0), or a project
// of a schema this program reads (its version). Anything else is refused.
int32_t schemaOf(Database& db) {
    const int32_t application = db.pragma("application_id");
    const int32_t schema = db.pragma("user_version");
    if (application != project_file::ApplicationId) {
        if (application == 0 && schema == 0 && db.count("SELECT count(*) FROM sqlite_schema") == 0) return 0;
        fail(err::InvalidFileFormat, db.path(), "is an SQLite database of another program, not a project file");
    }
    if (schema > project_file::SchemaVersion)
        fail(err::InvalidFileFormat, db.path(),
             "was written by a newer version of the program (project schema " + std::to_string(schema) +
                 "; this one reads schema " + std::to_string(project_file::SchemaVersion) + " and older)");
    if (schema < 1) damaged(db.path(), "no schema version");
    // First the schema's text, since the integrity check evaluates every
    // CHECK constraint and indexed expression for every row.
    checkSchema(db, schema);
    // The reader's queries may take their values from an index rather than
    // the table, so a damaged index would give wrong values that no type
    // or range check sees: the whole file is checked first.
    Statement check(db, "PRAGMA integrity_check(1)");
    if (!check.step()) damaged(db.path(), "its integrity check gave no answer");
    if (const std::wstring verdict = check.text(0); verdict != L"ok") damaged(db.path(), toUtf8(verdict));
    return schema;
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

// Whether the file is in WAL mode (its header's read and write versions are
// 2): a reader of such a file needs to write beside it.
bool isWalFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return false;
    unsigned char header[20] = {};
    const bool read = ::pread(fd, header, sizeof header, 0) == static_cast<ssize_t>(sizeof header);
    ::close(fd);
    return read && header[18] == 2 && header[19] == 2;
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

Project readProject(Database& db, int32_t schema) {
    Project project;
    {
        Statement settings(db, "SELECT name, value FROM settings");
        std::set<std::wstring> seen;
        while (settings.step()) {
            const std::wstring name = settings.text(0);
            if (!seen.insert(name).second) damaged(db.path(), "the setting " + toUtf8(name) + " is stored twice");
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
        int side;
        size_t operand;
    };
    const auto operationAt = [&project](const OperationAt& at) -> StoredOperation& {
        return project.Nets[at.net].Operations[at.operation];
    };
    // The operands of a side: 0 in, 1 out, 2 those of the image the host
    // lists for its search.
    const auto sideOf = [&](const OperationAt& at, int side) -> std::vector<StoredOperand>& {
        return side == 2   ? operationAt(at).FindOnly
               : side == 1 ? operationAt(at).OutOperands
                           : operationAt(at).InOperands;
    };
    // Operations and operands are read in the order of their table's own key,
    // which needs no sort: a sort would hold every row with its block at
    // once. Each list is put in order of position afterwards.
    std::map<int64_t, OperationAt> operationOf;
    {
        struct Placed {
            int64_t position, id;
            StoredOperation operation;
        };
        std::vector<std::vector<Placed>> placed(project.Nets.size());
        Statement operations(db,
                             "SELECT id, net_id, position, method_id, hex_file_version, father_instance_num,"
                             " is_conducting, binary_operands FROM operations ORDER BY id");
        while (operations.step()) {
            const auto found = netOf.find(operations.i64(1));
            if (found == netOf.end()) damaged(db.path(), "an operation belongs to no net");
            StoredOperation operation;
            operation.MethodID = operations.i32(3);
            operation.HexFileVersion = operations.i32(4);
            operation.FatherInstanceNum = operations.i32(5);
            operation.IsConducting = operations.boolean(6);
            operation.BinaryOperands = operations.blob(7);
            placed[found->second].push_back({operations.i64(2), operations.i64(0), std::move(operation)});
        }
        for (size_t net = 0; net < placed.size(); ++net) {
            std::sort(placed[net].begin(), placed[net].end(), [](const Placed& a, const Placed& b) {
                return std::tie(a.position, a.id) < std::tie(b.position, b.id);
            });
            std::vector<StoredOperation>& list = project.Nets[net].Operations;
            list.reserve(placed[net].size());
            for (Placed& one : placed[net]) {
                operationOf[one.id] = {net, list.size()};
                list.push_back(std::move(one.operation));
            }
        }
    }
    std::map<int64_t, OperandAt> operandOf;
    {
        struct Placed {
            OperationAt operation;
            int side;
            int64_t position, id;
            StoredOperand operand;
        };
        std::vector<Placed> placed;
        Statement operands(db,
                           "SELECT id, operation_id, side, key, caption, title, description, is_new, mode, type,"
                           " net_id, address, has_value, constant_value, format, constant_list_mode,"
                           " constant_list_only, vector_length, position FROM operands ORDER BY id");
        while (operands.step()) {
            const auto found = operationOf.find(operands.i64(1));
            if (found == operationOf.end()) damaged(db.path(), "an operand belongs to no operation");
            const int side = static_cast<int>(operands.integer(2, 0, schema >= 2 ? 2 : 1));
            placed.push_back({found->second, side, operands.i64(18), operands.i64(0), readOperand(operands)});
        }
        std::stable_sort(placed.begin(), placed.end(), [](const Placed& a, const Placed& b) {
            return std::tie(a.position, a.id) < std::tie(b.position, b.id);
        });
        for (Placed& one : placed) {
            std::vector<StoredOperand>& side = sideOf(one.operation, one.side);
            operandOf[one.id] = {one.operation, one.side, side.size()};
            side.push_back(std::move(one.operand));
        }
    }
    const auto operandOfRow = [&](Statement& row, const char* what) -> StoredOperand& {
        const auto found = operandOf.find(row.i64(0));
        if (found == operandOf.end()) damaged(db.path(), std::string(what) + " belongs to no operand");
        return sideOf(found->second.operation, found->second.side)[found->second.operand];
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
        // Read in key order, so that a key stored twice (which only a file
        // of another shape can hold) is the row after its twin.
        Statement instances(
            db, "SELECT father_id, instance_num, name, data FROM instances ORDER BY father_id, instance_num");
        while (instances.step()) {
            StoredInstance instance{instances.i32(0), instances.i32(1), instances.text(2), instances.blob(3)};
            if (!project.Instances.empty() && project.Instances.back().FatherID == instance.FatherID &&
                project.Instances.back().InstanceNum == instance.InstanceNum)
                damaged(db.path(), "the instance " + std::to_string(instance.FatherID) + "/" +
                                       std::to_string(instance.InstanceNum) + " is stored twice");
            project.Instances.push_back(std::move(instance));
        }
        Statement constants(db, "SELECT address, type, value FROM constants ORDER BY address");
        while (constants.step()) {
            const StoredConstant constant{constants.i32(0), constants.i32(1), constants.i64(2)};
            if (!project.Constants.empty() && project.Constants.back().Address == constant.Address)
                damaged(db.path(), "the constant at address " + std::to_string(constant.Address) + " is stored twice");
            project.Constants.push_back(constant);
        }
        // New constants take addresses from NextConstantAddress on: one at or
        // below a constant of the table would overwrite it.
        for (const StoredConstant& constant : project.Constants)
            if (constant.Address >= project.NextConstantAddress)
                damaged(db.path(), "the next constant address is in use");
        Statement links(db, "SELECT type, address, mode, format, count FROM links ORDER BY type, address");
        while (links.step()) {
            const StoredLink link{links.i32(0), links.i32(1), links.i32(2), links.i32(3), links.i32(4)};
            if (!project.Links.empty() && project.Links.back().Type == link.Type &&
                project.Links.back().Address == link.Address)
                damaged(db.path(), "the operand link of type " + std::to_string(link.Type) + " at address " +
                                       std::to_string(link.Address) + " is stored twice");
            project.Links.push_back(link);
        }
    }
    if (schema >= 2) {
        Statement descriptions(db,
                               "SELECT net_id, type, address, text FROM descriptions ORDER BY net_id, type, address");
        while (descriptions.step()) {
            StoredDescription description{descriptions.i32(0), descriptions.i32(1), descriptions.i32(2),
                                          descriptions.text(3)};
            if (!project.Descriptions.empty() && project.Descriptions.back().NetID == description.NetID &&
                project.Descriptions.back().Type == description.Type &&
                project.Descriptions.back().Address == description.Address)
                damaged(db.path(), "the description of type " + std::to_string(description.Type) + " at address " +
                                       std::to_string(description.Address) + " is stored twice");
            project.Descriptions.push_back(std::move(description));
        }
    }
    if (schema >= 3) {
        // The text forms are for people; the images are what is loaded.
        Statement checksums(db,
                            "SELECT code, name, rule, width, polynomial, init, reflect_in, reflect_out, xor_out,"
                            " check_value, low_byte_first FROM checksums ORDER BY code");
        while (checksums.step()) {
            const auto code =
                static_cast<int32_t>(checksums.integer(0, model::FirstCalculationCode, model::LastCalculationCode));
            model::ChecksumDefinition d;
            d.Name = toUtf8(checksums.text(1));
            d.Rule = static_cast<model::ChecksumRule>(checksums.integer(2, 0, 4));
            d.Width = static_cast<int32_t>(checksums.integer(3, 1, 32));
            d.Polynomial = static_cast<uint32_t>(checksums.integer(4, 0, 0xFFFFFFFF));
            d.Init = static_cast<uint32_t>(checksums.integer(5, 0, 0xFFFFFFFF));
            d.ReflectIn = checksums.boolean(6);
            d.ReflectOut = checksums.boolean(7);
            d.XorOut = static_cast<uint32_t>(checksums.integer(8, 0, 0xFFFFFFFF));
            d.Check = static_cast<uint32_t>(checksums.integer(9, 0, 0xFFFFFFFF));
            d.LowByteFirst = checksums.boolean(10);
            if (const std::string problem = model::checksumProblem(d); !problem.empty())
                damaged(db.path(), "the checksum code " + std::to_string(code) + " is unsound: " + problem);
            project.Settings.Checksums.Definition(code, std::move(d));
        }
    }
    return project;
}

void writeOperands(Database& db, Statement& insert, Statement& allowed, Statement& constants, int64_t operation,
                   const std::vector<StoredOperand>& operands, int side) {
    int64_t position = 0;
    for (const StoredOperand& operand : operands) {
        insert.bind(1, operation).bind(2, int64_t{side}).bind(3, position++).bind(4, operand.Key);
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
    Statement textForm(db, "INSERT INTO text_forms(operation_id, json) VALUES(?, ?)");
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
            writeOperands(db, operand, allowed, constantList, operationId, stored.InOperands, 0);
            writeOperands(db, operand, allowed, constantList, operationId, stored.OutOperands, 1);
            writeOperands(db, operand, allowed, constantList, operationId, stored.FindOnly, 2);
            if (const std::optional<std::string> json = textFormOf(stored, project.Settings.ExtendedOperands))
                textForm.bind(1, operationId).bind(2, fromUtf8(*json)).run();
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
    Statement description(db, "INSERT INTO descriptions(net_id, type, address, text) VALUES(?, ?, ?, ?)");
    for (const StoredDescription& stored : project.Descriptions)
        description.bind(1, stored.NetID).bind(2, stored.Type).bind(3, stored.Address).bind(4, stored.Text).run();
    Statement checksum(db,
                       "INSERT INTO checksums(code, name, rule, width, polynomial, init, reflect_in, reflect_out,"
                       " xor_out, check_value, low_byte_first) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    for (int32_t code = model::FirstCalculationCode; code <= model::LastCalculationCode; ++code) {
        const model::ChecksumDefinition& d = project.Settings.Checksums.Definition(code);
        checksum.bind(1, code).bind(2, fromUtf8(d.Name)).bind(3, static_cast<int64_t>(d.Rule)).bind(4, d.Width);
        checksum.bind(5, int64_t{d.Polynomial}).bind(6, int64_t{d.Init}).bind(7, int64_t{d.ReflectIn});
        checksum.bind(8, int64_t{d.ReflectOut}).bind(9, int64_t{d.XorOut}).bind(10, int64_t{d.Check});
        checksum.bind(11, int64_t{d.LowByteFirst}).run();
    }
}

// A key the project holds twice, named, before anything is written.
void checkKeys(const std::string& path, const Project& project) {
    const auto twice = [&path](const std::string& what) {
        fail(err::InvalidProcedureCall, path, "cannot be saved: the project holds " + what + " twice");
    };
    std::set<std::pair<int32_t, int32_t>> instances, links;
    for (const StoredInstance& instance : project.Instances)
        if (!instances.emplace(instance.FatherID, instance.InstanceNum).second)
            twice("the instance " + std::to_string(instance.FatherID) + "/" + std::to_string(instance.InstanceNum));
    std::set<int32_t> constants;
    for (const StoredConstant& constant : project.Constants)
        if (!constants.insert(constant.Address).second)
            twice("the constant at address " + std::to_string(constant.Address));
    for (const StoredLink& link : project.Links)
        if (!links.emplace(link.Type, link.Address).second)
            twice("the operand link of type " + std::to_string(link.Type) + " at address " +
                  std::to_string(link.Address));
    std::set<std::tuple<int32_t, int32_t, int32_t>> described;
    for (const StoredDescription& description : project.Descriptions)
        if (!described.emplace(description.NetID, description.Type, description.Address).second)
            twice("the description of type " + std::to_string(description.Type) + " at address " +
                  std::to_string(description.Address));
}

}  // namespace

Project loadProject(const std::string& path) {
    existsAsRegularFile(path, true);
    // Opened for writing, so that the journal of a save that was cut short
    // is applied; a file no one may write opens read-only all the same.
    Database db(path, SQLITE_OPEN_READWRITE, isWalFile(path));
    // One read transaction: the whole project as one moment of the file.
    db.exec("BEGIN");
    const int32_t schema = schemaOf(db);
    if (schema == 0) fail(err::InvalidFileFormat, path, "is empty, not a project file");
    Project project = readProject(db, schema);
    db.exec("COMMIT");
    return project;
}

void saveProject(const std::string& path, const Project& project) {
    const bool existed = existsAsRegularFile(path, false);
    checkKeys(path, project);
    std::pair<dev_t, ino_t> made{0, 0};
    try {
        Database db(path, SQLITE_OPEN_READWRITE | (existed ? 0 : SQLITE_OPEN_CREATE), existed && isWalFile(path));
        if (!existed) made = identityOf(path);
        // The write lock first, then the look at what the file is: nobody
        // can change it in between.
        db.exec("BEGIN IMMEDIATE");
        try {
            const int32_t schema = schemaOf(db);
            if (schema == 0) {
                db.exec(SchemaV1Sql);
                db.exec(("PRAGMA application_id = " + std::to_string(project_file::ApplicationId)).c_str());
            }
            // A file of an older schema is brought up to this one with the
            // rest of the save, or not at all.
            if (schema < 2) db.exec(SchemaV2Sql);
            if (schema < 3) db.exec(SchemaV3Sql);
            db.exec(("PRAGMA user_version = " + std::to_string(project_file::SchemaVersion)).c_str());
            db.exec(ClearSql);
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
