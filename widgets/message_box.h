// The one message box of the program, with Chinese buttons.
#pragma once

#include <QString>

class QWidget;

namespace quorvane {

enum class MessageButtons { Ok, YesNo, YesNoCancel, YesNoAll };
enum class MessageIcon { Exclamation, Question };
enum class MessageAnswer { Ok, Yes, No, Cancel, YesToAll };

// Shows text under caption (empty: the application's name) and waits for an answer. The text is plain text; a
// text too long for the screen is cut in the middle. The first button is the default. Esc and the close box
// answer Cancel, or Ok when that is the only button. They do not answer a Yes/No question, with or without
// "Yes to all". The object name of the box is "messageBox".
MessageAnswer ShowMessage(QWidget* parent, const QString& text, const QString& caption = {},
                          MessageButtons buttons = MessageButtons::Ok,
                          MessageIcon icon = MessageIcon::Exclamation);

}  // namespace quorvane
