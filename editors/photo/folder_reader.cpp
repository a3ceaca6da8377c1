#include "editors/photo/folder_reader.h"

#include <QDirIterator>
#include <QFileInfo>
#include <filesystem>
#include <system_error>
#include <utility>

#include "model/view/pinyin_order.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

QDir::Filters Filters(bool withFiles) {
    const QDir::Filters folders = QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot;
    return withFiles ? folders | QDir::Files : folders;
}

// The waste bin of old file systems.
bool IsWasteBin(const QString& folder) {
    return folder == u"Recycled"_s;
}

QStringList Sorted(QStringList names) {
    SortFileNames(names);
    return names;
}

}  // namespace

bool HasExtension(const QString& path, const QStringList& extensions) {
    const qsizetype point = path.lastIndexOf(u'.');
    return point >= 0 && extensions.contains(path.mid(point), Qt::CaseInsensitive);
}

FolderContents ReadFolder(const QString& folder, const TreeContent& wanted) {
    QStringList folders;
    QStringList files;
    QDirIterator iterator(folder, Filters(wanted.withFiles));
    while (iterator.hasNext()) {
        const QFileInfo entry = iterator.nextFileInfo();
        const QString name = entry.fileName();
        if (entry.isDir()) {
            if (!IsWasteBin(name)) {
                folders += name;
            }
        } else if (wanted.extensions.isEmpty() || HasExtension(name, wanted.extensions)) {
            files += name;
        }
    }
    // The toolkit does not say that it could not read.
    std::error_code error;
    const std::filesystem::directory_iterator opened(QFileInfo(folder).filesystemFilePath(), error);
    return {.isFolder = QFileInfo(folder).isDir(),
            .folders = Sorted(std::move(folders)),
            .files = Sorted(std::move(files)),
            .isReadable = !error};
}

}  // namespace quorvane
