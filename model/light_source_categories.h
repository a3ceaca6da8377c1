// The light source categories that have rules of their own.
#pragma once

#include "data/records.h"

namespace quorvane {

inline const CString kMixedLight = QStringLiteral("混光灯");
inline const CString kCommonLuminaires = QStringLiteral("常用灯具");

// No light source belongs to these categories.
inline bool HoldsLightSources(const CString& categoryName) {
    return categoryName != kMixedLight && categoryName != kCommonLuminaires;
}

// Whether a luminaire of these categories (IDs joined by ",") is a mixed-light luminaire. Every program that
// reads the database applies exactly this rule, so "15" counts too.
inline bool IsMixedLight(const CString& categoryIds) {
    return categoryIds.contains(u'5');
}

}  // namespace quorvane
