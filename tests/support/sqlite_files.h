// SQL run on a file directly, as another program would run it: to forge
// project files that this program would never write. For test programs that
// link SQLite.
#pragma once
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <string>

namespace qx::test {

inline void runSql(const std::filesystem::path& file, const std::string& sql) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
    char* message = nullptr;
    const int code = sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message);
    const std::string text = message ? message : "";
    sqlite3_free(message);
    sqlite3_close(db);
    ASSERT_EQ(code, SQLITE_OK) << text;
}

}  // namespace qx::test
