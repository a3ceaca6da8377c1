#include "editors/drives.h"

namespace quorvane {

QByteArray MountTable() {
    return {};
}

}  // namespace quorvane
