#include "tests/support/raw_database.h"

#include <functional>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

void ForEachRow(sqlite3* database, const QString& query, const std::function<void(sqlite3_stmt*)>& visit) {
    sqlite3_stmt* statement = nullptr;
    int result = sqlite3_prepare_v2(database, query.toUtf8().constData(), -1, &statement, nullptr);
    while (result == SQLITE_OK || result == SQLITE_ROW) {
        result = sqlite3_step(statement);
        if (result == SQLITE_ROW) {
            visit(statement);
        }
    }
    sqlite3_finalize(statement);
    if (result != SQLITE_DONE) {
        throw std::runtime_error(sqlite3_errmsg(database));
    }
}

QByteArray TextOf(sqlite3_stmt* row, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return {text, sqlite3_column_bytes(row, column)};
}

QString LiteralOf(sqlite3_stmt* row, int column) {
    const QString text = QString::fromUtf8(TextOf(row, column));
    const int type = sqlite3_column_type(row, column);
    return type == SQLITE_NULL ? u"NULL"_s : type == SQLITE_TEXT ? u'\'' + text + u'\'' : text;
}

}  // namespace

RawDatabase::RawDatabase(const QString& path) {
    sqlite3* handle = nullptr;
    const int result = sqlite3_open(path.toUtf8().constData(), &handle);
    m_database.reset(handle);
    if (result != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errstr(result));
    }
    sqlite3_busy_timeout(handle, 5000);  // the program may still be checking the file
}

void RawDatabase::Execute(const QString& statements) {
    if (sqlite3_exec(m_database.get(), statements.toUtf8().constData(), nullptr, nullptr, nullptr) !=
        SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(m_database.get()));
    }
}

QStringList RawDatabase::Rows(const QString& query) const {
    QStringList rows;
    ForEachRow(m_database.get(), query, [&](sqlite3_stmt* row) {
        QStringList values;
        for (int column = 0; column < sqlite3_column_count(row); ++column) {
            values << LiteralOf(row, column);
        }
        rows << values.join(u'|');
    });
    return rows;
}

QByteArray RawDatabase::Text(const QString& query) const {
    QByteArrayList texts;
    ForEachRow(m_database.get(), query, [&](sqlite3_stmt* row) { texts << TextOf(row, 0); });
    return texts.value(0);
}

}  // namespace quorvane
