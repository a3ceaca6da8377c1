// LabelEditTree: a tree with labels that the user edits in place. The owner decides what happens to the typed
// text.
#pragma once

#include <QPersistentModelIndex>
#include <QPointer>
#include <QTreeWidget>
#include <optional>

namespace quorvane {

// F2, a double click or a click on the selected item edits an item with the flag Qt::ItemIsEditable. The tree
// never writes the typed text into the item. The object name of the editor is "labelEdit".
class LabelEditTree : public QTreeWidget {
    Q_OBJECT

public:
    explicit LabelEditTree(QWidget* parent);

    // Opens the editor with the whole label selected.
    void EditLabel(QTreeWidgetItem* item);
    bool IsEditing() const { return !m_editor.isNull(); }
    // Ends an open edit like Enter. Emits LabelEdited before it returns, also for an edit that has just
    // ended.
    void EndEdit();

Q_SIGNALS:
    // An edit has ended. Emitted once, after the editor is closed. The text is trimmed. For a cancelled or
    // empty edit, or one in which nothing was typed, it is the text of the item, and isTyped is false.
    void LabelEdited(QTreeWidgetItem* item, const QString& text, bool isTyped);
    // The user requests a menu for an item, which is now the current one, or for the free area (null).
    void MenuRequested(QTreeWidgetItem* item, const QPoint& globalPosition);

protected:
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    class Delegate;

    void RequestMenuByKey();
    void EmitEnd();

    QPointer<QWidget> m_editor;
    QPersistentModelIndex m_edited;
    std::optional<QString> m_typed;  // no value: cancelled, or nothing typed
    bool m_isEndPending = false;
};

}  // namespace quorvane
