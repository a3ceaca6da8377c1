// The program's small pictures, drawn from shapes so that they are sharp on every screen.
#pragma once

#include <QIcon>

namespace quorvane {

// Numbered as the resources that they stand for.
enum class IconId {
    Application = 128,
    Paste = 139,
    Copy = 142,
    Ok = 144,
    Delete = 145,
    Submit = 146,
    Exit = 148,
    Next = 149,
    Previous = 150,
    Clear = 151,
};

QIcon LoadIcon(IconId id);

}  // namespace quorvane
