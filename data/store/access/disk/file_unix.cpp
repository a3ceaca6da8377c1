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

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

[[noreturn]] void ThrowFailure(const QString& action, const QString& path, int error = errno) {
    const bool isForbidden = error == EACCES || error == EPERM || error == EROFS;
    const bool isFull = error == ENOSPC || error == EDQUOT;
    throw AccessError(u"不能%2 %1:%3"_s.arg(path, action, QString::fromLocal8Bit(std::strerror(error))),
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
            ThrowFailure(u"查看"_s, m_path);
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
                ThrowFailure(u"读取"_s, m_path, done == 0 ? EIO : errno);
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
                ThrowFailure(u"写入"_s, m_path, done == 0 ? ENOSPC : errno);
            }
            bytes = bytes.sliced(done);
            offset += done;
        }
    }

    void Sync() override {
        if (::fdatasync(m_descriptor) != 0) {
            ThrowFailure(u"写入"_s, m_path);
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
            ThrowFailure(mode == Mode::CreateNew ? u"新建"_s : u"打开"_s, path);
        }
        return file;
    }

    bool Exists(const QString& path) override {
        struct stat status {};
        return ::lstat(QFile::encodeName(path).constData(), &status) == 0;
    }

    void Remove(const QString& path) override {
        if (::unlink(QFile::encodeName(path).constData()) != 0) {
            ThrowFailure(u"删除"_s, path);
        }
    }

    void Rename(const QString& from, const QString& to) override {
        if (Exists(to)) {
            ThrowFailure(u"改名"_s, from, EEXIST);
        }
        if (::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0) {
            ThrowFailure(u"改名"_s, from);
        }
    }

    void SyncFolder(const QString& path) override {
        const QString folder = QFileInfo(path).absolutePath();
        const int descriptor =
            ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor < 0) {
            ThrowFailure(u"打开"_s, folder);
        }
        const int result = ::fsync(descriptor);
        const int error = errno;
        ::close(descriptor);
        // Some file systems, those of servers among them, know no such call on folders.
        if (result != 0 && error != EINVAL && error != ENOTSUP) {
            ThrowFailure(u"写入"_s, folder, error);
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
