#include "widgets/label_edit_tree.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMetaObject>
#include <QStyledItemDelegate>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

class LabelEditTree::Delegate : public QStyledItemDelegate {
public:
    explicit Delegate(LabelEditTree* tree) : QStyledItemDelegate(tree), m_tree(*tree) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
        editor->setObjectName(u"labelEdit"_s);
        m_tree.m_editor = editor;
        m_tree.m_edited = index;
        m_tree.m_typed.reset();
        return editor;
    }

    void setModelData(QWidget* editor, QAbstractItemModel* /*model*/,
                      const QModelIndex& /*index*/) const override {
        const auto* line = qobject_cast<const QLineEdit*>(editor);
        if (line->isModified()) {
            m_tree.m_typed = line->text();
        }
    }

protected:
    // Switching to another program ends no edit.
    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool leavesWindow =
            event->type() == QEvent::FocusOut &&
            static_cast<const QFocusEvent&>(*event).reason() == Qt::ActiveWindowFocusReason;
        return !leavesWindow && QStyledItemDelegate::eventFilter(watched, event);
    }

private:
    LabelEditTree& m_tree;
};

LabelEditTree::LabelEditTree(QWidget* parent) : QTreeWidget(parent) {
    setItemDelegate(new Delegate(this));
    setHeaderHidden(true);
    setEditTriggers(EditKeyPressed | DoubleClicked | SelectedClicked);
}

void LabelEditTree::EditLabel(QTreeWidgetItem* item) {
    setCurrentItem(item);
    editItem(item);
}

// The view calls this for each way of ending, and again when the closing editor loses the focus.
void LabelEditTree::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint /*hint*/) {
    const bool ends = editor == m_editor;
    if (ends) {
        m_editor.clear();
        editor->setObjectName(QString());
    }
    // No key continues the edit in another item.
    QTreeWidget::closeEditor(editor, QAbstractItemDelegate::NoHint);
    if (ends) {
        // The receiver may open a message box or refill the tree. The view is not ready for that here.
        m_isEndPending = true;
        QMetaObject::invokeMethod(this, &LabelEditTree::EmitEnd, Qt::QueuedConnection);
    }
}

void LabelEditTree::EndEdit() {
    if (IsEditing()) {
        QWidget* editor = m_editor;
        commitData(editor);
        closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
    EmitEnd();
}

void LabelEditTree::EmitEnd() {
    if (!std::exchange(m_isEndPending, false)) {
        return;
    }
    QTreeWidgetItem* item = itemFromIndex(m_edited);
    if (item != nullptr) {
        const QString text = m_typed.value_or(QString()).trimmed();
        Q_EMIT LabelEdited(item, text.isEmpty() ? item->text(0) : text, !text.isEmpty());
    }
}

void LabelEditTree::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        RequestMenuByKey();
        return;
    }
    EndEdit();
    if (IsEditing()) {
        return;
    }
    QTreeWidgetItem* item = itemAt(event->pos());
    if (item != nullptr) {
        setCurrentItem(item);
    }
    Q_EMIT MenuRequested(item, event->globalPos());
}

void LabelEditTree::keyPressEvent(QKeyEvent* event) {
    // Some platforms send no context menu event for these keys.
    const bool callsMenu = event->key() == Qt::Key_Menu ||
                           (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier);
    if (callsMenu) {
        RequestMenuByKey();
    } else {
        QTreeWidget::keyPressEvent(event);
    }
}

void LabelEditTree::RequestMenuByKey() {
    EndEdit();
    if (IsEditing()) {
        return;
    }
    QTreeWidgetItem* item = currentItem();
    if (item != nullptr) {
        scrollToItem(item);
    }
    const QRect rect = item == nullptr ? QRect() : visualItemRect(item);
    Q_EMIT MenuRequested(item, viewport()->mapToGlobal(rect.bottomLeft()));
}

}  // namespace quorvane
