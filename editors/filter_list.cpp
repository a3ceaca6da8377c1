#include "editors/filter_list.h"

namespace quorvane {

QPersistentModelIndex ChosenEntry(const CEaseComboBox& list) {
    return list.model()->index(list.currentIndex(), 0);
}

void NameForReaders(CEaseComboBox& list, const QString& name) {
    list.setAccessibleName(name);
    list.setAccessibleDescription(name);
}

bool SettleChoice(CEaseComboBox& list, QPersistentModelIndex& present, const std::function<bool()>& settle) {
    const QPersistentModelIndex chosen = ChosenEntry(list);
    list.setCurrentIndex(present.row());
    if (!settle()) {
        return false;
    }
    list.setCurrentIndex(chosen.row());
    present = chosen;
    return true;
}

}  // namespace quorvane
