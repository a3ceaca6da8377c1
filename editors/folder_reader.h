// Reads what a folder holds a slice at a time, so that a folder of any size leaves the window alive.
#pragma once

#include <QDirIterator>
#include <QString>
#include <QStringList>
#include <chrono>
#include <vector>

#include "widgets/chinese_order.h"

namespace quorvane {

// Whether path ends in one of the extensions, each with its "."; case does not count.
bool HasExtension(const QString& path, const QStringList& extensions);

// What a folder's part of the tree shows.
struct TreeContent {
    bool withFiles = false;
    QStringList extensions;  // those of the files to show; none: all files
};

class FolderReader {
public:
    // A folder that cannot be read counts as empty.
    FolderReader(const QString& folder, TreeContent wanted);

    // Reads on for about that long. True when the folder is read.
    bool ReadFor(std::chrono::milliseconds time);

    // The names found so far, in the order in which a person looks for them. Leaves none behind.
    QStringList TakeFolders() { return TakeSorted(m_folders); }
    QStringList TakeFiles() { return TakeSorted(m_files); }

private:
    struct Entry {
        QCollatorSortKey key;
        QString name;
    };

    void ReadEntry();
    static QStringList TakeSorted(std::vector<Entry>& entries);

    TreeContent m_wanted;
    QDirIterator m_iterator;
    std::vector<Entry> m_folders;
    std::vector<Entry> m_files;
};

}  // namespace quorvane
