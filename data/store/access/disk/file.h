// What the driver asks of the system's files (docs/access-files.md, "How changes reach the file"). The one
// place of this folder that differs between platforms; tests put a simulated disk behind it.
#pragma once

#include <QString>
#include <memory>

#include "data/store/access/bytes.h"

namespace quorvane::access {

// What tells one state of a file from another without reading it.
struct FileStamp {
    qint64 size = 0;
    qint64 modified = 0;   // in the finest unit that the system keeps
    quint64 identity = 0;  // of the file that bears the name now; 0: none does
    bool operator==(const FileStamp&) const = default;
};

// An open file. Every failure is an AccessError with the system's reason.
class File {
public:
    virtual ~File() = default;
    virtual FileStamp Stamp() const = 0;
    // Both move all of the bytes or throw.
    virtual void Read(qint64 offset, ByteSpan into) const = 0;
    virtual void Write(qint64 offset, QByteArrayView bytes) = 0;
    // Returns when everything written is on the disk, the file's size included.
    virtual void Sync() = 0;
    // Holds the file against every other program that asks in the same way, until it is closed. False when
    // another holds it.
    virtual bool Lock() = 0;
};

class FileSystem {
public:
    enum class Mode { Read, ReadWrite, CreateNew };  // CreateNew fails when the file exists

    virtual ~FileSystem() = default;
    virtual std::unique_ptr<File> Open(const QString& path, Mode mode) = 0;
    virtual bool Exists(const QString& path) = 0;
    virtual void Remove(const QString& path) = 0;
    // Never replaces a file.
    virtual void Rename(const QString& from, const QString& to) = 0;
    // Returns when the names in the file's folder are on the disk.
    virtual void SyncFolder(const QString& path) = 0;
    virtual QString ComputerName() = 0;
};

// The files of this computer.
FileSystem& NativeFiles();

}  // namespace quorvane::access
