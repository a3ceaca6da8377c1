#include "editors/photo/folder_reader.h"

#include <QDirIterator>
#include <QFileInfo>
#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "widgets/chinese_order.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

struct Entry {
    explicit Entry(const QString& entryName) : key(FileNameKey(entryName)), name(entryName) {}

    QCollatorSortKey key;
    QString name;
};

QDir::Filters Filters(bool withFiles) {
    const QDir::Filters folders = QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot;
    return withFiles ? folders | QDir::Files : folders;
}

// The waste bin of old file systems.
bool IsWasteBin(const QString& folder) {
    return folder == u"Recycled"_s;
}

QStringList SortedNames(std::vector<Entry>& entries) {
    std::sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
        const int order = left.key.compare(right.key);
        return order != 0 ? order < 0 : left.name < right.name;
    });
    QStringList names;
    names.reserve(static_cast<qsizetype>(entries.size()));
    for (Entry& entry : entries) {
        names.push_back(std::move(entry.name));
    }
    return names;
}

}  // namespace

bool HasExtension(const QString& path, const QStringList& extensions) {
    const qsizetype point = path.lastIndexOf(u'.');
    return point >= 0 && extensions.contains(path.mid(point), Qt::CaseInsensitive);
}

FolderContents ReadFolder(const QString& folder, const TreeContent& wanted) {
    std::vector<Entry> folders;
    std::vector<Entry> files;
    QDirIterator iterator(folder, Filters(wanted.withFiles));
    while (iterator.hasNext()) {
        const QFileInfo entry = iterator.nextFileInfo();
        const QString name = entry.fileName();
        if (entry.isDir()) {
            if (!IsWasteBin(name)) {
                folders.emplace_back(name);
            }
        } else if (wanted.extensions.isEmpty() || HasExtension(name, wanted.extensions)) {
            files.emplace_back(name);
        }
    }
    // The toolkit does not say that it could not read.
    std::error_code error;
    const std::filesystem::directory_iterator opened(QFileInfo(folder).filesystemFilePath(), error);
    return {.isFolder = QFileInfo(folder).isDir(),
            .folders = SortedNames(folders),
            .files = SortedNames(files),
            .isReadable = !error};
}

}  // namespace quorvane
