// What the grid shows, read back from its pixels.
#include <QHelpEvent>
#include <QImage>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>
#include <functional>

#include "grid/grid_ctrl.h"
#include "shown_grid.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestGridPainting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fixedCellsStayWhileTheRestScrolls() {
        const ShownGrid shown(60, 12, 1, 1);
        CGridCtrl& grid = *shown.grid;
        for (int row = 0; row < 60; ++row) {
            for (int column = 0; column < 12; ++column) {
                const bool fixed = row == 0 || column == 0;
                const QColor colour = fixed ? QColor(row, column, 200) : QColor(row * 2, column * 8, 40);
                grid.SetItem({.row = row, .col = column, .mask = ItemMask::BackColour, .backColour = colour});
            }
        }
        grid.verticalScrollBar()->setValue(grid.GetRowHeight(1) * 7 + 9);
        grid.horizontalScrollBar()->setValue(grid.GetColumnWidth(1) * 3 + 11);
        const QImage image = grid.viewport()->grab().toImage();
        const QPoint inside = grid.CellRect(10, 6).center() + QPoint(4, 6);
        QCOMPARE(image.pixelColor(inside), QColor(20, 48, 40));
        QCOMPARE(image.pixelColor(3, inside.y()), QColor(10, 0, 200));
        QCOMPARE(image.pixelColor(inside.x(), 3), QColor(0, 6, 200));
        QCOMPARE(image.pixelColor(3, 3), QColor(0, 0, 200));
        // The row cut by the heading shows its lower part only.
        const QRect cut = grid.CellRect(8, 6);
        QVERIFY(cut.top() < grid.GetRowHeight(0));
        QCOMPARE(image.pixelColor(inside.x(), grid.GetRowHeight(0) - 3), QColor(0, 6, 200));
        QCOMPARE(image.pixelColor(cut.left() + 2, cut.bottom() - 2), QColor(16, 48, 40));
        grid.MergeCells(7, 6, 3, 0);  // its first row lies under the heading
        QCOMPARE(grid.viewport()->grab().toImage().pixelColor(inside), QColor(14, 48, 40));
    }

    void tipsShowCutTextsOnly() {
        const ShownGrid shown(4, 2);
        const CString cut = u"<b>"_s + CString(200, u'm');
        shown.grid->SetItemText(2, 1, cut);
        for (const auto& [row, shows] : {std::pair(1, false), std::pair(2, true)}) {
            const QPoint place = shown.Middle(row, 1);
            QHelpEvent ask(QEvent::ToolTip, place, shown.grid->viewport()->mapToGlobal(place));
            QCoreApplication::sendEvent(shown.grid->viewport(), &ask);
            QCOMPARE(QToolTip::text().contains(cut.toHtmlEscaped()), shows);
        }
        QToolTip::hideText();
    }

    void settersRedraw() {
        const ShownGrid shown(5, 3);
        CGridCtrl& grid = *shown.grid;
        // From the screen's own buffer, which holds only what was painted because of an update.
        const auto onScreen = [&] {
            QCoreApplication::processEvents();
            return shown.window.screen()->grabWindow(shown.window.winId()).toImage();
        };
        QImage before = onScreen();
        if (before.isNull()) {
            QSKIP("this platform cannot read its screen");
        }
        const std::function<void()> changes[]{[&] { grid.SetItemText(2, 1, u"changed"_s); },
                                              [&] { grid.SetItemFormat(2, 1, CellFormat::Right); },
                                              [&] { grid.SetColumnWidth(0, 33); },
                                              [&] { grid.MergeCells(3, 0, 0, 1); },
                                              [&] {
                                                  grid.SetSelectedRange({1, 0, 2, 1});
                                              },
                                              [&] { grid.DeleteRow(2); },
                                              [&] { grid.SetBackgroundColour(QColor(250, 250, 200)); }};
        for (const auto& change : changes) {
            change();
            const QImage now = onScreen();
            QVERIFY(std::exchange(before, now) != now);
        }
    }
};

QTEST_MAIN(TestGridPainting)
#include "test_grid_painting.moc"
