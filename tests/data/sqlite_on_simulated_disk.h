// Lets the SQLite engine of this process work on a simulated disk.
#pragma once

#include "tests/data/simulated_disk.h"

namespace quorvane {

// From now on every file that SQLite opens is one of the disk. Locks are not simulated, so one connection may
// write.
void PutSqliteOn(access::SimulatedDisk& disk);

}  // namespace quorvane
