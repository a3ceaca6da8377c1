// Writing to files that are replaced as a whole.
#pragma once

#include <QByteArrayView>
#include <QIODevice>

namespace quorvane {

// Writes all of the bytes to an open file without a buffer. False when it could not; the file's errorString()
// then tells why.
bool WriteAll(QIODevice& file, QByteArrayView bytes);

}  // namespace quorvane
