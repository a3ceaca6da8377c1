#include "data/write_all.h"

namespace quorvane {

// Where there is room for a part, only the attempt to write the rest tells the reason.
bool WriteAll(QIODevice& file, QByteArrayView bytes) {
    for (qsizetype written = 0; !bytes.isEmpty(); bytes = bytes.sliced(written)) {
        written = static_cast<qsizetype>(file.write(bytes.data(), bytes.size()));
        if (written <= 0) {
            return false;
        }
    }
    return true;
}

}  // namespace quorvane
