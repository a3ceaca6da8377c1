// Reads the contents of a folder, sorted by pinyin and by numbers.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace quorvane {

// Whether path ends in one of the extensions, each with its ".", in upper or lower case.
bool HasExtension(const QString& path, const QStringList& extensions);

// What the tree shows of a folder.
struct TreeContent {
    bool withFiles = false;
    QStringList extensions;  // of the files to show; none: all files
};

struct FolderContents {
    bool isFolder = false;
    QStringList folders;  // names
    QStringList files;    // names
    bool isReadable = true;
};

// Thread-safe. It takes as long as the drive does.
FolderContents ReadFolder(const QString& folder, const TreeContent& wanted);

using FolderReader = std::function<FolderContents(const QString& folder, const TreeContent& wanted)>;

}  // namespace quorvane
