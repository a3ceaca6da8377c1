// The statements that write records, and what a submit could not write by them.
#pragma once

#include <functional>

#include "data/lighting_database.h"

namespace quorvane {

// What a submit could not write.
struct SubmitFailures {
    int writes = 0;              // records neither inserted nor updated
    int deletes = 0;             // records still in the file
    int photos = 0;              // of the writes: those whose photo alone could not be stored
    int row = 0;                 // of the first record that could not be written, from 1
    ProviderFailure cause = {};  // of the first failure
    int different = 0;  // records that are not in the file as they are shown, although they were written
    int unread = 0;     // records of which that could not be found out

    bool None() const { return writes == 0 && deletes == 0 && different == 0; }
};

// Called during a submit, after each of `total` statements.
using ProgressCallback = std::function<void(int done, int total)>;

// The statements that write one kind of record. Each returns whether it ran.
template <typename Record>
struct RecordStatements {
    std::function<bool(const Record&)> isBlank;  // such a record is not written
    std::function<bool(Record&)> insert;         // stores the new ID into the record
    std::function<bool(Record&)> update;
    std::function<bool(int id)> remove;
    std::function<ProviderFailure()> cause = {};  // of the last failure
};

}  // namespace quorvane
