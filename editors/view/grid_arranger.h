// GridArranger: by which column the rows of a grid are sorted and what the user wants to see of them. Gives
// the headings their buttons, adds 升序, 降序, 筛选… and 取消筛选 to the context menu, and a line to the bar
// at the foot. It arranges nothing itself.
#pragma once

#include <QObject>
#include <vector>

#include "grid/grid_types.h"
#include "model/view/column_filter.h"
#include "model/view/sorting.h"

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;

namespace quorvane {

class CGridCtrl;
class GridFoot;

struct ArrangedColumn {
    CString heading;
    bool isOffered = true;  // the rows can be arranged by it
    bool isNumber = false;
};

class GridArranger : public QObject {
    Q_OBJECT

public:
    // Becomes a child of the grid.
    GridArranger(CGridCtrl& grid, GridFoot& foot, std::vector<ArrangedColumn> columns);

    // The column by which the rows are sorted; 0: the rows keep their order.
    int SortColumn() const { return m_sortColumn; }
    SortDirection Direction() const { return m_direction; }
    const ColumnFilter& FilterOf(int column) const { return m_filters[static_cast<std::size_t>(column)]; }
    bool IsFiltered() const;
    // Takes the filters away, without a signal.
    void ShowAll();
    // Tells how many rows are shown.
    void ShowCount(int shown, int all);

Q_SIGNALS:
    void Changed();

protected:
    // The keys of the fields.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void MakeLine();
    void AddActions();
    void UpdateActions();
    void SortBy(int column);
    void ToggleSort(SortDirection direction);
    void SetSort(int column, SortDirection direction);
    void OpenFilter();
    void ClearFilters();
    void ShowFields();
    void TakeFields();
    void ShowHeadings();
    int FocusColumn() const;
    int ChosenColumn() const;

    CGridCtrl& m_grid;
    GridFoot& m_foot;
    std::vector<ArrangedColumn> m_columns;
    std::vector<ColumnFilter> m_filters;  // by column
    int m_sortColumn = 0;
    SortDirection m_direction = SortDirection::Ascending;
    QAction* m_ascending = nullptr;
    QAction* m_descending = nullptr;
    QAction* m_filterAction = nullptr;
    QAction* m_clear = nullptr;
    QWidget* m_line = nullptr;  // the widgets are children of the foot
    QComboBox* m_columnList = nullptr;
    QWidget* m_textFields = nullptr;
    QWidget* m_numberFields = nullptr;
    QLineEdit* m_text = nullptr;
    QLineEdit* m_least = nullptr;
    QLineEdit* m_most = nullptr;
    QLabel* m_count = nullptr;
};

}  // namespace quorvane
