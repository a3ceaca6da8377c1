#include "data/store/backup_copy.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include "data/connection.h"

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
    if (!copy.open(QIODevice::WriteOnly)) {
        ThrowFailure(copy);
    }
    for (QByteArray chunk = ReadChunk(source); !chunk.isEmpty(); chunk = ReadChunk(source)) {
        if (copy.write(chunk) != chunk.size()) {
            ThrowFailure(copy);
        }
    }
    if (!copy.commit()) {
        ThrowFailure(copy);
    }
}

void RequireSame(const CString& left, const CString& right) {
    QFile first(left);
    QFile second(right);
    Open(first);
    Open(second);
    QByteArray chunk;
    do {
        chunk = ReadChunk(first);
        if (chunk != ReadChunk(second)) {
            throw ProviderError(u"备份 %1 与 %2 不同"_s.arg(right, left));
        }
    } while (!chunk.isEmpty());
}

// Only what bears exactly such a name is ever deleted.
void DeleteOldCopies(const QFileInfo& file) {
    const QRegularExpression name(QRegularExpression::anchoredPattern(
        QRegularExpression::escape(file.fileName()) + u"\\.\\d{4}-\\d\\d-\\d\\d-\\d{6}\\.bak"_s));
    QDir folder = file.dir();
    const QStringList copies = folder.entryList(QDir::Files, QDir::Name).filter(name);
    for (qsizetype index = 0; index < copies.size() - kCopiesKept; ++index) {
        folder.remove(copies[index]);
    }
}

}  // namespace

CString MakeBackupCopy(const CString& path) {
    if (QFileInfo(path + u"-wal"_s).size() > 0) {
        throw ProviderError(u"另一个程序把 %1 的一部分保存在另一个文件(-wal)中"_s.arg(path));
    }
    CString copy = path + QDateTime::currentDateTime().toString(u"'.'yyyy-MM-dd-HHmmss'.bak'"_s);
    Copy(path, copy);
    RequireSame(path, copy);
    DeleteOldCopies(QFileInfo(path));
    return copy;
}

}  // namespace quorvane
