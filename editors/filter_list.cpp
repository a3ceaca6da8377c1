#include "editors/filter_list.h"

namespace quorvane {

bool SettleChoice(CEaseComboBox& list, QString& present, const std::function<bool()>& settle) {
    const QString chosen = list.currentText();
    if (present.isEmpty()) {
        list.ClearSelection();
    } else {
        list.SelectString(present);
    }
    if (!settle()) {
        return false;
    }
    list.SelectString(chosen);
    present = chosen;
    return true;
}

}  // namespace quorvane
