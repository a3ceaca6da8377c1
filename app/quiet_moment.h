// When the program may speak up by itself.
#pragma once

class QWidget;

namespace quorvane {

// The window in front, for a message about the file or the edits. Null while a message in front of it would
// take away what the user is just doing: typing a text, holding a button of the mouse, choosing from a list
// or menu, answering another question.
QWidget* WindowForMessage(QWidget& mainWindow);

}  // namespace quorvane
