// How light sources are written as text: name, ":" and model; several light sources are joined by ",".
//
// A text cannot always be split again: a name may hold a ":", and a name or model may hold a ",".
// ReferenceLists therefore looks up such a text as a whole.
#pragma once

#include <vector>

#include "data/records.h"

namespace quorvane {

struct LightSourceParts {
    CString name;
    CString model;

    bool operator==(const LightSourceParts&) const = default;
};

CString LightSourceText(const tagLAMPHOUSEINFO& lightSource);
// Splits at the first ":". A text without ":" is a name.
LightSourceParts SplitLightSourceText(const CString& text);

// The pieces joined by ",".
CString Join(const std::vector<CString>& pieces);

}  // namespace quorvane
