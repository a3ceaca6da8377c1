#include "editors/view/grid_arranger.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "editors/view/foot_bar.h"
#include "grid/grid_ctrl.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

std::optional<double> LimitIn(const QLineEdit& field) {
    bool isNumber = false;
    const double value = field.text().toDouble(&isNumber);
    return isNumber ? std::optional(value) : std::nullopt;
}

CString LimitText(const std::optional<double>& limit) {
    return limit ? CString::number(*limit, 'g', QLocale::FloatingPointShortest) : CString();
}

QWidget* MakeRow(QWidget* parent) {
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    return row;
}

void AddLabel(QWidget* row, const CString& text) {
    row->layout()->addWidget(new QLabel(text, row));
}

}  // namespace

GridArranger::GridArranger(CGridCtrl& grid, GridFoot& foot, std::vector<ArrangedColumn> columns)
    : QObject(&grid), m_grid(grid), m_foot(foot), m_columns(std::move(columns)), m_filters(m_columns.size()) {
    MakeLine();
    AddActions();
    ShowHeadings();
    connect(&grid, &CGridCtrl::HeadingButtonClicked, this, &GridArranger::SortBy);
    connect(&grid, &CGridCtrl::MenuAboutToShow, this, &GridArranger::UpdateActions);
}

void GridArranger::MakeLine() {
    constexpr int kTextCharacters = 24;
    constexpr int kNumberCharacters = 12;
    m_line = MakeRow(&m_foot);
    AddLabel(m_line, u"筛选"_s);
    m_columnList = new QComboBox(m_line);
    m_columnList->setAccessibleName(u"筛选的列"_s);
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        if (m_columns[column].isOffered) {
            m_columnList->addItem(m_columns[column].heading, static_cast<int>(column));
        }
    }
    m_line->layout()->addWidget(m_columnList);
    m_textFields = MakeRow(m_line);
    AddLabel(m_textFields, u"含有"_s);
    m_text = AddField(m_textFields, u"筛选的文字"_s, kTextCharacters);
    m_text->setObjectName(u"filterText"_s);
    m_text->setPlaceholderText(u"文字或拼音首字母"_s);
    m_line->layout()->addWidget(m_textFields);
    m_numberFields = MakeRow(m_line);
    AddLabel(m_numberFields, u"从"_s);
    m_least = AddField(m_numberFields, u"最小值"_s, kNumberCharacters);
    m_least->setObjectName(u"filterLeast"_s);
    AddLabel(m_numberFields, u"到"_s);
    m_most = AddField(m_numberFields, u"最大值"_s, kNumberCharacters);
    m_most->setObjectName(u"filterMost"_s);
    m_line->layout()->addWidget(m_numberFields);
    m_count = new QLabel(m_line);
    m_count->setObjectName(u"filterCount"_s);
    m_line->layout()->addWidget(m_count);
    static_cast<QHBoxLayout*>(m_line->layout())->addStretch(1);
    connect(AddButton(m_line, u"取消筛选"_s, {}), &QToolButton::clicked, this, &GridArranger::ClearFilters);
    m_foot.AddLine(m_line);
    connect(m_columnList, &QComboBox::currentIndexChanged, this, &GridArranger::ShowFields);
    for (QLineEdit* field : {m_text, m_least, m_most}) {
        connect(field, &QLineEdit::textEdited, this, &GridArranger::TakeFields);
        field->installEventFilter(this);
    }
}

void GridArranger::AddActions() {
    const auto add = [this](const CString& text, const QKeySequence& key, const auto& run) {
        auto* action = new QAction(text, this);
        action->setShortcut(key);
        connect(action, &QAction::triggered, this, run);
        m_grid.AddMenuAction(GridMenuGroup::Order, action);
        return action;
    };
    m_ascending = add(u"升序"_s, {}, [this] { ToggleSort(SortDirection::Ascending); });
    m_descending = add(u"降序"_s, {}, [this] { ToggleSort(SortDirection::Descending); });
    m_ascending->setCheckable(true);
    m_descending->setCheckable(true);
    m_filterAction = add(u"筛选…"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_L, [this] { OpenFilter(); });
    m_clear = add(u"取消筛选"_s, {}, [this] { ClearFilters(); });
}

