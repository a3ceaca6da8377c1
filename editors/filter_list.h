// The choice of a drop-down list that decides which records a page shows.
#pragma once

#include <QPersistentModelIndex>
#include <functional>

#include "widgets/ease_combo_box.h"

namespace quorvane {

// To be called when the user has made another choice. settle() submits or drops the changes of the shown
// records and returns whether other records may be shown. If not, the list goes back to `present`, the choice
// to which the shown records belong, also when the list has got entries since. While settle() runs, the list
// already shows `present`, because a fresh append row takes over the list's text. Otherwise `present` becomes
// the new choice.
bool SettleChoice(CEaseComboBox& list, QPersistentModelIndex& present, const std::function<bool()>& settle);

// The entry that is chosen now.
QPersistentModelIndex ChosenEntry(const CEaseComboBox& list);

// Says what the list chooses. Assistive technology takes the chosen text for the name of a list, and reads
// its description besides.
void NameForReaders(CEaseComboBox& list, const QString& name);

}  // namespace quorvane
