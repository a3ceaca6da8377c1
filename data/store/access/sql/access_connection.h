// The driver for Access files: the SQLite engine over tables that it reads and writes through this folder
// (docs/access-files.md, "How statements run").
#pragma once

#include <QDeadlineTimer>
#include <QStringList>
#include <map>

#include "data/connection.h"
#include "data/store/background_check.h"
#include "data/store/sqlite_recordset.h"

namespace quorvane {

namespace access {
class Database;
class FileSystem;
}  // namespace access

// Makes a connection for a file that IsAccessFile recognises.
std::shared_ptr<Connection> CreateAccessConnection();

// What is wrong with the structure of the file, one line each. Throws ProviderError when it cannot be read.
QStringList CheckAccessFile(const QString& path);

class AccessConnection : public Connection {
public:
    explicit AccessConnection(access::FileSystem& files) : m_files(files) {}

    // Opens the file named by "Data Source": for writing when nobody else has it open, else for reading
    // alone. The whole file is checked in a thread of its own when somebody first asks, and a damaged one
    // is not written. Throws ProviderError for a file that cannot be read. Users and options are not looked
    // at.
    void Open(const CString& connectionString, const CString& user, const CString& password,
              int options) override;
    // A statement that writes waits for the check of the file, and fails with the reason where the file is
    // open for reading alone. When another program has changed the file, one statement fails with that
    // reason; from the next query on the file is read anew, and until then nothing is written. A file that
    // stands in the place of the open one, or may be written meanwhile, is opened by the next statement or
    // submit.
    std::unique_ptr<Recordset> Execute(const CString& statement) override;
    void BeginSubmit() override;
    void EndSubmit() override;
    // Fails while a record set of this connection is still open.
    void Close() override;
    bool IsCheckRunning() const override;
    void RequireSoundFile() override;
    CString ChangesPutAside() const override;

private:
    struct EngineCloser {
        void operator()(sqlite3* engine) const { sqlite3_close_v2(engine); }
    };
    using Engine = std::unique_ptr<sqlite3, EngineCloser>;

    void OpenPath();
    void Reopen();
    std::unique_ptr<Recordset> Run(SqliteStatement statement);
    void RequireUnchanged();
    SqliteStatement Prepare(const CString& statement) const;
    void PutOnDisk();

    access::FileSystem& m_files;
    CString m_path;
    std::shared_ptr<access::Database> m_database;  // null: not open, or could not be opened anew
    std::map<CString, CString> m_leftOut;          // tables that cannot be shown, in lower case: why
    QDeadlineTimer m_deadline;                     // of the present statement
    Engine m_engine;
    std::unique_ptr<BackgroundCheck> m_check;  // of the open file
    bool m_inSubmit = false;
    bool m_changedOutside = false;
};

}  // namespace quorvane
