#include "model/light_source_text.h"

#include <QStringList>

namespace quorvane {

CString LightSourceText(const tagLAMPHOUSEINFO& lightSource) {
    return lightSource.LamphouseName + u':' + lightSource.LamphouseModel;
}

LightSourceParts SplitLightSourceText(const CString& text) {
    const qsizetype colon = text.indexOf(u':');
    if (colon < 0) {
        return {.name = text, .model = {}};
    }
    return {.name = text.first(colon), .model = text.sliced(colon + 1)};
}

CString Join(const std::vector<CString>& pieces) {
    return QStringList(pieces.begin(), pieces.end()).join(u',');
}

}  // namespace quorvane
