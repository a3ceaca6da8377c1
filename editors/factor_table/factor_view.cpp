#include "editors/factor_table/factor_view.h"

#include <QAction>
#include <QActionGroup>

#include "editors/factor_table/factor_plot.h"
#include "editors/factor_table/factor_table_grid.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

void FactorView::AddCommands(FactorTableGrid& grid, const UtilizationFactorTable& table,
                             const CString& rowLabel, const std::function<void()>& showAnew) {
    auto* group = new QActionGroup(&grid);
    for (int decimals = FactorTableGrid::kFewestDecimals; decimals <= FactorTableGrid::kMostDecimals;
         ++decimals) {
        auto* action = new QAction(u"显示%1位小数"_s.arg(decimals), group);
        action->setCheckable(true);
        action->setChecked(decimals == grid.Decimals());
        QObject::connect(action, &QAction::triggered, &grid, [&grid, decimals, showAnew] {
            grid.SetDecimals(decimals);
            showAnew();
        });
        grid.AddMenuAction(GridMenuGroup::Editor, action);
    }
    auto* plot = new QAction(u"曲线图…"_s, &grid);
    QObject::connect(plot, &QAction::triggered, &grid,
                     [this, &grid, &table, &rowLabel] { OpenPlot(grid, table, rowLabel); });
    grid.AddMenuAction(GridMenuGroup::Editor, plot);
}

void FactorView::OpenPlot(FactorTableGrid& grid, const UtilizationFactorTable& table,
                          const CString& rowLabel) {
    if (m_plot == nullptr) {
        m_plot = new FactorPlot(table, rowLabel, grid.window());
        m_plot->setWindowTitle(grid.window()->windowTitle() + u" 曲线图"_s);
    }
    m_plot->show();
    m_plot->raise();
    m_plot->activateWindow();
}

void FactorView::Update() {
    if (m_plot != nullptr) {
        m_plot->update();
    }
}

}  // namespace quorvane
