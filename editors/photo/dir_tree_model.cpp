#include "editors/photo/dir_tree_model.h"

#include <QDir>
#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

// Some slow drives must not delay a fast one.
constexpr int kReadAtOnce = 4;

}  // namespace

struct DirTreeModel::Node {
    QString name;
    Kind kind = Kind::Folder;
    State state = State::Unread;
    bool isReadable = true;
    int row = 0;
    Node* parent = nullptr;
    std::vector<std::unique_ptr<Node>> children;

    void Add(const QString& childName, Kind childKind) {
        auto child = std::make_unique<Node>();
        child->name = childName;
        child->kind = childKind;
        child->state = childKind == Kind::File ? State::Read : State::Unread;
        child->row = static_cast<int>(children.size());
        child->parent = this;
        children.push_back(std::move(child));
    }
};

DirTreeModel::DirTreeModel(QObject* parent) : QAbstractItemModel(parent), m_top(std::make_unique<Node>()) {}

DirTreeModel::~DirTreeModel() = default;

void DirTreeModel::SetIcons(const std::array<QIcon, 3>& icons) {
    m_icons = icons;
}

void DirTreeModel::Clear(const TreeContent& content, const FolderReader& reader) {
    beginResetModel();
    m_top = std::make_unique<Node>();
    m_looks.clear();
    m_content = content;
    m_read = reader;
    m_reading = std::make_unique<AsyncReader>(kReadAtOnce);
    endResetModel();
}

void DirTreeModel::AddDrive(const QString& rootFolder) {
    const int row = rowCount();
    beginInsertRows({}, row, row);
    m_top->Add(rootFolder, Kind::Drive);
    m_looks.emplace_back();
    endInsertRows();
}

void DirTreeModel::SetDriveLook(const QModelIndex& drive, const QString& name, const QIcon& icon) {
    m_looks[static_cast<size_t>(drive.row())] = {name, icon};
    Q_EMIT dataChanged(drive, drive);
}

void DirTreeModel::ReadFolder(const QModelIndex& folder) {
    Node& node = NodeOf(folder);
    if (node.state == State::Unread) {
        node.state = State::Reading;
        m_reading->Run(
            [read = m_read, path = FilePath(folder), wanted = m_content] { return read(path, wanted); },
            [this, &node](const FolderContents& contents) { Fill(node, contents); });
    }
}

bool DirTreeModel::IsRead(const QModelIndex& folder) const {
    return NodeOf(folder).state == State::Read;
}

void DirTreeModel::Fill(Node& folder, const FolderContents& contents) {
    const QModelIndex index = IndexOf(folder);
    const auto count = static_cast<int>(contents.folders.size() + contents.files.size());
    folder.state = State::Read;
    folder.isReadable = contents.isReadable;
    if (count == 0) {
        // The view removes its mark for opening, and shows whether the folder could be read.
        Q_EMIT dataChanged(index, index);
    } else {
        beginInsertRows(index, 0, count - 1);
        folder.children.reserve(static_cast<size_t>(count));
        for (const QString& name : contents.folders) {
            folder.Add(name, Kind::Folder);
        }
        for (const QString& name : contents.files) {
            folder.Add(name, Kind::File);
        }
        endInsertRows();
    }
    Q_EMIT FolderRead(index, contents.isFolder);
}

QString DirTreeModel::FilePath(const QModelIndex& index) const {
    QString path;
    for (const Node* node = &NodeOf(index); node->parent != nullptr; node = node->parent) {
        if (node->kind == Kind::Drive) {
            return QDir::fromNativeSeparators(node->name) + path;
        }
        path = path.isEmpty() ? node->name : node->name + u'/' + path;
    }
    return path;
}

DirTreeModel::Kind DirTreeModel::KindOf(const QModelIndex& index) const {
    return NodeOf(index).kind;
}

QModelIndex DirTreeModel::FindChild(const QModelIndex& folder, const QString& name) const {
    const auto& children = NodeOf(folder).children;
    for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        const auto found = std::find_if(children.begin(), children.end(), [&](const auto& child) {
            return child->name.compare(name, sensitivity) == 0;
        });
        if (found != children.end()) {
            return IndexOf(**found);
        }
    }
    return {};
}

DirTreeModel::Node& DirTreeModel::NodeOf(const QModelIndex& index) const {
    return index.isValid() ? *static_cast<Node*>(index.internalPointer()) : *m_top;
}

QModelIndex DirTreeModel::IndexOf(const Node& node) const {
    return node.parent == nullptr ? QModelIndex() : createIndex(node.row, 0, &node);
}

QModelIndex DirTreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) {
        return {};
    }
    return IndexOf(*NodeOf(parent).children[static_cast<size_t>(row)]);
}

QModelIndex DirTreeModel::parent(const QModelIndex& child) const {
    return child.isValid() ? IndexOf(*NodeOf(child).parent) : QModelIndex();
}

int DirTreeModel::rowCount(const QModelIndex& parent) const {
    return static_cast<int>(NodeOf(parent).children.size());
}

int DirTreeModel::columnCount(const QModelIndex& /*parent*/) const {
    return 1;
}

// A folder that has not been read can be opened.
bool DirTreeModel::hasChildren(const QModelIndex& parent) const {
    const Node& node = NodeOf(parent);
    return parent.isValid() && node.state != State::Read ? true : !node.children.empty();
}

QVariant DirTreeModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const Node& node = NodeOf(index);
    const Look look = node.kind == Kind::Drive ? m_looks[static_cast<size_t>(node.row)] : Look();
    if (role == Qt::DisplayRole) {
        const QString name = look.name.isEmpty() ? node.name : look.name;
        return node.isReadable ? name : name + u" (不能读取)"_s;
    }
    if (role == Qt::DecorationRole) {
        return look.icon.isNull() ? m_icons[static_cast<size_t>(node.kind)] : look.icon;
    }
    return {};
}

Qt::ItemFlags DirTreeModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags common = QAbstractItemModel::flags(index);
    return index.isValid() && KindOf(index) == Kind::File ? common | Qt::ItemNeverHasChildren : common;
}

}  // namespace quorvane
