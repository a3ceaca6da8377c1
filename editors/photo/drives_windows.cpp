#include "editors/photo/drives.h"

namespace quorvane {

QByteArray MountTable() {
    return {};
}

}  // namespace quorvane
