#include "data/store/sqlite_guard.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>
#include <array>

#include "data/connection.h"
#include "data/store/sqlite_recordset.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

constexpr int kOperationsBetweenLooks = 1000;
constexpr int kLongestValue = 64 << 20;  // bytes

constexpr std::array kLimits{
    std::pair{SQLITE_LIMIT_LENGTH, kLongestValue}, std::pair{SQLITE_LIMIT_SQL_LENGTH, kLongestValue},
    std::pair{SQLITE_LIMIT_ATTACHED, 0},           std::pair{SQLITE_LIMIT_TRIGGER_DEPTH, 1},
    std::pair{SQLITE_LIMIT_EXPR_DEPTH, 100},       std::pair{SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 1000},
    std::pair{SQLITE_LIMIT_WORKER_THREADS, 0},
};

}  // namespace

// A journal that belongs to a transaction over several files ends with the name of the super-journal, four
// bytes of length, four of checksum and eight that mark it. This program never writes such a transaction.
void RefuseSuperJournal(const CString& path) {
    static const QByteArray mark = QByteArray::fromHex("d9d505f920a163d7");
    constexpr qint64 kTailSize = 16;
    // SQLite looks beside the file that a link leads to.
    QFile journal(QFileInfo(path).canonicalFilePath() + u"-journal"_s);
    if (!QFileInfo(journal).isFile() || journal.size() < kTailSize || !journal.open(QIODevice::ReadOnly)) {
        return;
    }
    journal.seek(journal.size() - kTailSize);
    const QByteArray tail = journal.read(kTailSize);
    if (tail.endsWith(mark) && qFromBigEndian<quint32>(tail.constData()) != 0) {
        throw ProviderError(u"%1 names another file, which would be deleted"_s.arg(journal.fileName()),
                            FailureKind::Damaged);
    }
}

void GuardEngine(sqlite3* database, const QDeadlineTimer* deadline) {
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    for (const auto& [limit, value] : kLimits) {
        sqlite3_limit(database, limit, value);
    }
    sqlite3_progress_handler(
        database, kOperationsBetweenLooks,
        [](void* limit) { return static_cast<const QDeadlineTimer*>(limit)->hasExpired() ? 1 : 0; },
        const_cast<QDeadlineTimer*>(deadline));
}

// One call of instr() or like() on long texts can take hours, and no time limit ends it. The word "check"
// alone tells of a constraint.
void RefuseStrangeTables(sqlite3* database) {
    const SqliteRecordset wrong(PrepareSqlite(
        database,
        u"select name from sqlite_schema as t where type in ('view', 'table') "
        "and name in ('光源类别', '光源', '灯具', '利用系数', '照度要求及功率密度') and ("
        "coalesce(rootpage, 0) = 0 or sql like '%check%' or exists (select 1 from pragma_table_xinfo(t.name) "
        "where hidden <> 0 or dflt_value like '%(%') or exists (select 1 from pragma_index_list(t.name) as i "
        "where partial <> 0 or exists (select 1 from pragma_index_xinfo(i.name) where cid = -2)))"_s));
    if (!wrong.AtEnd()) {
        throw ProviderError(u"%1 is no table of the file, or its definition computes something"_s.arg(
                                std::get<CString>(wrong.Value(0))),
                            FailureKind::Damaged);
    }
}

}  // namespace quorvane
