// What a sample database holds, read from data files that a person can edit.
#pragma once

#include <vector>

#include "data/records.h"

namespace quorvane {

// A luminaire's photo still to be drawn.
struct SamplePhoto {
    int LuminaireID = 0;
    QString Drawing;    // one of LuminaireDrawings()
    QString Extension;  // ".jpg" or ".bmp"
};

struct SampleData {
    std::vector<tagLAMPHOUSETYPE> Categories;
    std::vector<tagLAMPHOUSEINFO> LightSources;
    std::vector<tagLUMINAIREINFO> Luminaires;
    std::vector<tagLUMINAIREUTILIZATIONFACTOR> Factors;
    std::vector<tagILLUMINANCESTANDARD> Requirements;
    std::vector<SamplePhoto> Photos;
};

// Reads categories.csv, light_sources.csv, utilization_shapes.csv, luminaires.csv and requirements.csv from
// the folder, or the files built into the program when folder is empty. Every record gets its ID. Throws
// SampleError with file and line.
SampleData ReadSampleData(const QString& folder);

inline constexpr int kMostLightSources = 1'000'000;
inline constexpr int kMostEnlargedTables = 1'000;

// Adds varied copies of the rows until there are that many light sources, one luminaire for each 25 and one
// requirement for each 2 of them. Luminaires past the first kMostEnlargedTables have no utilization factor
// table, and no copy has a photo. Same data, same result. Throws SampleError when there are more light
// sources already, or when more than kMostLightSources are asked for.
void EnlargeSampleData(SampleData& data, int lightSources);

}  // namespace quorvane
