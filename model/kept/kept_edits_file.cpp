#include "model/kept/kept_edits_file.h"

#include <QCborValue>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSaveFile>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

Q_LOGGING_CATEGORY(keptEdits, "quorvane.keptedits")

constexpr qint64 kLargestFile = 256LL * 1024 * 1024;
const CString kFormat = u"quorvane edits 1"_s;

void WriteFile(const CString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    const bool isWritten = file.open(QIODevice::WriteOnly) &&
                           file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
                           file.write(bytes) == bytes.size() && file.commit();
    if (!isWritten) {
        qCWarning(keptEdits) << path << file.errorString();
    }
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
    m_pool.start([path = m_path, database = m_database, make = std::move(make)] {
        const QCborMap map{{u"format"_s, kFormat}, {u"database"_s, database}, {u"edits"_s, make()}};
        WriteFile(path, map.toCborValue().toCbor());
    });
}

void KeptEditsFile::Remove() {
    m_pool.start([path = m_path] { QFile::remove(path); });
}

}  // namespace quorvane
