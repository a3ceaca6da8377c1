// Tells a complete picture file from a truncated one. QImageReader shows a truncated file half grey, without
// an error.
#pragma once

#include <QByteArray>

namespace quorvane {

// Whether the contents hold the first picture of the file completely. format is the recognised one. Formats
// other than "bmp", "jpeg", "jpg" and "gif" count as complete, because their decoders report a truncated
// file.
bool IsWholePicture(const QByteArray& contents, const QByteArray& format);

}  // namespace quorvane
