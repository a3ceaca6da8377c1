// The contents of a sample database, read from text files.
#pragma once

#include <vector>

#include "data/records.h"

namespace quorvane {

// A luminaire's photo, which is drawn later.
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
// the folder, or from the program itself when folder is empty, and numbers the records. Throws SampleError
// with file and line.
SampleData ReadSampleData(const QString& folder);

inline constexpr int kMostLightSources = 1'000'000;
inline constexpr int kMostEnlargedTables = 1'000;

// Adds varied copies of the rows until there are that many light sources, one luminaire for each 25 of them,
// and one requirement for each 2. Luminaires after the first kMostEnlargedTables have no utilization factor
// table. No copy has a photo. The same data give the same result. Throws SampleError when there are more
// light sources already, or when lightSources is larger than kMostLightSources.
void EnlargeSampleData(SampleData& data, int lightSources);

}  // namespace quorvane
