#include "editors/column_memory.h"

#include <algorithm>

#include "editors/user_settings.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

CString WidthsKey(const CString& name) {
    return u"columns/%1/widths"_s.arg(name);
}

CString FrozenKey(const CString& name) {
    return u"columns/%1/frozen"_s.arg(name);
}

void RestoreColumns(CGridCtrl& grid, const CString& name) {
    const UserSettings settings;
    const QVariantList shares = settings.value(WidthsKey(name)).toList();
    if (shares.size() != grid.GetColumnCount()) {
        return;
    }
    // Anything may stand in the file; a column is always wide enough to be seen and dragged.
    constexpr double kLeast = 0.01;
    constexpr double kMost = 1;
    for (int column = 0; column < grid.GetColumnCount(); ++column) {
        const double share = shares[column].toDouble();
        if (share >= kLeast && share <= kMost) {
            grid.SetColumnWidth(column, qRound(share * grid.width()));
        }
    }
    grid.SetFrozenColumnCount(settings.value(FrozenKey(name)).toInt());
}

void SaveColumns(const CGridCtrl& grid, const CString& name) {
    QVariantList shares;
    for (int column = 0; column < grid.GetColumnCount(); ++column) {
        shares << CString::number(
            static_cast<double>(grid.GetColumnWidth(column)) / std::max(1, grid.width()), 'f', 4);
    }
    UserSettings settings;
    settings.setValue(WidthsKey(name), shares);
    settings.setValue(FrozenKey(name), grid.GetFrozenColumnCount());
}

}  // namespace

void KeepColumns(CGridCtrl& grid, const CString& name) {
    RestoreColumns(grid, name);
    QObject::connect(&grid, &CGridCtrl::ColumnsArranged, &grid, [&grid, name] { SaveColumns(grid, name); });
}

}  // namespace quorvane
