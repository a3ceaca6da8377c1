// Lets the SQLite engine of this process work on a simulated disk.
#pragma once

#include <sqlite3.h>

#include <cstring>
#include <new>

#include "tests/data/simulated_disk.h"

namespace quorvane::on_simulated_disk {

using namespace access;

inline SimulatedDisk* theDisk = nullptr;

struct OpenFile : sqlite3_file {
    std::unique_ptr<File> file;
    QString path;
    bool isNew = false;  // its name is not on the disk yet
};

inline OpenFile& Of(sqlite3_file* file) {
    return *static_cast<OpenFile*>(file);
}

template <typename Action>
int ResultOf(const Action& action, int failure) {
    try {
        action();
        return SQLITE_OK;
    } catch (const AccessError&) {
        return failure;
    }
}

inline int Read(sqlite3_file* file, void* into, int size, sqlite3_int64 offset) {
    const qint64 present = std::clamp<qint64>(Of(file).file->Stamp().size - offset, 0, size);
    auto* bytes = static_cast<char*>(into);
    std::memset(bytes, 0, static_cast<std::size_t>(size));
    if (present > 0) {
        Of(file).file->Read(offset, ByteSpan(bytes, static_cast<std::size_t>(present)));
    }
    return present < size ? SQLITE_IOERR_SHORT_READ : SQLITE_OK;
}

inline int Sync(sqlite3_file* file, int /*flags*/) {
    const auto sync = [&] {
        Of(file).file->Sync();
        if (std::exchange(Of(file).isNew, false)) {
            theDisk->SyncFolder(Of(file).path);
        }
    };
    return ResultOf(sync, SQLITE_IOERR_FSYNC);
}

inline const sqlite3_io_methods* Methods() {
    static sqlite3_io_methods methods{};
    methods.iVersion = 1;  // without shared memory
    methods.xClose = [](sqlite3_file* file) {
        Of(file).~OpenFile();
        return SQLITE_OK;
    };
    methods.xRead = Read;
    methods.xWrite = [](sqlite3_file* file, const void* from, int size, sqlite3_int64 offset) {
        const QByteArrayView bytes(static_cast<const char*>(from), size);
        return ResultOf([&] { Of(file).file->Write(offset, bytes); }, SQLITE_IOERR_WRITE);
    };
    methods.xTruncate = [](sqlite3_file* file, sqlite3_int64 size) {
        return ResultOf([&] { theDisk->Truncate(Of(file).path, size); }, SQLITE_IOERR_TRUNCATE);
    };
    methods.xSync = Sync;
    methods.xFileSize = [](sqlite3_file* file, sqlite3_int64* size) {
        *size = Of(file).file->Stamp().size;
        return SQLITE_OK;
    };
    methods.xLock = [](sqlite3_file*, int) { return SQLITE_OK; };
    methods.xUnlock = methods.xLock;
    methods.xCheckReservedLock = [](sqlite3_file*, int* isLocked) { return *isLocked = 0; };
    methods.xFileControl = [](sqlite3_file*, int, void*) { return SQLITE_NOTFOUND; };
    methods.xSectorSize = [](sqlite3_file*) { return SimulatedDisk::kSector; };
    methods.xDeviceCharacteristics = [](sqlite3_file*) { return 0; };
    return &methods;
}

inline int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    const QString path = QString::fromUtf8(name);
    const bool isNew = (flags & SQLITE_OPEN_CREATE) != 0 && !theDisk->Exists(path);
    auto* opened = new (file) OpenFile;
    const auto open = [&] {
        opened->file = theDisk->Open(path, isNew ? FileSystem::Mode::CreateNew : FileSystem::Mode::ReadWrite);
        opened->path = path;
        opened->isNew = isNew;
        opened->pMethods = Methods();
    };
    opened->pMethods = nullptr;
    if (outFlags != nullptr) {
        *outFlags = flags;
    }
    return ResultOf(open, SQLITE_CANTOPEN);
}

inline int Delete(sqlite3_vfs*, const char* name, int syncFolder) {
    const QString path = QString::fromUtf8(name);
    if (!theDisk->Exists(path)) {
        return SQLITE_IOERR_DELETE_NOENT;
    }
    const auto remove = [&] {
        theDisk->Remove(path);
        if (syncFolder != 0) {
            theDisk->SyncFolder(path);
        }
    };
    return ResultOf(remove, SQLITE_IOERR_DELETE);
}

}  // namespace quorvane::on_simulated_disk

namespace quorvane {

// From now on every file that SQLite opens is one of the disk. Locks are not simulated, so one connection may
// write.
inline void PutSqliteOn(access::SimulatedDisk& disk) {
    using namespace on_simulated_disk;
    theDisk = &disk;
    static sqlite3_vfs files = *sqlite3_vfs_find(nullptr);
    files.szOsFile = sizeof(OpenFile);
    files.zName = "simulated";
    files.xOpen = Open;
    files.xDelete = Delete;
    files.xAccess = [](sqlite3_vfs*, const char* name, int /*flags*/, int* isThere) {
        const QString path = QString::fromUtf8(name);
        *isThere = theDisk->Exists(path) && !theDisk->Bytes(path).isEmpty();
        return SQLITE_OK;
    };
    files.xFullPathname = [](sqlite3_vfs*, const char* name, int size, char* into) {
        return qstrncpy(into, name, static_cast<std::size_t>(size)) != nullptr ? SQLITE_OK : SQLITE_CANTOPEN;
    };
    sqlite3_vfs_register(&files, 1);
}

}  // namespace quorvane
