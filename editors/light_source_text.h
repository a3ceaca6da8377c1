// How light sources are written in one text: name, ":" and model; several of them joined by ",".
//
// The way back is not always the same: the name ends at the first ":", so one that holds a ":" is cut there,
// and a list is cut at every ",", also at one that stands in a name or a model. Any other name and model,
// empty ones included, come back as they were.
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
// Cuts at the first ":"; a text without one is all name.
LightSourceParts SplitLightSourceText(const CString& text);

// The pieces joined by ",". Split(…, u',') is the way back.
CString Join(const std::vector<CString>& pieces);

}  // namespace quorvane
