// The file "NAME.ldb" beside a database: tells other programs that the database is open
// (docs/access-files.md, "Sharing").
#pragma once

#include "data/store/access/disk/file.h"

namespace quorvane::access {

class LockFile {
public:
    // Makes the lock file for a database, or takes over one that this program left behind when it was killed.
    // Throws AccessError that names the computers when another program has the database open.
    LockFile(FileSystem& files, const QString& databasePath);
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;
    // Deletes the file.
    ~LockFile();

private:
    FileSystem* m_files;
    QString m_path;
    std::unique_ptr<File> m_file;
};

}  // namespace quorvane::access
