// The names of the light source categories that are told apart from the others.
#pragma once

#include "data/records.h"

namespace quorvane {

inline const CString kMixedLight = QStringLiteral("混光灯");
inline const CString kCommonLuminaires = QStringLiteral("常用灯具");

}  // namespace quorvane
