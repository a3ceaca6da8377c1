// Reads what a folder holds, in the order in which a person looks for it.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace quorvane {

// Whether path ends in one of the extensions, each with its "."; case does not count.
bool HasExtension(const QString& path, const QStringList& extensions);

// What a folder's part of the tree shows.
struct TreeContent {
    bool withFiles = false;
    QStringList extensions;  // those of the files to show; none: all files
};

struct FolderContents {
    bool isFolder = false;
    QStringList folders;  // names
    QStringList files;    // names, of the files wanted
};

// Any thread may call it, and it may take as long as the folder's drive. What cannot be read counts as empty.
FolderContents ReadFolder(const QString& folder, const TreeContent& wanted);

using FolderReader = std::function<FolderContents(const QString& folder, const TreeContent& wanted)>;

}  // namespace quorvane
