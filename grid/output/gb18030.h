// The encoding in which spreadsheets for Chinese Windows save text files.
#pragma once

#include <QByteArray>
#include <optional>

#include "grid/grid_types.h"

namespace quorvane {

// Nothing where bytes are not all valid. GB18030 holds GBK and GB 2312.
std::optional<CString> FromGb18030(const QByteArray& bytes);

}  // namespace quorvane
