// The commands of finding and arranging that a grid does not offer. They stand in its menu all the same:
// grey, with the reason in their tips.
#pragma once

#include "data/records.h"

namespace quorvane {

class CGridCtrl;

void AddGreyFinding(CGridCtrl& grid, const CString& reason);
void AddGreyReplacing(CGridCtrl& grid, const CString& reason);
void AddGreyArranging(CGridCtrl& grid, const CString& reason);

}  // namespace quorvane
