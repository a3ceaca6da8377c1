#include "tests/support/endless_files.h"

namespace quorvane {

QStringList EndlessFiles(const QString& /*pipe*/) {
    return {QStringLiteral("NUL"), QStringLiteral("\\\\.\\pipe\\none.jpg")};
}

}  // namespace quorvane
