// The files of a Unix system.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <cerrno>
#include <cstring>
#include <utility>

#include "data/store/access/disk/file.h"

namespace quorvane::access {

namespace {

[[noreturn]] void ThrowFailure(const QString& action, const QString& path, int error = errno) {
    const bool isForbidden = error == EACCES || error == EPERM || error == EROFS;
    const bool isFull = error == ENOSPC || error == EDQUOT;
    throw AccessError(
        QStringLiteral("不能%2 %1:%3").arg(path, action, QString::fromLocal8Bit(std::strerror(error))),
        isForbidden ? Fault::ReadOnly
        : isFull    ? Fault::NoRoom
                    : Fault::Failed);
}

class UnixFile : public File {
public:
    explicit UnixFile(QString path) : m_path(std::move(path)) {}
    UnixFile(const UnixFile&) = delete;
    UnixFile& operator=(const UnixFile&) = delete;
    ~UnixFile() override { ::close(m_descriptor); }

    bool Open(int flags) {
        m_descriptor = ::open(QFile::encodeName(m_path).constData(), flags, 0666);
        return m_descriptor >= 0;
    }

    FileStamp Stamp() const override {
        struct stat open {};
        struct stat named {};
        if (::fstat(m_descriptor, &open) != 0) {
            ThrowFailure(QStringLiteral("查看"), m_path);
        }
        const bool found = ::stat(QFile::encodeName(m_path).constData(), &named) == 0;
        constexpr qint64 kNanoseconds = 1'000'000'000;
        return {open.st_size, open.st_mtim.tv_sec * kNanoseconds + open.st_mtim.tv_nsec,
                found ? named.st_ino : 0};
    }

    void Read(qint64 offset, ByteSpan into) const override {
        while (!into.empty()) {
            const ssize_t done = ::pread(m_descriptor, into.data(), into.size(), offset);
            if (done < 0 && errno == EINTR) {
                continue;
            }
            if (done <= 0) {
                ThrowFailure(QStringLiteral("读取"), m_path, done == 0 ? EIO : errno);
            }
            into = into.subspan(static_cast<std::size_t>(done));
            offset += done;
        }
    }

    void Write(qint64 offset, QByteArrayView bytes) override {
        while (!bytes.isEmpty()) {
            const ssize_t done =
                ::pwrite(m_descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()), offset);
            if (done < 0 && errno == EINTR) {
                continue;
            }
            if (done <= 0) {
                ThrowFailure(QStringLiteral("写入"), m_path, done == 0 ? ENOSPC : errno);
            }
            bytes = bytes.sliced(done);
            offset += done;
        }
    }

    void Sync() override {
        if (::fdatasync(m_descriptor) != 0) {
            ThrowFailure(QStringLiteral("写入"), m_path);
        }
    }

    bool Lock() override { return ::flock(m_descriptor, LOCK_EX | LOCK_NB) == 0; }

private:
    int m_descriptor = -1;
    QString m_path;
};

class UnixFileSystem : public FileSystem {
public:
    std::unique_ptr<File> Open(const QString& path, Mode mode) override {
        int flags = O_CLOEXEC;
        flags |= mode == Mode::Read ? O_RDONLY : O_RDWR;
        flags |= mode == Mode::CreateNew ? O_CREAT | O_EXCL : 0;
        // Nothing may fail once the file has been made.
        auto file = std::make_unique<UnixFile>(path);
        if (!file->Open(flags)) {
            ThrowFailure(mode == Mode::CreateNew ? QStringLiteral("新建") : QStringLiteral("打开"), path);
        }
        return file;
    }

    bool Exists(const QString& path) override {
        struct stat status {};
        return ::lstat(QFile::encodeName(path).constData(), &status) == 0;
    }

    void Remove(const QString& path) override {
        if (::unlink(QFile::encodeName(path).constData()) != 0) {
            ThrowFailure(QStringLiteral("删除"), path);
        }
    }

    void Rename(const QString& from, const QString& to) override {
        if (Exists(to)) {
            ThrowFailure(QStringLiteral("改名"), from, EEXIST);
        }
        if (::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0) {
            ThrowFailure(QStringLiteral("改名"), from);
        }
    }

    void SyncFolder(const QString& path) override {
        const QString folder = QFileInfo(path).absolutePath();
        const int descriptor =
            ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor < 0) {
            ThrowFailure(QStringLiteral("打开"), folder);
        }
        const int result = ::fsync(descriptor);
        const int error = errno;
        ::close(descriptor);
        // Some file systems, those of servers among them, know no such call on folders.
        if (result != 0 && error != EINVAL && error != ENOTSUP) {
            ThrowFailure(QStringLiteral("写入"), folder, error);
        }
    }

    QString ComputerName() override { return QSysInfo::machineHostName(); }
};

}  // namespace

FileSystem& NativeFiles() {
    static UnixFileSystem files;
    return files;
}

}  // namespace quorvane::access
