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

// The rows a query gives, columns joined by "|" and rows by "\n", as the
// sqlite3 shell prints them.
inline std::string querySql(const std::filesystem::path& file, const std::string& sql) {
    sqlite3* db = nullptr;
    std::string rows;
    if (sqlite3_open(file.c_str(), &db) == SQLITE_OK) {
        sqlite3_exec(
            db, sql.c_str(),
            [](void* out, int columns, char** values, char**) {
                auto& text = *static_cast<std::string*>(out);
                if (!text.empty()) text += "\n";
                for (int i = 0; i < columns; ++i) text += (i ? "|" : "") + std::string(values[i] ? values[i] : "");
                return 0;
            },
            &rows, nullptr);
    }
    sqlite3_close(db);
    return rows;
}

}  // namespace qx::test
