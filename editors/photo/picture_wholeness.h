// Tells a whole picture file from one that was cut short, which decoders would show half grey.
#pragma once

#include <QByteArray>

namespace quorvane {

// Whether the file contents hold the picture (of several: the first) to its end. format is the one that the
// contents were recognised as: "bmp", "jpeg" or "gif"; any other is left to its decoder to judge.
bool IsWholePicture(const QByteArray& contents, const QByteArray& format);

}  // namespace quorvane
