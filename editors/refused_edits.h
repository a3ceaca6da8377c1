// The list of the edits of an earlier run that could not be made again.
#pragma once

#include <QStringList>

class QWidget;

namespace quorvane {

// Shows the lines, which can be copied, until the user closes the list. Its object name is "refusedEdits".
void ShowRefusedEdits(QWidget* parent, const QStringList& lines);

}  // namespace quorvane
