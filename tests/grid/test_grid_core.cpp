// What needs no keys: column widths, buttons in cells, what is painted, and selections.
#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <QTest>
#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include "grid/cells/grid_btn_cell.h"
#include "grid/grid_core.h"
#include "grid/grid_painter.h"
#include "grid/input/grid_mouse.h"
#include "shown_grid.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

constexpr int kHeight = 20;
constexpr int kWidth = 80;

// Every cell reads "row,column".
std::unique_ptr<GridCore> MakeCore(int rows, int columns, int fixedRows, int fixedColumns) {
    auto core = std::make_unique<GridCore>(kHeight, kWidth);
    core->SetCount(Qt::Vertical, rows);
    core->SetCount(Qt::Horizontal, columns);
    core->SetFixedCount(Qt::Vertical, fixedRows);
    core->SetFixedCount(Qt::Horizontal, fixedColumns);
    core->Layout().SetViewSize({5 * kWidth, 6 * kHeight});
    for (int cell = 0; cell < rows * columns; ++cell) {
        core->SetText({cell / columns, cell % columns}, u"%1,%2"_s.arg(cell / columns).arg(cell % columns));
    }
    return core;
}

QImage Painted(const GridCore& core, const GridLooks& looks) {
    QImage image(5 * kWidth, 6 * kHeight, QImage::Format_RGB32);
    QPainter painter(&image);
    GridPainter(core, looks, painter).Paint(image.rect());
    return image;
}

}  // namespace

