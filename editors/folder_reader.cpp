#include "editors/folder_reader.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <algorithm>
#include <utility>

namespace quorvane {
namespace {

// The waste bin of old file systems holds nothing that a person looks for.
const QString kWasteBin = QStringLiteral("Recycled");

QDir::Filters Filters(bool withFiles) {
    const QDir::Filters folders = QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot;
    return withFiles ? folders | QDir::Files : folders;
}

}  // namespace

bool HasExtension(const QString& path, const QStringList& extensions) {
    const qsizetype point = path.lastIndexOf(u'.');
    return point >= 0 && extensions.contains(path.mid(point), Qt::CaseInsensitive);
}

FolderReader::FolderReader(const QString& folder, TreeContent wanted)
    : m_wanted(std::move(wanted)), m_iterator(folder, Filters(m_wanted.withFiles)) {}

bool FolderReader::ReadFor(std::chrono::milliseconds time) {
    const QDeadlineTimer deadline(time, Qt::PreciseTimer);
    while (m_iterator.hasNext()) {
        if (deadline.hasExpired()) {
            return false;
        }
        ReadEntry();
    }
    return true;
}

void FolderReader::ReadEntry() {
    const QFileInfo entry = m_iterator.nextFileInfo();
    const QString name = entry.fileName();
    if (entry.isDir()) {
        if (name != kWasteBin) {
            m_folders.push_back({FileNameKey(name), name});
        }
    } else if (m_wanted.extensions.isEmpty() || HasExtension(name, m_wanted.extensions)) {
        m_files.push_back({FileNameKey(name), name});
    }
}

QStringList FolderReader::TakeSorted(std::vector<Entry>& entries) {
    std::sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
        const int order = left.key.compare(right.key);
        return order != 0 ? order < 0 : left.name < right.name;
    });
    QStringList names;
    names.reserve(static_cast<qsizetype>(entries.size()));
    for (Entry& entry : entries) {
        names.push_back(std::move(entry.name));
    }
    entries.clear();
    return names;
}

}  // namespace quorvane
