// Everything that tells or asks the user: one modal box with Chinese buttons.
#pragma once

#include <QString>

class QWidget;

namespace quorvane {

enum class MessageButtons { Ok, YesNo, YesNoCancel };
enum class MessageIcon { Exclamation, Question };
enum class MessageAnswer { Ok, Yes, No, Cancel };

// Shows text under caption (empty: the application's name) and waits for an answer. The text is shown as it
// stands, without markup; one too long for a screen is cut in its middle. The first button is the default.
// Esc and the close box answer Cancel where there is a Cancel button and Ok where there is only that one; a
// Yes/No question can be left by its two buttons alone, so that no answer is ever taken for granted. The box
// bears the object name "messageBox".
MessageAnswer ShowMessage(QWidget* parent, const QString& text, const QString& caption = {},
                          MessageButtons buttons = MessageButtons::Ok,
                          MessageIcon icon = MessageIcon::Exclamation);

}  // namespace quorvane
