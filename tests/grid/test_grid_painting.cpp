// What the grid shows, read back from its pixels, and the drawing of awkward texts.
#include <QElapsedTimer>
#include <QFont>
#include <QImage>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>

#include "grid/cell_text.h"
#include "grid/grid_ctrl.h"
#include "shown_grid.h"

using namespace quorvane;

class TestGridPainting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fixedCellsStayWhileTheRestScrolls();
    void mergedBlockIsPaintedWithoutItsFirstCell();
    void selectionKeepsTheCellsOwnColour();
    void settersRedraw();
    void awkwardTexts();
    void tipForCutText();
};

namespace {

QColor InsideOf(const QImage& image, const QRect& cell) {
    return image.pixelColor(cell.topLeft() + QPoint(2, 2));
}

QImage Shot(const CGridCtrl& grid) {
    return grid.viewport()->grab().toImage();
}

QImage Drawn(const CString& text, unsigned format, const QRect& rect) {
    QImage image(120, 30, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(QFont(QStringLiteral("WenQuanYi Micro Hei"), 9));
    DrawCellText(painter, rect, text, format);
    return image;
}

}  // namespace

void TestGridPainting::fixedCellsStayWhileTheRestScrolls() {
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
    const QImage image = Shot(grid);
    const int y = grid.CellRect(10, 6).center().y();
    const int x = grid.CellRect(10, 6).center().x();
    QCOMPARE(image.pixelColor(grid.CellRect(10, 6).center() + QPoint(4, 6)), QColor(20, 48, 40));
    QCOMPARE(image.pixelColor(3, y), QColor(10, 0, 200));
    QCOMPARE(image.pixelColor(x, 3), QColor(0, 6, 200));
    QCOMPARE(image.pixelColor(3, 3), QColor(0, 0, 200));
    // The row cut by the heading shows its lower part only.
    const QRect cut = grid.CellRect(8, 6);
    QVERIFY(cut.top() < grid.GetRowHeight(0));
    QCOMPARE(image.pixelColor(x, grid.GetRowHeight(0) - 3), QColor(0, 6, 200));
    QCOMPARE(image.pixelColor(cut.left() + 2, cut.bottom() - 2), QColor(16, 48, 40));
}

void TestGridPainting::mergedBlockIsPaintedWithoutItsFirstCell() {
    const ShownGrid shown(40, 10, 2, 1);
    CGridCtrl& grid = *shown.grid;
    grid.MergeCells(5, 2, 3, 2);
    grid.MergeCells(0, 1, 0, 5);
    grid.SetItem({.row = 5, .col = 2, .mask = ItemMask::BackColour, .backColour = Qt::cyan});
    grid.SetItem({.row = 0, .col = 1, .mask = ItemMask::BackColour, .backColour = Qt::magenta});
    grid.verticalScrollBar()->setValue(grid.GetRowHeight(0) * 5);
    grid.horizontalScrollBar()->setValue(grid.GetColumnWidth(1) * 2);
    const QImage image = Shot(grid);
    const QRect block = grid.CellRect(5, 2);
    QCOMPARE(image.pixelColor(block.right() - 3, block.bottom() - 3), QColor(Qt::cyan));
    QVERIFY(image.pixelColor(block.right() + 3, block.bottom() - 3) != QColor(Qt::cyan));
    const QRect heading = grid.CellRect(0, 1);
    QCOMPARE(image.pixelColor(heading.right() - 3, heading.center().y()), QColor(Qt::magenta));
    QVERIFY(InsideOf(image, grid.CellRect(0, 0)) != QColor(Qt::magenta));
}

void TestGridPainting::selectionKeepsTheCellsOwnColour() {
    const ShownGrid shown(5, 3);
    CGridCtrl& grid = *shown.grid;
    const QColor yellow(255, 255, 128);
    grid.SetItem({.row = 2, .col = 0, .mask = ItemMask::BackColour, .backColour = yellow});
    QCOMPARE(InsideOf(Shot(grid), grid.CellRect(2, 0)), yellow);
    grid.SetSelectedRange({2, 0, 2, 2});
    const QImage image = Shot(grid);
    const QColor read = InsideOf(image, grid.CellRect(2, 0));
    const QColor plain = InsideOf(image, grid.CellRect(2, 1));
    QVERIFY(read != yellow);
    QVERIFY(plain != grid.GetBackgroundColour());
    QVERIFY(plain.blue() - read.blue() > 50);
    QCOMPARE(image.pixelColor(grid.CellRect(3, 1).bottomRight()), QColor(0xC0, 0xC0, 0xC0));
}

void TestGridPainting::settersRedraw() {
    const ShownGrid shown(5, 3);
    CGridCtrl& grid = *shown.grid;
    // From the screen's own buffer, which holds only what was painted because of an update.
    const auto onScreen = [&] {
        QCoreApplication::processEvents();
        return shown.window.screen()->grabWindow(shown.window.winId()).toImage();
    };
    QImage before = onScreen();
    const auto changed = [&] {
        const QImage now = onScreen();
        const bool differs = now != before;
        before = now;
        return differs;
    };
    if (before.isNull()) {
        QSKIP("this platform cannot read its screen");
    }
    QVERIFY(!changed());
    grid.SetItemText(2, 1, QStringLiteral("changed"));
    QVERIFY(changed());
    grid.SetItemFormat(2, 1, CellFormat::Right);
    QVERIFY(changed());
    grid.SetColumnWidth(0, 33);
    QVERIFY(changed());
    grid.MergeCells(3, 0, 0, 1);
    QVERIFY(changed());
    grid.SetFocusCell({1, 1});
    QVERIFY(changed());
    grid.DeleteRow(2);
    QVERIFY(changed());
    grid.SetBackgroundColour(QColor(250, 250, 200));
    QVERIFY(changed());
}

void TestGridPainting::awkwardTexts() {
    const unsigned format = CellFormat::VCentre | CellFormat::SingleLine;
    const QRect rect(10, 5, 80, 20);
    // Line ends and control characters are blanks.
    QCOMPARE(Drawn(QStringLiteral("a\nb\x02"
                                  "c"),
                   format, rect),
             Drawn(QStringLiteral("a b c"), format, rect));
    QCOMPARE(Drawn(QStringLiteral("a&b"), format, rect) == Drawn(QStringLiteral("ab"), format, rect), false);
    // What is too long stays inside, with an ellipsis only where one is asked for.
    const QString lengthy(200, u'光');
    const QImage cut = Drawn(lengthy, format | CellFormat::Centre, rect);
    const QImage elided = Drawn(lengthy, format | CellFormat::EndEllipsis, rect);
    QVERIFY(cut != elided);
    for (const QImage& image : {cut, elided}) {
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                QVERIFY(rect.adjusted(-1, -1, 1, 1).contains(x, y) || image.pixelColor(x, y) == Qt::white);
            }
        }
    }
    // A megabyte costs about what a line costs, also where a character is cut in two.
    QElapsedTimer timer;
    timer.start();
    Drawn(QString(1'000'000, u'w') + u'\n', format | CellFormat::EndEllipsis, rect);
    Drawn(QString(1, u'a') + QStringLiteral("😀").repeated(500'000), format, rect);
    Drawn(QString(1'000'000, u'\u0301'), CellFormat::WordBreak, rect);
    QVERIFY(timer.elapsed() < 500);
}

void TestGridPainting::tipForCutText() {
    const ShownGrid shown(4, 2);
    CGridCtrl& grid = *shown.grid;
    grid.SetItemText(2, 0, QStringLiteral("<b>short"));
    grid.SetItemText(3, 0, QStringLiteral("<b>a text that is longer than its column is wide</b> %1"));
    const auto tipOver = [&](int row) {
        const QPoint position = shown.Middle(row, 0);
        QHelpEvent help(QEvent::ToolTip, position, grid.viewport()->mapToGlobal(position));
        QCoreApplication::sendEvent(grid.viewport(), &help);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    QCOMPARE(tipOver(2), QString());
    QVERIFY(tipOver(3).contains(QStringLiteral("&lt;b&gt;a text")));
}

QTEST_MAIN(TestGridPainting)
#include "test_grid_painting.moc"
