#include "grid/input/cell_line_edit.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>

namespace quorvane {
namespace {

// Other programs put a line end after each copied line, also after the only one.
QString WithoutLastLineEnd(QString text) {
    while (text.endsWith(u'\n') || text.endsWith(u'\r')) {
        text.chop(1);
    }
    return text;
}

}  // namespace

void CellLineEdit::Paste(QClipboard::Mode mode) {
    const QString text = WithoutLastLineEnd(QGuiApplication::clipboard()->text(mode));
    if (!text.isEmpty()) {
        insert(text);
    }
}

void CellLineEdit::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Paste)) {
        Paste(QClipboard::Clipboard);
        event->accept();
    } else if (event->keyCombination() == (Qt::CTRL | Qt::Key_Y)) {
        redo();  // its key on every platform; the toolkit knows it on one
        event->accept();
    } else if (event->key() == Qt::Key_Menu || event->keyCombination() == (Qt::SHIFT | Qt::Key_F10)) {
        PopUpMenu(mapToGlobal(cursorRect().bottomLeft()));  // the grid would end the edit and open its own
        event->accept();
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

void CellLineEdit::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton && QGuiApplication::clipboard()->supportsSelection()) {
        deselect();
        Paste(QClipboard::Selection);
    } else {
        QLineEdit::mouseReleaseEvent(event);
    }
}

void CellLineEdit::contextMenuEvent(QContextMenuEvent* event) {
    PopUpMenu(event->reason() == QContextMenuEvent::Keyboard ? mapToGlobal(cursorRect().bottomLeft())
                                                             : event->globalPos());
}

void CellLineEdit::PopUpMenu(const QPoint& globalPosition) {
    QMenu* menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // The toolkit gives its entry no other name than its text, in the user's language.
    for (QAction* action : menu->actions()) {
        if (action->text().startsWith(QLineEdit::tr("&Paste"))) {
            disconnect(action, &QAction::triggered, this, nullptr);
            connect(action, &QAction::triggered, this, [this] { Paste(QClipboard::Clipboard); });
        }
    }
    menu->popup(globalPosition);
}

void CellLineEdit::dropEvent(QDropEvent* event) {
    QMimeData text;
    text.setText(WithoutLastLineEnd(event->mimeData()->text()));
    QDropEvent clean(event->position(), event->possibleActions(), &text, event->buttons(),
                     event->modifiers());
    clean.setDropAction(event->dropAction());
    QLineEdit::dropEvent(&clean);
    event->setDropAction(clean.dropAction());
    event->setAccepted(clean.isAccepted());
}

}  // namespace quorvane
