#include "editors/photo/drives.h"

namespace quorvane {

std::vector<Volume> MountedVolumes(const char* /*table*/) {
    return {};
}

}  // namespace quorvane