class TestGridCore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void columnEdgesAndWidths() {
        const auto core = MakeCore(4, 4, 2, 0);
        core->Merge({0, 1}, 0, 1);
        const GridMouse mouse(*core);
        QCOMPARE(mouse.EdgeAt({kWidth + 2, 5}), std::optional(0));
        QCOMPARE(mouse.EdgeAt({2 * kWidth, 5}), std::nullopt);  // inside a merged heading
        QCOMPARE(mouse.EdgeAt({2 * kWidth, kHeight + 5}), std::optional(1));
        QCOMPARE(mouse.EdgeAt({kWidth, 2 * kHeight + 5}), std::nullopt);
        core->Merge({0, 3}, 1, 0);
        QCOMPARE(core->ColumnHeadingText(3), u"0,3"_s);
        QCOMPARE(core->ColumnHeadingText(2), u"0,1 1,2"_s);
        const int usual = core->NeededWidth(0, 1, 1000);
        core->SetText({1, 0}, CString(20, u'm'));
        const int heading = core->NeededWidth(0, 1, 1000);
        core->SetText({3, 0}, CString(40, u'm'));
        QVERIFY(usual < heading && heading < core->NeededWidth(0, 1, 1000));
        QCOMPARE(core->NeededWidth(0, 1, 50), 50);
    }

    void buttonsOfACell() {
        const auto core = MakeCore(2, 2, 0, 0);
        core->Set({1, 1}, &CGridCellBase::SetData, 7);
        CBtnDataBase shared;
        core->SetCellType(
            {1, 1}, []() -> std::unique_ptr<CGridCellBase> { return std::make_unique<CGridBtnCell>(); });
        auto& cell = dynamic_cast<CGridBtnCell&>(*core->Cell({1, 1}));
        cell.SetBtnDataBase(&shared);
        QCOMPARE(cell.GetText() + CString::number(cell.GetData()), u"1,17"_s);
        constexpr unsigned kPush = BtnState::PushButton;
        QVERIFY(cell.SetupBtns(2, BtnType::Button, BtnState::CheckBox, 2, 10, 8, {}));
        QVERIFY(cell.SetupBtns(0, BtnType::Button, kPush, 1, 15, 0, {}));
        QVERIFY(cell.SetupBtns(1, BtnType::Button, kPush | BtnState::Inactive, 2, 12, 0, {}));
        QCOMPARE(cell.GetBtnCount(), 3);
        // From the left: button 0, the text, button 2, button 1.
        const QRect rect(100, 50, kWidth, kHeight);
        const std::pair<int, int> at[]{{100, 0}, {114, 0}, {115, -1}, {157, -1},
                                       {158, 2}, {167, 2}, {168, -1}};
        for (const auto& [x, button] : at) {
            QCOMPARE(cell.BtnAt(rect, {}, {x, 60}), button);
        }
        QCOMPARE(cell.BtnAt(rect, {}, {160, 52}), -1);  // above the button's greatest height
        QCOMPARE(cell.TextRect(rect, {}), QRect(119, 50, 35, kHeight));
        QVERIFY(core->PressBtn({1, 1}, 2) && !core->PressBtn({1, 1}, 1) && !core->PressBtn({1, 1}, 3));
        QCOMPARE(cell.GetBtn(2).state, BtnState::Checked | BtnState::CheckBox);
        QVERIFY(core->EditingOf({1, 1}) == CellEditing::Text);

        CGridBtnCellCombo combo;
        combo.SetText(u"b"_s);
        const auto choose = [&](std::vector<CString> choices) {
            combo.SetChoices(std::make_shared<const std::vector<CString>>(std::move(choices)));
            return combo.GetText();
        };
        QCOMPARE(choose({u"a"_s, u"b"_s}), u"b"_s);
        QCOMPARE(choose({u"c"_s, u"d"_s}), u"c"_s);
        QCOMPARE(choose({}), QString());
    }

    void paintsImagesSelectionAndBlocks() {
        const auto core = MakeCore(30, 3, 1, 0);
        QPixmap red(16, 16);
        red.fill(Qt::red);
        const std::vector<QIcon> images{QIcon(), QIcon(red)};
        const GridLooks looks{.palette = QPalette(Qt::lightGray), .background = Qt::white, .images = &images};
        core->SetItem({.row = 1, .col = 1, .mask = ItemMask::Image, .image = 1});
        core->Cell({2, 1})->SetSecondImage(1);
        core->Cell({3, 1})->SetImage(9);  // there is no such image
        core->SelectRange({4, 0, 4, 0});
        QImage image = Painted(*core, looks);
        const auto colour = [&](CCellID cell, int right) {
            return image.pixelColor(core->CellRect(cell).center() + QPoint(right, 0));
        };
        const int edge = kWidth / 2 - CellAttributes::DefaultMargin - CGridCellBase::kImageSide / 2;
        QCOMPARE(colour({1, 1}, -edge), QColor(Qt::red));
        QVERIFY(colour({1, 1}, edge) == Qt::white && colour({2, 1}, -edge) != Qt::red);
        QCOMPARE(colour({2, 1}, edge), QColor(Qt::red));
        QCOMPARE(colour({3, 1}, -edge), QColor(Qt::white));
        QVERIFY(colour({4, 0}, kWidth / 3) != Qt::white && colour({4, 1}, kWidth / 3) == Qt::white);

        const CString longText(40, u'm');
        core->SetItem({.row = 5, .col = 0, .mask = ItemMask::Text, .text = longText});
        core->SetItem({.row = 5, .col = 1, .mask = ItemMask::Text | ItemMask::Format, .text = longText});
        core->SetItem({.row = 5, .col = 2, .mask = ItemMask::Text | ItemMask::Margin, .margin = 30});
        core->SetItem(
            {.row = 4, .col = 2, .mask = ItemMask::Text | ItemMask::Margin, .text = longText, .margin = 30});
        core->SetFocus({1, 0});
        image = Painted(*core, looks);
        const auto at = [&](CCellID cell) { return image.copy(core->CellRect(cell)); };
        QVERIFY(at({5, 0}) != at({5, 1}));  // the latter has no ellipsis
        QCOMPARE(at({4, 2}).copy(0, 0, 30, kHeight), at({5, 2}).copy(0, 0, 30, kHeight));
        QVERIFY(at({1, 0}).pixelColor(0, 9) != at({1, 0}).pixelColor(5, 3));  // the frame of the focus
        core->SetItem({.row = 2, .col = 2, .mask = ItemMask::BackColour, .backColour = Qt::green});
        core->Merge({2, 2}, 4, 0);
        core->Layout().rows.SetScroll(3 * kHeight);
        image = Painted(*core, looks);
        QCOMPARE(image.pixelColor(2 * kWidth + 60, 2 * kHeight + 5), QColor(Qt::green));
    }

    void textsAreReadableOnEveryColour() {
        const auto core = MakeCore(2, 2, 1, 1);
        core->SelectRange({1, 1, 1, 1});
        const auto brightest = [](const QImage& image, const QRect& cell) {
            int bright = 0;
            for (int at = 0; at < cell.width() * cell.height(); ++at) {
                const QPoint place(cell.left() + at % cell.width(), cell.top() + at / cell.width());
                bright = std::max(bright, image.pixelColor(place).lightness());
            }
            return bright;
        };
        QPalette dark(QColor(40, 40, 40), QColor(20, 20, 20));
        dark.setColor(QPalette::Text, Qt::white);
        for (const CCellID cell : {CCellID{1, 0}, CCellID{1, 1}}) {
            const QRect inside = core->CellRect(cell).adjusted(3, 3, -3, -3);
            QCOMPARE(brightest(Painted(*core, {.palette = dark}), inside), 255);
            core->SetItem({.row = 1,
                           .col = cell.col,
                           .mask = ItemMask::BackColour,
                           .backColour = QColor(255, 255, 128)});
            QVERIFY(brightest(Painted(*core, {.palette = dark}), inside) < 250);
        }
        core->Cell({1, 1})->SetBackColour(QColor(0, 0, 90));
        const QImage image = Painted(*core, {.palette = QPalette(Qt::lightGray)});
        QCOMPARE(brightest(image, core->CellRect({1, 1}).adjusted(3, 3, -3, -3)), 255);
    }

    void fixedCellsStayWhileTheRestScrolls() {
        const ShownGrid grid(60, 12, 1, 1);
        for (int row = 0; row < 60; ++row) {
            for (int column = 0; column < 12; ++column) {
                const bool fixed = row == 0 || column == 0;
                const QColor colour = fixed ? QColor(row, column, 200) : QColor(row * 2, column * 8, 40);
                grid->SetItem(
                    {.row = row, .col = column, .mask = ItemMask::BackColour, .backColour = colour});
            }
        }
        grid->verticalScrollBar()->setValue(grid->GetRowHeight(1) * 7 + 9);
        grid->horizontalScrollBar()->setValue(grid->GetColumnWidth(1) * 3 + 11);
        const QImage image = grid->viewport()->grab().toImage();
        const QPoint inside = grid->CellRect(10, 6).center() + QPoint(4, 6);
        QCOMPARE(image.pixelColor(inside), QColor(20, 48, 40));
        QCOMPARE(image.pixelColor(3, inside.y()), QColor(10, 0, 200));
        QCOMPARE(image.pixelColor(inside.x(), 3), QColor(0, 6, 200));
        QCOMPARE(image.pixelColor(3, 3), QColor(0, 0, 200));
        // The row cut by the heading shows its lower part only.
        const QRect cut = grid->CellRect(8, 6);
        QVERIFY(cut.top() < grid->GetRowHeight(0));
        QCOMPARE(image.pixelColor(inside.x(), grid->GetRowHeight(0) - 3), QColor(0, 6, 200));
        QCOMPARE(image.pixelColor(cut.left() + 2, cut.bottom() - 2), QColor(16, 48, 40));
        grid->MergeCells(7, 6, 3, 0);  // its first row lies under the heading
        QCOMPARE(grid->viewport()->grab().toImage().pixelColor(inside), QColor(14, 48, 40));
    }

    void settersRedraw() {
        const ShownGrid grid(5, 3);
        // From the screen's own buffer, which holds only what was painted because of an update.
        const auto onScreen = [&] {
            QCoreApplication::processEvents();
            return grid.window.screen()->grabWindow(grid.window.winId()).toImage();
        };
        QImage before = onScreen();
        if (before.isNull()) {
            QSKIP("this platform cannot read its screen");
        }
        const std::function<void()> changes[]{[&] { grid->SetItemText(2, 1, u"changed"_s); },
                                              [&] { grid->SetItemFormat(2, 1, CellFormat::Right); },
                                              [&] { grid->SetColumnWidth(0, 33); },
                                              [&] { grid->MergeCells(3, 0, 0, 1); },
                                              [&] {
                                                  grid->SetSelectedRange({1, 0, 2, 1});
                                              },
                                              [&] { grid->DeleteRow(2); },
                                              [&] { grid->SetBackgroundColour(QColor(250, 250, 200)); }};
        for (const auto& change : changes) {
            change();
            const QImage now = onScreen();
            QVERIFY(std::exchange(before, now) != now);
        }
    }

    void selectionOfSeveralRanges() {
        const auto core = MakeCore(9, 5, 1, 1);
        core->Merge({3, 2}, 1, 1);
        core->SelectLines({2, 1, 2, 4}, {});
        core->SelectLines({5, 1, 5, 4}, Qt::ControlModifier);
        QVERIFY(core->Selection().IsSelected({2, 3}) && core->Selection().IsSelected({5, 1}));
        QVERIFY(core->Selection().Covers({5, 1, 5, 4}) && !core->Selection().Covers({2, 1, 5, 4}));
        core->AddToSelection({4, 3});
        QCOMPARE(core->Focus(), (CCellID{3, 2}));
        core->ExtendSelection({2, 1}, true);
        QVERIFY(core->Selection().Covers({2, 1, 4, 3}));
        core->SetFixedCount(Qt::Vertical, 3);
        QCOMPARE(core->Focus(), CCellID());
        QCOMPARE(core->SelectedRange(), (CCellRange{3, 1, 5, 4}));
        core->DeleteRow(0);
        QCOMPARE(core->Layout().rows.FixedCount(), 2);
        QVERIFY(core->Layout().IsFixed({1, 4}) && core->IsSelectable({2, 1}));
        core->SelectRange({3, 1, 4, 4});
        core->DeleteRow(2);
        QCOMPARE(core->SelectedRange(), (CCellRange{2, 1, 3, 4}));
        core->DeleteRow(2);
        core->DeleteRow(2);
        QVERIFY(core->Selection().Ranges().empty());
    }
};

QTEST_MAIN(TestGridCore)
#include "test_grid_core.moc"
