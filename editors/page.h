// What the main dialog knows of a tab page, and all that it knows.
#pragma once

#include <QWidget>

namespace quorvane {

class CPage : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    // Whether the page holds edits that have not been submitted.
    virtual bool IsModified() const = 0;
    // Takes an edit that is still being typed into the page, as if its cell had been left.
    virtual void EndEditing() = 0;
    // Writes every pending change to the database and clears the modified flag. Always true.
    virtual bool Submit() = 0;
    // Fills the grid again from the page's working records.
    virtual void Refresh() = 0;
    // Deletes the selected rows, asking for each. False when nothing was selected or an answer was No.
    virtual bool DeleteSelected() = 0;
};

}  // namespace quorvane
