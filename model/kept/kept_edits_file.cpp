#include "model/kept/kept_edits_file.h"

#include <QCborValue>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>
#include <QSaveFile>
#include <filesystem>
#include <system_error>
#include <utility>

#include "data/write_all.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr qint64 kLargestFile = 256LL * 1024 * 1024;
const CString kFormat = u"quorvane edits 1"_s;

// Returns why the file could not be written; empty when it was.
CString WriteFile(const CString& path, const QByteArray& bytes) {
    std::error_code error;
    std::filesystem::create_directories(QFileInfo(path).filesystemAbsolutePath(), error);
    if (error) {
        return CString::fromLocal8Bit(error.message());
    }
    QSaveFile file(path);
    // Unbuffered, because commit() reports no failure to write the buffer.
    const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                           file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
                           WriteAll(file, bytes) && file.commit();
    return isWritten ? CString() : file.errorString();
}

// Likewise. A file that is not there counts as removed.
CString RemoveFile(const CString& path) {
    QFile file(path);
    return file.remove() || !file.exists() ? CString() : file.errorString();
}

}  // namespace

KeptEditsFile::KeptEditsFile(const CString& folder, CString database) : m_database(std::move(database)) {
    const QByteArray hash = QCryptographicHash::hash(m_database.toUtf8(), QCryptographicHash::Sha256);
    m_path = folder + u"/edits-"_s + CString::fromLatin1(hash.toHex().first(32)) + u".cbor"_s;
    m_pool.setMaxThreadCount(1);
}

KeptEditsFile::~KeptEditsFile() {
    m_pool.waitForDone();
}

std::optional<QCborMap> KeptEditsFile::Read() const {
    QFile file(m_path);
    if (!QFileInfo(m_path).isFile() || file.size() > kLargestFile || !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    QCborParserError error;
    const QCborMap map = QCborValue::fromCbor(file.read(kLargestFile), &error).toMap();
    if (error.error != QCborError::NoError || map[u"format"_s].toString() != kFormat ||
        map[u"database"_s].toString() != m_database) {
        return std::nullopt;
    }
    return map[u"edits"_s].toMap();
}

void KeptEditsFile::Write(std::function<QCborMap()> make) {
    m_pool.start([this, make = std::move(make)] {
        const QCborMap map{{u"format"_s, kFormat}, {u"database"_s, m_database}, {u"edits"_s, make()}};
        SetLastFailure(WriteFile(m_path, map.toCborValue().toCbor()));
    });
}

void KeptEditsFile::Remove() {
    m_pool.start([this] { SetLastFailure(RemoveFile(m_path)); });
}

CString KeptEditsFile::LastFailure() const {
    const QMutexLocker locker(&m_mutex);
    return m_lastFailure;
}

void KeptEditsFile::SetLastFailure(const CString& reason) {
    const QMutexLocker locker(&m_mutex);
    m_lastFailure = reason;
}

}  // namespace quorvane
