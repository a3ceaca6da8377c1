// The files of Windows.
#include <QDir>
#include <QFileInfo>
#include <QSysInfo>
#include <algorithm>
#include <utility>

#include "data/store/access/disk/file.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

[[noreturn]] void ThrowFailure(const QString& action, const QString& path, DWORD error = ::GetLastError()) {
    const bool isForbidden = error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT;
    const bool isFull = error == ERROR_DISK_FULL || error == ERROR_HANDLE_DISK_FULL;
    const bool isInUse = error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
    throw AccessError(u"不能%2 %1:%3"_s.arg(path, action, qt_error_string(static_cast<int>(error))),
                      isForbidden ? Fault::ReadOnly
                      : isFull    ? Fault::NoRoom
                      : isInUse   ? Fault::InUse
                                  : Fault::Failed);
}

// The form of a path that may have more than 260 characters.
std::wstring NativeName(const QString& path) {
    const QString name = QDir::toNativeSeparators(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    const bool onServer = name.startsWith(u"\\\\"_s);
    return ((onServer ? u"\\\\?\\UNC\\"_s : u"\\\\?\\"_s) + name.mid(onServer ? 2 : 0)).toStdWString();
}

quint64 Joined(DWORD high, DWORD low) {
    return quint64{high} << 32 | low;
}

class Handle {
public:
    explicit Handle(HANDLE handle = INVALID_HANDLE_VALUE) : m_handle(handle) {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() {
        if (IsOpen()) {
            ::CloseHandle(m_handle);
        }
    }
    bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return m_handle; }
    // Of one that is not open.
    void Take(HANDLE handle) { m_handle = handle; }

private:
    HANDLE m_handle;
};

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// A number that no other file of the drive has; 0 when there is no file of that name.
quint64 Identity(const QString& path) {
    const Handle named(::CreateFileW(NativeName(path).c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                     FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION info{};
    return named.IsOpen() && ::GetFileInformationByHandle(named.Get(), &info) != 0
               ? Joined(info.nFileIndexHigh, info.nFileIndexLow)
               : 0;
}

class WindowsFile : public File {
public:
    explicit WindowsFile(QString path) : m_path(std::move(path)) {}

    bool Open(DWORD access, DWORD share, DWORD disposition) {
        m_handle.Take(::CreateFileW(NativeName(m_path).c_str(), access, share, nullptr, disposition,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
        return m_handle.IsOpen();
    }

    FileStamp Stamp() const override {
        BY_HANDLE_FILE_INFORMATION info{};
        if (::GetFileInformationByHandle(m_handle.Get(), &info) == 0) {
            ThrowFailure(u"查看"_s, m_path);
        }
        return {static_cast<qint64>(Joined(info.nFileSizeHigh, info.nFileSizeLow)),
                static_cast<qint64>(
                    Joined(info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime)),
                Identity(m_path)};
    }

    void Read(qint64 offset, ByteSpan into) const override {
        while (!into.empty()) {
            OVERLAPPED place = Place(offset);
            DWORD done = 0;
            if (::ReadFile(m_handle.Get(), into.data(), AtOnce(into.size()), &done, &place) == 0) {
                ThrowFailure(u"读取"_s, m_path);
            }
            if (done == 0) {
                ThrowFailure(u"读取"_s, m_path, ERROR_HANDLE_EOF);
            }
            into = into.subspan(done);
            offset += done;
        }
    }

    void Write(qint64 offset, QByteArrayView bytes) override {
        while (!bytes.isEmpty()) {
            OVERLAPPED place = Place(offset);
            DWORD done = 0;
            if (::WriteFile(m_handle.Get(), bytes.data(), AtOnce(static_cast<std::size_t>(bytes.size())),
                            &done, &place) == 0) {
                ThrowFailure(u"写入"_s, m_path);
            }
            if (done == 0) {
                ThrowFailure(u"写入"_s, m_path, ERROR_DISK_FULL);
            }
            bytes = bytes.sliced(done);
            offset += done;
        }
    }

    // The system enters the time of a write when it likes to, up to the closing of the file. A time that was
    // set stays, so that the stamp does not change by itself. FAT keeps no finer time than two seconds.
    void Sync() override {
        constexpr quint64 kGranularity = 20'000'000;
        FILETIME now{};
        ::GetSystemTimeAsFileTime(&now);
        const quint64 ticks = Joined(now.dwHighDateTime, now.dwLowDateTime) / kGranularity * kGranularity;
        const FILETIME time{static_cast<DWORD>(ticks & 0xFFFFFFFF), static_cast<DWORD>(ticks >> 32)};
        if (::SetFileTime(m_handle.Get(), nullptr, nullptr, &time) == 0 ||
            ::FlushFileBuffers(m_handle.Get()) == 0) {
            ThrowFailure(u"写入"_s, m_path);
        }
    }

    // Far behind every file's end: a locked range could not be read by others.
    bool Lock() override {
        OVERLAPPED place = Place(qint64{1} << 62);
        return ::LockFileEx(m_handle.Get(), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                            &place) != 0;
    }

private:
    static OVERLAPPED Place(qint64 offset) {
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFF);
        place.OffsetHigh = static_cast<DWORD>(offset >> 32);
        return place;
    }

    static DWORD AtOnce(std::size_t count) {
        constexpr std::size_t kMost = std::size_t{1} << 30;
        return static_cast<DWORD>(std::min(count, kMost));
    }

    Handle m_handle;
    QString m_path;
};

class WindowsFileSystem : public FileSystem {
public:
    // A file that is open for writing can be read by others, and written by nobody else. Lock files are
    // deleted while they are open.
    std::unique_ptr<File> Open(const QString& path, Mode mode) override {
        const DWORD access = mode == Mode::Read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
        const DWORD share = mode == Mode::Read        ? kShareAll
                            : mode == Mode::ReadWrite ? FILE_SHARE_READ
                                                      : FILE_SHARE_READ | FILE_SHARE_DELETE;
        // Nothing may fail once the file has been made.
        auto file = std::make_unique<WindowsFile>(path);
        if (!file->Open(access, share, mode == Mode::CreateNew ? CREATE_NEW : OPEN_EXISTING)) {
            ThrowFailure(mode == Mode::CreateNew ? u"新建"_s : u"打开"_s, path);
        }
        return file;
    }

    bool Exists(const QString& path) override {
        return ::GetFileAttributesW(NativeName(path).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    void Remove(const QString& path) override {
        if (::DeleteFileW(NativeName(path).c_str()) == 0) {
            ThrowFailure(u"删除"_s, path);
        }
    }

    void Rename(const QString& from, const QString& to) override {
        if (::MoveFileExW(NativeName(from).c_str(), NativeName(to).c_str(), MOVEFILE_WRITE_THROUGH) == 0) {
            ThrowFailure(u"改名"_s, from);
        }
    }

    // FlushFileBuffers puts a file's name on the disk together with its content.
    void SyncFolder(const QString& /*path*/) override {}

    QString ComputerName() override { return QSysInfo::machineHostName(); }
};

}  // namespace

FileSystem& NativeFiles() {
    static WindowsFileSystem files;
    return files;
}

}  // namespace quorvane::access
