// Filling and repainting the grid: time and memory against a QTableWidget with the same texts, and a repaint
// of many rows against one of few.
#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTableWidget>
#include <QWindow>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "benchmarks/report.h"
#include "grid/grid_ctrl.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

using namespace quorvane;

constexpr int ManyRows = 100'000;
constexpr int FewRows = 100;
constexpr int Columns = 7;
constexpr int FillRounds = 5;
constexpr int RepaintRounds = 300;

double MebibytesInUse() {
#ifdef __GLIBC__
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / (1024.0 * 1024.0);
#else
    return 0;
#endif
}

// The texts of the table, made beforehand; all of one length, so that painting costs the same in every row.
QString TextOf(int row, int column) {
    return QStringLiteral("%1:%2").arg(row, 6, 10, QChar(u'0')).arg(column);
}

std::vector<QString> Texts() {
    std::vector<QString> texts;
    texts.reserve(std::size_t{ManyRows} * Columns);
    for (int row = 0; row < ManyRows; ++row) {
        for (int column = 0; column < Columns; ++column) {
            texts.push_back(TextOf(row, column));
        }
    }
    return texts;
}

// A copy of its own for every cell, as from a database, so that both tables pay for the memory of their
// texts.
QString OwnText(const std::vector<QString>& texts, int row, int column) {
    const QString& text = texts[static_cast<std::size_t>(row) * Columns + static_cast<std::size_t>(column)];
    return QString(text.constData(), text.size());
}

void FillGrid(CGridCtrl& grid, int rows, const std::vector<QString>& texts) {
    grid.SetColumnCount(Columns);
    grid.SetRowCount(rows);
    grid.SetFixedRowCount(1);
    GridItem item;
    item.mask = ItemMask::Text | ItemMask::Data | ItemMask::Format;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < Columns; ++column) {
            item.row = row;
            item.col = column;
            item.text = OwnText(texts, row, column);
            item.data = row;
            item.format = CellFormat::VCentre | CellFormat::SingleLine |
                          (column % 2 == 0 ? CellFormat::Centre : CellFormat::Left);
            grid.SetItem(item);
        }
    }
    grid.Refresh();
}

void FillTable(QTableWidget& table, int rows, const std::vector<QString>& texts) {
    table.setColumnCount(Columns);
    table.setRowCount(rows);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < Columns; ++column) {
            auto item = std::make_unique<QTableWidgetItem>(OwnText(texts, row, column));
            table.setItem(row, column, item.release());
        }
    }
    table.viewport()->update();
}

struct Cost {
    std::vector<double> milliseconds;
    std::vector<double> mebibytes;
};

template <typename Table>
void MeasureFill(Cost& cost, const std::vector<QString>& texts,
                 void (*fill)(Table&, int, const std::vector<QString>&)) {
    Table table;
    table.resize(800, 600);
    table.show();
    QApplication::processEvents();
    const double before = MebibytesInUse();
    cost.milliseconds.push_back(Milliseconds([&] { fill(table, ManyRows, texts); }));
    cost.mebibytes.push_back(MebibytesInUse() - before);
}

bool BenchFill(const std::vector<QString>& texts) {
    Cost grid;
    Cost table;
    for (int round = 0; round < FillRounds; ++round) {
        MeasureFill<CGridCtrl>(grid, texts, FillGrid);
        MeasureFill<QTableWidget>(table, texts, FillTable);
    }
    bool met = Report("fill 100,000 x 7, time (QTableWidget)", Median(grid.milliseconds),
                      Median(table.milliseconds), "ms", 0.5);
    if (Median(table.mebibytes) > 0) {
        met = Report("fill 100,000 x 7, added memory (QTableWidget)", Median(grid.mebibytes),
                     Median(table.mebibytes), "MiB", 0.5) &&
              met;
    } else {
        std::printf("added memory: not measured, the C library does not tell\n");
    }
    return met;
}

// A window that is not on the screen yet paints nothing.
void WaitForScreen(const QWidget& window) {
    QElapsedTimer timer;
    timer.start();
    while (!window.windowHandle()->isExposed()) {
        QApplication::processEvents();
        if (timer.elapsed() > 10'000) {
            std::fprintf(stderr, "the window did not come up\n");
            std::exit(EXIT_FAILURE);
        }
    }
}

std::unique_ptr<CGridCtrl> ShownGrid(int rows, const std::vector<QString>& texts) {
    auto grid = std::make_unique<CGridCtrl>();
    grid->resize(800, 600);
    FillGrid(*grid, rows, texts);
    grid->show();
    WaitForScreen(*grid);
    QApplication::processEvents();
    grid->verticalScrollBar()->setValue(grid->verticalScrollBar()->maximum() / 2);
    QApplication::processEvents();
    return grid;
}

bool BenchRepaint(const std::vector<QString>& texts) {
    const auto many = ShownGrid(ManyRows, texts);
    const auto few = ShownGrid(FewRows, texts);
    std::vector<double> manyTimes;
    std::vector<double> fewTimes;
    for (int round = 0; round < RepaintRounds; ++round) {
        manyTimes.push_back(Milliseconds([&] { many->viewport()->repaint(); }));
        fewTimes.push_back(Milliseconds([&] { few->viewport()->repaint(); }));
    }
    return Report("full repaint, 100,000 rows (100 rows)", Median(manyTimes), Median(fewTimes), "ms", 1.1);
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    const std::vector<QString> texts = Texts();
    const bool fillMet = BenchFill(texts);
    const bool repaintMet = BenchRepaint(texts);
    return fillMet && repaintMet ? 0 : 1;
}
