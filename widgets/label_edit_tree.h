// LabelEditTree: a tree whose owner decides what becomes of a label that the user has edited in place.
#pragma once

#include <QPersistentModelIndex>
#include <QPointer>
#include <QTreeWidget>
#include <optional>

namespace quorvane {

// Items with the flag Qt::ItemIsEditable are edited by F2, a double click or a click on the selected item. A
// typed text never becomes an item's text by itself. The editor bears the object name "labelEdit".
class LabelEditTree : public QTreeWidget {
    Q_OBJECT

public:
    explicit LabelEditTree(QWidget* parent);

    // Opens the editor with the whole label selected.
    void EditLabel(QTreeWidgetItem* item);
    bool IsEditing() const { return !m_editor.isNull(); }
    // Ends an open edit as Enter would, and tells of one that has just ended before it returns.
    void EndEdit();

Q_SIGNALS:
    // An edit has ended; told once, after the editor has gone. The text is trimmed; for an edit that was
    // cancelled or left empty it is the item's own text.
    void LabelEdited(QTreeWidgetItem* item, const QString& text);
    // The user asks for a menu on an item, which is the current one then, or beside all items (null).
    void MenuRequested(QTreeWidgetItem* item, const QPoint& globalPosition);

protected:
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    class Delegate;

    void RequestMenuByKey();
    void TellEnd();

    QPointer<QWidget> m_editor;
    QPersistentModelIndex m_edited;
    std::optional<QString> m_typed;  // nothing: the edit was cancelled
    bool m_isEndUntold = false;
};

}  // namespace quorvane
