// What the editors ask and tell in message boxes. parent is the page or dialog that asks, caption its name.
#pragma once

#include "data/records.h"
#include "grid/grid_types.h"
#include "model/photo/photo_library.h"
#include "model/records/working_records.h"
#include "widgets/message_box.h"

namespace quorvane {

// Whether changes are to be submitted before other records are shown.
bool AskToSubmit(QWidget* parent, const CString& caption);
// Before a paste that leaves texts out: how many, and whether the rest is to be pasted. rowsCome: an append
// row takes what lies below the last row. Asks nothing when nothing is lost after all.
bool AskToPaste(QWidget* parent, const CString& caption, const PasteLoss& loss, bool rowsCome);
// Whether the row's record, which `title` names, is to be deleted, and perhaps all others that were to
// follow.
enum class DeleteAnswer { No, Yes, YesToAll };
DeleteAnswer AskToDelete(QWidget* parent, const CString& caption, int row, const CString& title,
                         bool offersAll = false);
// What a replacement in many cells came to.
struct Replacement {
    int done = 0;     // cells
    int refused = 0;  // cells that do not take their new text
    int row = 0;      // of the first of these: its number, its column and that text
    CString heading = {};
    CString text = {};
};
// Tells what was not replaced.
void TellReplaced(QWidget* parent, const CString& caption, const Replacement& replacement);
// Tells that something could not be read completely, and why when a name cannot be searched for.
void TellIncompleteLoad(QWidget* parent, const CString& caption, const ProviderFailure& failure = {});
// The same from the event loop, for a page that is not shown yet.
void TellIncompleteLoadSoon(QWidget* parent, const CString& caption);
// Tells what is not in the file after a submit, if anything.
void TellFailures(QWidget* parent, const CString& caption, const SubmitFailures& failures);
// Tells that everything was written, but that a power cut may still take it, and why.
void TellNotOnDisk(QWidget* parent, const CString& caption, const ProviderFailure& failure);
// The tip of a marked row; empty for one that is not marked.
CString UnwrittenTip(Unwritten why, const WriteFailure& failure);
// The tip of a cell that shows another text than the record in the file.
CString StoredValueTip(const CString& stored);
// The lines that are not empty.
CString JoinLines(const QStringList& lines);

}  // namespace quorvane
