// The statements that write records, and what a submit could not write by them.
#pragma once

#include <functional>

#include "data/lighting_database.h"
#include "model/photo/photo_copy.h"

namespace quorvane {

// Why a record could not be written or deleted.
struct WriteFailure {
    ProviderFailure cause = {};               // of the database
    PhotoProblem photo = PhotoProblem::None;  // else: what its photo alone failed by
};

// What a submit could not write.
struct SubmitFailures {
    int writes = 0;                                  // records neither inserted nor updated
    int deletes = 0;                                 // records still in the file
    int photos = 0;                                  // of both: those that failed by their photo alone
    PhotoProblem photoProblem = PhotoProblem::None;  // of the first of these
    int row = 0;  // of the first record that the database could not write, from 1; 0: it was a deletion
    ProviderFailure cause = {};  // of the first failure of the database
    int different = 0;  // records that are not in the file as they are shown, although they were written
    int unread = 0;     // records of which that could not be found out
    ProviderFailure whyUnread = {};

    bool None() const { return writes == 0 && deletes == 0 && different == 0; }
    // failedRow: as row.
    void Add(const WriteFailure& failure, int failedRow) {
        if (failure.photo != PhotoProblem::None) {
            photoProblem = photos++ == 0 ? failure.photo : photoProblem;
        } else if (writes + deletes == photos) {
            row = failedRow;
            cause = failure.cause;
        }
        ++(failedRow == 0 ? deletes : writes);
    }
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
    std::function<WriteFailure()> cause = {};  // of the last failure
};

}  // namespace quorvane
