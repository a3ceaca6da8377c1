#include "data/store/access/disk/lock_file.h"

#include <QFileInfo>
#include <QStringList>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

// One slot a user: the computer's name and the user's, padded with zeros.
constexpr qsizetype kNameLength = 32;
constexpr qsizetype kSlotLength = 2 * kNameLength;
constexpr qsizetype kMostSlots = 255;
constexpr QByteArrayView kOurUser("quorvane");

QString LockPath(const QString& databasePath) {
    const QFileInfo info(databasePath);
    return info.path() + u'/' + info.completeBaseName() + u".ldb"_s;
}

QByteArray Padded(const QByteArray& name) {
    return name.left(kNameLength - 1).leftJustified(kNameLength, '\0');
}

QByteArray OurSlot(FileSystem& files) {
    return Padded(files.ComputerName().toLocal8Bit()) + Padded(kOurUser.toByteArray());
}

QByteArray ReadSlots(const File& file) {
    const qint64 size = std::min(file.Stamp().size, qint64{kSlotLength * kMostSlots});
    QByteArray bytes(static_cast<qsizetype>(size), Qt::Uninitialized);
    file.Read(0, ByteSpan(bytes.data(), static_cast<std::size_t>(bytes.size())));
    return bytes;
}

QString ComputerNames(const QByteArray& bytes) {
    QStringList names;
    for (qsizetype at = 0; at < bytes.size(); at += kSlotLength) {
        const QByteArray name = bytes.mid(at, kNameLength);
        const qsizetype end = name.indexOf('\0');
        names += QString::fromLocal8Bit(end < 0 ? name : name.first(end));
    }
    names.removeDuplicates();
    names.removeAll(QString());
    return names.isEmpty() ? u"其他程序"_s : names.join(u"、"_s);
}

}  // namespace

LockFile::LockFile(FileSystem& files, const QString& databasePath)
    : m_files(&files), m_path(LockPath(databasePath)) {
    const QByteArray slot = OurSlot(files);
    if (!files.Exists(m_path)) {
        m_file = files.Open(m_path, FileSystem::Mode::CreateNew);
        m_file->Lock();
        m_file->Write(0, slot);
        return;
    }
    auto file = files.Open(m_path, FileSystem::Mode::Read);
    const QByteArray found = ReadSlots(*file);
    // Not whole when the program ended before its slot was on the disk. While it lives it holds the file.
    const bool isOurs = slot.startsWith(found) || found.count('\0') == found.size();
    if (isOurs && file->Lock()) {
        m_file = std::move(file);
        return;
    }
    throw AccessError(u"%1正在使用该文件(见 %2;确认无人使用后,可以删除 %2)"_s.arg(
                          ComputerNames(found), QFileInfo(m_path).fileName()),
                      Fault::InUse);
}

LockFile::~LockFile() {
    try {
        m_files->Remove(m_path);
    } catch (const std::exception&) {
        // A lock file that stays is taken over at the next opening.
    }
}

}  // namespace quorvane::access
