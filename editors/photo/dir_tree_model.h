// The folders and files under some root folders, each folder read when it is asked for.
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

    // One picture a kind, shared by all items of the kind, in the order of Kind.
    void SetIcons(const std::array<QIcon, 3>& icons);
    // Forgets everything, the folders that are being read included. What is added from now on holds this, and
    // is read by that.
    void Clear(const TreeContent& content, const FolderReader& reader);
    // Adds a root folder, named as it is to be shown.
    void AddDrive(const QString& rootFolder);

    // Begins to read a folder that was not read before, without waiting for its drive. It fills all at a time
    // while the event loop runs; then FolderRead is sent.
    void ReadFolder(const QModelIndex& folder);
    bool IsRead(const QModelIndex& folder) const;

    // With "/" as separator.
    QString FilePath(const QModelIndex& index) const;
    Kind KindOf(const QModelIndex& index) const;
    // The child with that name, or else one whose name differs in case alone; invalid when there is none.
    QModelIndex FindChild(const QModelIndex& folder, const QString& name) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    // isFolder is false when there is no such folder any more.
    void FolderRead(const QModelIndex& folder, bool isFolder);

private:
    enum class State { Unread, Reading, Read };
    struct Node;

    Node& NodeOf(const QModelIndex& index) const;
    QModelIndex IndexOf(const Node& node) const;
    void Fill(Node& folder, const FolderContents& contents);

    std::unique_ptr<Node> m_top;  // its children are the root folders
    TreeContent m_content;
    std::array<QIcon, 3> m_icons;
    FolderReader m_read;
    std::unique_ptr<AsyncReader> m_reading;  // another one after each Clear: results for what is gone are lost
};

}  // namespace quorvane
