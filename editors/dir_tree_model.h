// The folders and files under some root folders, each folder read when it is asked for.
#pragma once

#include <QAbstractItemModel>
#include <QIcon>
#include <QTimer>
#include <array>
#include <deque>
#include <memory>
#include <vector>

#include "editors/folder_reader.h"

namespace quorvane {

class DirTreeModel : public QAbstractItemModel {
    Q_OBJECT

public:
    enum class Kind { Drive, Folder, File };

    explicit DirTreeModel(QObject* parent);
    ~DirTreeModel() override;

    // One picture a kind, shared by all items of the kind, in the order of Kind.
    void SetIcons(const std::array<QIcon, 3>& icons);
    // Forgets everything; what is added from now on holds this.
    void Clear(const TreeContent& content);
    // Adds a root folder, named as it is to be shown.
    void AddDrive(const QString& rootFolder);

    // Begins to read a folder that was not read before. It fills all at a time while the event loop runs;
    // then FolderRead is sent.
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
    void FolderRead(const QModelIndex& folder);

private:
    enum class State { Unread, Reading, Read };
    struct Node;

    Node& NodeOf(const QModelIndex& index) const;
    QModelIndex IndexOf(const Node& node) const;
    void ReadOn();
    void Fill(Node& folder, FolderReader& reader);

    std::unique_ptr<Node> m_top;  // its children are the root folders
    TreeContent m_content;
    std::array<QIcon, 3> m_icons;
    std::deque<Node*> m_toRead;              // folders; the first is being read
    std::unique_ptr<FolderReader> m_reader;  // of the first, once it is begun
    QTimer m_readOn;                         // fires when the event loop has nothing better to do
};

}  // namespace quorvane
