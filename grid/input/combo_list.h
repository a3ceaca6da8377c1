// The list that drops down from a cell with choices.
#pragma once

#include <QListWidget>
#include <vector>

#include "grid/grid_types.h"

namespace quorvane {

class ComboList : public QListWidget {
    Q_OBJECT

public:
    // A closed list, owned by parent.
    ComboList(const std::vector<CString>& choices, const CString& current, QWidget* parent);
    // Drops down from a cell (global coordinates): below it or, where the screen ends, above it. At least as
    // wide as the cell.
    void DropFrom(const QRect& cell);

Q_SIGNALS:
    // One of the texts was picked. The list is closed already.
    void Chosen(const QString& text);

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void Choose(const QListWidgetItem* item);
};

}  // namespace quorvane
