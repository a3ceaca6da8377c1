// Writes to a lighting database until it is killed, and says each time what is done.
//
// usage: endless_writer EXECUTABLE_PATH. Line n means that light source 1 has the luminous flux n and that n
// rows have been inserted besides it.

#include <cstdio>

#include "data/lighting_database.h"
#include "data/store/store_factory.h"

using namespace quorvane;

int main(int argc, char* argv[]) {
    CLightingDatabase database(CreateStoreConnection, QString::fromUtf8(argc > 1 ? argv[1] : ""));
    if (!database.Connect()) {
        return 1;
    }
    tagLAMPHOUSEINFO first;
    tagLAMPHOUSEINFO added;
    first.ID = 1;
    first.Factory = QString(5000, u'x');  // several pages a statement
    for (int done = 1; done < 100'000; ++done) {
        first.LuminousFlux = done;
        if (!database.InsertLightSource(added) || !database.UpdateLightSource(first)) {
            return 1;
        }
        std::printf("%d\n", done);
        std::fflush(stdout);
    }
    return 0;
}
