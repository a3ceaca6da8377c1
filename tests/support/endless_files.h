// What has the name of a file and is none.
#pragma once

#include <QStringList>

namespace quorvane {

// Devices of the system and, where a file system can hold one, a pipe that is made at the path. Who reads
// them gets no end or waits for ever.
QStringList EndlessFiles(const QString& pipe);

}  // namespace quorvane
