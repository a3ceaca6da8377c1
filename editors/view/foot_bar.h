// The bar at the foot of a grid, with the lines for finding, for replacing and for the filter. It is shown
// while one of its lines is.
#pragma once

#include <QWidget>

class QLineEdit;
class QToolButton;

namespace quorvane {

class CGridCtrl;

class GridFoot : public QWidget {
public:
    // Becomes the foot bar of the grid.
    explicit GridFoot(CGridCtrl& grid);

    // Puts a line below the others, hidden.
    void AddLine(QWidget* line);
    // Shows a line, or hides it; the grid gets the keyboard when a hidden line had it.
    void ShowLine(QWidget* line, bool isShown);

private:
    CGridCtrl& m_grid;
};

// A field and a button of such a line, as children of it. The button does not take the keyboard.
QLineEdit* AddField(QWidget* line, const QString& accessibleName, int characters);
QToolButton* AddButton(QWidget* line, const QString& text, const QString& toolTip);

}  // namespace quorvane
