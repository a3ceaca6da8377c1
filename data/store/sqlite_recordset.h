// The rows of an SQLite statement.
#pragma once

#include <sqlite3.h>

#include <string>
#include <vector>

#include "data/connection.h"

namespace quorvane {

struct SqliteFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using SqliteStatement = std::unique_ptr<sqlite3_stmt, SqliteFinalizer>;

// Which kind of failure the last one of the database was.
FailureKind KindOfSqliteError(sqlite3* database);

// Throws what SQLite has to say about its last failure.
[[noreturn]] void ThrowSqliteError(sqlite3* database);

// Prepares one statement on any database of the SQLite engine. Text after its end is a ProviderError.
SqliteStatement PrepareSqlite(sqlite3* database, const CString& statement);

class SqliteRecordset : public Recordset {
public:
    // Runs the statement up to its first row, or to its end.
    explicit SqliteRecordset(SqliteStatement statement);

    bool AtEnd() const override { return m_statement == nullptr; }
    void MoveNext() override;
    using Recordset::Value;
    int Column(const CString& columnName) const override;
    FieldValue Value(int index) const override;

private:
    void Step();
    CString TextValue(int index) const;

    // Rows repeat makers and names. An equal text that was read a moment ago is shared, not decoded again.
    struct RecentText {
        std::string bytes;
        CString text;
    };
    static constexpr std::size_t kRecentTexts = 256;
    static constexpr std::size_t kLongestSharedText = 128;  // bytes

    SqliteStatement m_statement;         // null: at the end, and every lock released
    std::vector<CString> m_columnNames;  // as Column knows them
    mutable std::vector<RecentText> m_recentTexts;
    mutable std::vector<QChar> m_decoded;
};

}  // namespace quorvane
