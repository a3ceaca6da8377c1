#include "editors/photo/drives.h"

#include <QDir>
#include <QFile>
#include <algorithm>

namespace quorvane {
namespace {

#ifdef Q_OS_WIN
constexpr Qt::CaseSensitivity kPathCase = Qt::CaseInsensitive;
#else
constexpr Qt::CaseSensitivity kPathCase = Qt::CaseSensitive;
#endif

QString WithTrailingSeparator(const QString& folder) {
    return QDir::toNativeSeparators(folder.endsWith(u'/') ? folder : folder + u'/');
}

// In the table a character that would end a field is a backslash and its three octal digits.
QString FolderOfField(const QByteArray& field) {
    QByteArray folder;
    for (qsizetype at = 0; at < field.size(); ++at) {
        const bool escaped = field[at] == '\\';
        folder += escaped ? static_cast<char>(field.mid(at + 1, 3).toInt(nullptr, 8)) : field[at];
        at += escaped ? 3 : 0;
    }
    return QFile::decodeName(folder);
}

// Whether a volume holds a person's files rather than a part of the running system.
bool IsPersonsVolume(const QString& rootPath, const QString& fileSystemType) {
    static const QStringList systemTypes{
        QStringLiteral("autofs"),   QStringLiteral("cgroup"),      QStringLiteral("cgroup2"),
        QStringLiteral("devtmpfs"), QStringLiteral("fuse.portal"), QStringLiteral("overlay"),
        QStringLiteral("proc"),     QStringLiteral("ramfs"),       QStringLiteral("squashfs"),
        QStringLiteral("sysfs"),    QStringLiteral("tmpfs")};
    static const QStringList systemFolders{
        QStringLiteral("/boot"), QStringLiteral("/dev"), QStringLiteral("/efi"),  QStringLiteral("/etc"),
        QStringLiteral("/proc"), QStringLiteral("/run"), QStringLiteral("/snap"), QStringLiteral("/sys"),
        QStringLiteral("/tmp"),  QStringLiteral("/usr"), QStringLiteral("/var")};
    // Shares, wherever the desktop has mounted them.
    static const QStringList shareTypes{QStringLiteral("9p"),         QStringLiteral("cifs"),
                                        QStringLiteral("davfs"),      QStringLiteral("fuse.gvfsd-fuse"),
                                        QStringLiteral("fuse.sshfs"), QStringLiteral("nfs"),
                                        QStringLiteral("nfs4"),       QStringLiteral("smb3")};
    if (systemTypes.contains(fileSystemType)) {
        return false;
    }
    if (shareTypes.contains(fileSystemType)) {
        return true;
    }
    const auto holdsRoot = [&rootPath](const QString& folder) {
        return rootPath == folder || rootPath.startsWith(folder + u'/');
    };
    return rootPath.startsWith(QStringLiteral("/run/media/")) ||
           std::none_of(systemFolders.begin(), systemFolders.end(), holdsRoot);
}

}  // namespace

QStringList LogicalDrives() {
    QStringList drives;
    for (const QFileInfo& drive : QDir::drives()) {
        drives += WithTrailingSeparator(drive.absoluteFilePath());
    }
    for (const QString& folder : PersonsFolders(MountTable())) {
        drives += WithTrailingSeparator(folder);
    }
    drives.removeDuplicates();
    return drives;
}

// A line has six fields, of which the fifth is the folder, any number of others, a "-", and then the type.
QStringList PersonsFolders(const QByteArray& mountTable) {
    constexpr int folderField = 4;
    constexpr int firstOptionalField = 6;
    QStringList folders;
    for (const QByteArray& line : mountTable.split('\n')) {
        const QByteArrayList fields = line.split(' ');
        const qsizetype type = fields.indexOf(QByteArrayLiteral("-"), firstOptionalField) + 1;
        if (type == 0 || type >= fields.size()) {
            continue;
        }
        const QString folder = FolderOfField(fields[folderField]);
        if (IsPersonsVolume(folder, QString::fromLatin1(fields[type]))) {
            folders += folder;
        }
    }
    folders.sort();
    return folders;
}

QString DriveOfPath(const QString& path, const QStringList& drives) {
    const QString folder = WithTrailingSeparator(QDir::fromNativeSeparators(path));
    QString innermost;
    for (const QString& drive : drives) {
        if (drive.size() > innermost.size() && folder.startsWith(drive, kPathCase)) {
            innermost = drive;
        }
    }
    return innermost;
}

}  // namespace quorvane
