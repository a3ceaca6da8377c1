// The model of folders and files under some root folders. A folder is read on request.
#pragma once

#include <QAbstractItemModel>
#include <QIcon>
#include <array>
#include <memory>
#include <vector>

#include "editors/photo/folder_reader.h"
#include "model/async_reader.h"

namespace quorvane {

class DirTreeModel : public QAbstractItemModel {
    Q_OBJECT

public:
    enum class Kind { Drive, Folder, File };

    explicit DirTreeModel(QObject* parent);
    ~DirTreeModel() override;

    // One icon for each kind, in the order of Kind.
    void SetIcons(const std::array<QIcon, 3>& icons);
    // Removes all items, and drops the results of folders that are still being read. Sets what the items
    // added later show, and how they are read.
    void Clear(const TreeContent& content, const FolderReader& reader);
    // Adds a root folder under the name to show.
    void AddDrive(const QString& rootFolder);
    // Shows a root folder under another name and icon. What is empty stays as it is.
    void SetDriveLook(const QModelIndex& drive, const QString& name, const QIcon& icon);

    // Starts to read a folder that has not been read yet, and returns at once. The event loop later adds all
    // children together and then emits FolderRead.
    void ReadFolder(const QModelIndex& folder);
    bool IsRead(const QModelIndex& folder) const;

    // The path with "/" as separator.
    QString FilePath(const QModelIndex& index) const;
    Kind KindOf(const QModelIndex& index) const;
    // The child with that name, or one whose name differs only in case, or an invalid index.
    QModelIndex FindChild(const QModelIndex& folder, const QString& name) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    // isFolder is false when the folder no longer exists.
    void FolderRead(const QModelIndex& folder, bool isFolder);

private:
    enum class State { Unread, Reading, Read };
    struct Look {
        QString name;
        QIcon icon;
    };
    struct Node;

    Node& NodeOf(const QModelIndex& index) const;
    QModelIndex IndexOf(const Node& node) const;
    void Fill(Node& folder, const FolderContents& contents);

    std::unique_ptr<Node> m_top;  // its children are the root folders
    std::vector<Look> m_looks;    // of the root folders, in their order
    TreeContent m_content;
    std::array<QIcon, 3> m_icons;
    FolderReader m_read;
    std::unique_ptr<AsyncReader> m_reading;  // replaced by Clear, which drops its pending results
};

}  // namespace quorvane
