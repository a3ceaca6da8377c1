// The SQLite driver: a database held in one SQLite file.
#pragma once

#include <sqlite3.h>
#include <QDeadlineTimer>
#include <QElapsedTimer>

#include "data/connection.h"
#include "data/store/background_check.h"

namespace quorvane {

// Whether a file that begins with these bytes is an SQLite database.
bool IsSqliteFile(const QByteArray& head);

std::shared_ptr<Connection> CreateSqliteConnection();

// Closes a database when its last statement has gone, without a word.
struct SqliteCloser {
    void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};

class SqliteConnection : public Connection {
public:
    // Opens the file named by "Data Source" for reading and writing, or for reading alone where its folder or
    // its permissions allow no more. Never creates or changes a file. The whole file is checked
    // in a thread of its own when somebody first asks (8 ms for 0.6 MB, 70 ms for 6 MB), and a damaged one is
    // not written. A file that another program has locked is waited for up to three seconds. There are no
    // users in such a file and no options: these arguments are not looked at.
    void Open(const CString& connectionString, const CString& user, const CString& password,
              int options) override;
    // A statement whose text goes on after its end is refused. A statement that writes waits for the check of
    // the file; it, or the beginning of a submit, opens a file anew that was replaced or may be written
    // again.
    std::unique_ptr<Recordset> Execute(const CString& statement) override;
    void BeginSubmit() override;
    void EndSubmit() override;
    // Fails while a record set of this connection is still open.
    void Close() override;
    bool IsCheckRunning() const override;
    void RequireSoundFile() override;

private:
    void OpenPath(int busyTimeoutMs);
    bool IsOutdated() const;
    void LimitWaiting();

    CString m_path;
    QDeadlineTimer m_deadline;  // of the present statement
    std::unique_ptr<BackgroundCheck> m_check;
    bool m_inSubmit = false;
    QElapsedTimer m_sinceWait;                          // for a lock
    std::unique_ptr<sqlite3, SqliteCloser> m_database;  // null: not open
};

}  // namespace quorvane
