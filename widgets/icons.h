// The program's icons. The files in widgets/icons are PNG of 48 by 48 pixels, which scale down to the sizes
// of all usual screens (16, 24, 32, 48). SVG would need one more library at run time, and a plugin loaded at
// every start.
#pragma once

#include <QIcon>

namespace quorvane {

// The values are the resource numbers.
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
