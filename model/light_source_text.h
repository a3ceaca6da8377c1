// How light sources are written in one text: name, ":" and model; several of them joined by ",".
//
// The way back is not always the same: the name ends at the first ":", so one that holds a ":" is cut there,
// and a "," may stand in a name or a model. Those who know the light sources find such texts as a whole.
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

// The pieces joined by ",".
CString Join(const std::vector<CString>& pieces);

}  // namespace quorvane
