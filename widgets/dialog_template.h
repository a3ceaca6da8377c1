// Dialogs as tables of controls in dialog units, so that they scale with the font and the screen.
//
// A horizontal dialog unit is a quarter of the font's average character width, a vertical one an eighth of
// its height, or less on a screen that would not hold the program's tallest dialog with its title bar.
#pragma once

#include <QFont>
#include <QHBoxLayout>
#include <QRect>
#include <QString>
#include <functional>
#include <span>

class QWidget;

namespace quorvane {

enum class ControlKind {
    PushButton,
    RadioButton,
    DropDownList,  // CEaseComboBox
    Label,
    Edit,    // one line of text
    Frame,   // reserves a place, for instance for a grid; never shown
    Custom,  // of a class of the dialog
    TabControl,
    TreeView,  // QTreeWidget
};

struct DialogControl {
    int id;
    ControlKind kind;
    const char16_t* text;
    QRect units;  // dialog units
};

// The smallest distance in the toolkit's pixels that is a whole number of pixels of the screen: 1, or more
// where the scale of the screen is no whole number. A frame loses each of its lines that begins in between.
int WholePixelStep();
// The nearest rectangle whose first and last lines are at multiples of it.
QRect ToWholePixels(const QRect& rect);

// A row of widgets in rectangles of that kind, directly in a window.
class WholePixelRow : public QHBoxLayout {
public:
    void setGeometry(const QRect& rect) override;
};

class DialogUnits {
public:
    explicit DialogUnits(const QFont& font);
    DialogUnits(const QFont& font, int screenHeight);  // in pixels
    // On whole pixels of the screen.
    QRect ToPixels(const QRect& units) const;
    QSize ToPixels(const QSize& units) const;

private:
    double m_baseWidth;   // pixels, average character width
    double m_baseHeight;  // pixels, character height
};

// Creates the custom control with that id as a child of dialog.
using ControlMaker = std::function<QWidget*(int id, QWidget* dialog)>;

// Creates the controls as children of dialog and places them by the dialog's font. The order of the table is
// the tab order. makeCustom creates the custom controls.
void CreateControls(QWidget* dialog, std::span<const DialogControl> controls,
                    const ControlMaker& makeCustom = {});

// The control with that id, which must exist and be of that class.
QWidget* DialogItem(const QWidget* dialog, int id);
template <typename Widget>
Widget* DialogItem(const QWidget* dialog, int id) {
    return qobject_cast<Widget*>(DialogItem(dialog, id));
}

}  // namespace quorvane
