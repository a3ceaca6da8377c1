// A database file seen straight through the C library, past everything that is tested.
#pragma once

#include <sqlite3.h>

#include <QStringList>
#include <memory>

namespace quorvane {

// Every failure is a std::runtime_error: a test that cannot look does not go on.
class RawDatabase {
public:
    // Opens the file, or makes an empty one.
    explicit RawDatabase(const QString& path);

    // Runs any number of statements.
    void Execute(const QString& statements);
    // One text a row: the values as SQL literals, joined by "|".
    QStringList Rows(const QString& query) const;
    // The first value of the first row as a text's bytes in UTF-8, untouched.
    QByteArray Text(const QString& query) const;

private:
    struct Closer {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };
    std::unique_ptr<sqlite3, Closer> m_database;
};

}  // namespace quorvane
