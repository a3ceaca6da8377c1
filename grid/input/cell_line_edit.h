// The text field of an open edit: a line editor into which a line end after a pasted text never comes.
#pragma once

#include <QClipboard>
#include <QLineEdit>

namespace quorvane {

class CellLineEdit : public QLineEdit {
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void Paste(QClipboard::Mode mode);
    void PopUpMenu(const QPoint& globalPosition);
};

}  // namespace quorvane