void GridArranger::UpdateActions() {
    const bool hasColumn = FocusColumn() > 0;
    const bool isSorted = hasColumn && FocusColumn() == m_sortColumn;
    for (const auto& [action, direction] : {std::pair(m_ascending, SortDirection::Ascending),
                                            std::pair(m_descending, SortDirection::Descending)}) {
        action->setEnabled(hasColumn);
        action->setChecked(isSorted && m_direction == direction);
        action->setToolTip(hasColumn ? CString() : u"请先单击要按其排序的一列"_s);
    }
    m_clear->setEnabled(IsFiltered());
    m_clear->setToolTip(IsFiltered() ? CString() : u"没有筛选"_s);
}

// ---- Sorting

// A further press turns the order round, and the next one restores the rows' own order.
void GridArranger::SortBy(int column) {
    if (column != m_sortColumn) {
        SetSort(column, SortDirection::Ascending);
    } else if (m_direction == SortDirection::Ascending) {
        SetSort(column, SortDirection::Descending);
    } else {
        SetSort(0, SortDirection::Ascending);
    }
}

void GridArranger::ToggleSort(SortDirection direction) {
    const bool isSorted = FocusColumn() == m_sortColumn && direction == m_direction;
    SetSort(isSorted ? 0 : FocusColumn(), direction);
}

void GridArranger::SetSort(int column, SortDirection direction) {
    m_sortColumn = column;
    m_direction = direction;
    ShowHeadings();
    Q_EMIT Changed();
}

// The column of the focus, or 0 when the rows cannot be arranged by it.
int GridArranger::FocusColumn() const {
    const int column = m_grid.GetFocusCell().col;
    return column > 0 && m_columns[static_cast<std::size_t>(column)].isOffered ? column : 0;
}

void GridArranger::ShowHeadings() {
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        if (!m_columns[column].isOffered) {
            continue;
        }
        const auto index = static_cast<int>(column);
        const HeadingOrder order = index != m_sortColumn                     ? HeadingOrder::None
                                   : m_direction == SortDirection::Ascending ? HeadingOrder::Ascending
                                                                             : HeadingOrder::Descending;
        m_grid.SetHeadingButton(index, order, !m_filters[column].IsEmpty());
    }
}

// ---- Filtering

bool GridArranger::IsFiltered() const {
    return std::ranges::any_of(m_filters, [](const ColumnFilter& filter) { return !filter.IsEmpty(); });
}

int GridArranger::ChosenColumn() const {
    return m_columnList->currentData().toInt();
}

void GridArranger::OpenFilter() {
    const int focused = m_columnList->findData(FocusColumn());
    m_columnList->setCurrentIndex(focused < 0 ? m_columnList->currentIndex() : focused);
    m_foot.ShowLine(m_line, true);
    ShowFields();
    (m_text->isVisible() ? m_text : m_least)->setFocus();
}

void GridArranger::ShowFields() {
    const auto column = static_cast<std::size_t>(ChosenColumn());
    const ColumnFilter& filter = m_filters[column];
    m_textFields->setVisible(!m_columns[column].isNumber);
    m_numberFields->setVisible(m_columns[column].isNumber);
    m_text->setText(filter.text);
    m_least->setText(LimitText(filter.least));
    m_most->setText(LimitText(filter.most));
}

void GridArranger::TakeFields() {
    const auto column = static_cast<std::size_t>(ChosenColumn());
    ColumnFilter filter = m_columns[column].isNumber
                              ? ColumnFilter{.text = {}, .least = LimitIn(*m_least), .most = LimitIn(*m_most)}
                              : ColumnFilter{.text = m_text->text()};
    if (filter != std::exchange(m_filters[column], filter)) {
        ShowHeadings();
        Q_EMIT Changed();
    }
}

void GridArranger::ClearFilters() {
    const bool wasFiltered = IsFiltered();
    ShowAll();
    if (wasFiltered) {
        Q_EMIT Changed();
    }
}

void GridArranger::ShowAll() {
    std::ranges::fill(m_filters, ColumnFilter{});
    m_foot.ShowLine(m_line, false);
    ShowHeadings();
}

void GridArranger::ShowCount(int shown, int all) {
    m_count->setText(u"显示 %1 行,共 %2 行"_s.arg(shown).arg(all));
}

// Esc and Enter go back to the rows. The line stays as long as it hides rows.
bool GridArranger::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QObject::eventFilter(watched, event);
    }
    const int key = static_cast<const QKeyEvent&>(*event).key();
    if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) {
        if (!IsFiltered()) {
            m_foot.ShowLine(m_line, false);
        }
        m_grid.setFocus();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace quorvane
