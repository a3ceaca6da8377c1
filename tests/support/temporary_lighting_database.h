// A lighting database of its own for one test, in a folder that is removed with it.
#pragma once

#include <QTemporaryDir>

#include "tests/support/files.h"
#include "tests/support/raw_database.h"

namespace quorvane {

class TemporaryLightingDatabase {
public:
    // Makes <folder>/Vexal/灯具数据库.mdb with its five tables, all empty, and the folder <folder>/bin.
    TemporaryLightingDatabase();

    QString Folder() const { return m_folder.path(); }
    // What the program under test takes for its own place: <folder>/bin/quorvane. There is no such file.
    QString ExecutablePath() const { return m_folder.filePath(QStringLiteral("bin/quorvane")); }
    QString DatabaseFolder() const { return m_folder.filePath(QStringLiteral("Vexal")); }
    QString FilePath() const { return m_folder.filePath(QStringLiteral("Vexal/灯具数据库.mdb")); }

    RawDatabase Raw() const { return RawDatabase(FilePath()); }
    // Every row of every table, the tables' definitions included, to see that nothing else has changed.
    QStringList Snapshot() const;
    // The file's bytes. Not while a connection of this process holds a lock on it.
    QByteArray Bytes() const { return Contents(FilePath()); }

private:
    QTemporaryDir m_folder;
};

}  // namespace quorvane
