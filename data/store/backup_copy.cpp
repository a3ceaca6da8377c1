#include "data/store/backup_copy.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include "data/connection.h"
#include "data/write_all.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

constexpr qint64 kChunk = 1 << 20;
constexpr qsizetype kCopiesKept = 3;

[[noreturn]] void ThrowFailure(const QFileDevice& file) {
    throw ProviderError(u"%1: %2"_s.arg(file.fileName(), file.errorString()));
}

QByteArray ReadChunk(QFile& file) {
    QByteArray chunk = file.read(kChunk);
    if (file.error() != QFileDevice::NoError) {
        ThrowFailure(file);
    }
    return chunk;
}

void Open(QFile& file) {
    if (!file.open(QIODevice::ReadOnly)) {
        ThrowFailure(file);
    }
}

void Copy(const CString& from, const CString& to) {
    QFile source(from);
    Open(source);
    QSaveFile copy(to);
    // Unbuffered, because commit() reports no failure to write the buffer.
    if (!copy.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        ThrowFailure(copy);
    }
    for (QByteArray chunk = ReadChunk(source); !chunk.isEmpty(); chunk = ReadChunk(source)) {
        if (!WriteAll(copy, chunk)) {
            ThrowFailure(copy);
        }
    }
    if (!copy.commit()) {
        ThrowFailure(copy);
    }
}

bool AreSame(const CString& left, const CString& right) {
    QFile first(left);
    QFile second(right);
    Open(first);
    Open(second);
    QByteArray chunk;
    do {
        chunk = ReadChunk(first);
        if (chunk != ReadChunk(second)) {
            return false;
        }
    } while (!chunk.isEmpty());
    return true;
}

// The paths of the copies, the oldest first. Only what bears exactly such a name is ever deleted.
QStringList CopiesOf(const QFileInfo& file) {
    const QRegularExpression name(QRegularExpression::anchoredPattern(
        QRegularExpression::escape(file.fileName()) + u"\\.\\d{4}-\\d\\d-\\d\\d-\\d{6}\\.bak"_s));
    QStringList copies = file.dir().entryList(QDir::Files | QDir::NoSymLinks, QDir::Name).filter(name);
    for (QString& copy : copies) {
        copy = file.dir().filePath(copy);
    }
    return copies;
}

CString NewName(const CString& path) {
    for (QDateTime time = QDateTime::currentDateTime();; time = time.addSecs(1)) {
        CString name = path + time.toString(u"'.'yyyy-MM-dd-HHmmss'.bak'"_s);
        if (!QFileInfo::exists(name)) {
            return name;
        }
    }
}

bool IsCopy(const CString& copy, const CString& path) {
    try {
        return AreSame(path, copy);
    } catch (const ProviderError&) {
        return false;  // cannot be read, say
    }
}

}  // namespace

CString MakeBackupCopy(const CString& path) {
    if (QFileInfo(path + u"-wal"_s).size() > 0) {
        throw ProviderError(u"另一个程序把 %1 的一部分保存在另一个文件(-wal)中"_s.arg(path));
    }
    const QStringList others = CopiesOf(QFileInfo(path));
    if (!others.isEmpty() && IsCopy(others.last(), path)) {
        return others.last();
    }
    CString copy = NewName(path);
    Copy(path, copy);
    if (!AreSame(path, copy)) {
        throw ProviderError(u"备份 %1 与 %2 不同"_s.arg(copy, path));
    }
    for (qsizetype index = 0; index <= others.size() - kCopiesKept; ++index) {
        QFile::remove(others[index]);
    }
    return copy;
}

}  // namespace quorvane
