// Filling, scrolling and repainting the grid: time and memory against the toolkit's tables with the same
// texts, a repaint of many rows against one of few, and how the time to insert and delete rows grows with
// their number.
#include <malloc.h>

#include <QAbstractTableModel>
#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTableView>
#include <QTableWidget>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "benchmarks/report.h"
#include "grid/grid_ctrl.h"

namespace {

using namespace quorvane;

constexpr int kManyRows = 100'000;
constexpr int kFewRows = 100;
constexpr int kColumns = 7;
constexpr int kFillRounds = 5;
constexpr int kRepaintRounds = 300;

double MebibytesInUse() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / (1024.0 * 1024.0);
}

// The texts of the table, made beforehand; all of one length, so that painting costs the same in every row.
QString TextOf(int row, int column) {
    return QStringLiteral("%1:%2").arg(row, 6, 10, QChar(u'0')).arg(column);
}

std::vector<QString> Texts() {
    std::vector<QString> texts;
    texts.reserve(std::size_t{kManyRows} * kColumns);
    for (int row = 0; row < kManyRows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            texts.push_back(TextOf(row, column));
        }
    }
    return texts;
}

// A copy of its own for every cell, as from a database, so that both tables pay for the memory of their
// texts.
QString OwnText(const std::vector<QString>& texts, int row, int column) {
    const QString& text = texts[static_cast<std::size_t>(row) * kColumns + static_cast<std::size_t>(column)];
    return QString(text.constData(), text.size());
}

// The way a page fills its grid: the row maker reads the texts of a row when the row is first shown or
// touched.
void FillGrid(CGridCtrl& grid, int rows, const std::vector<QString>& texts) {
    grid.SetColumnCount(kColumns);
    grid.SetRowMaker([&grid, &texts](int row) {
        GridItem item;
        item.mask = ItemMask::Text | ItemMask::Data | ItemMask::Format;
        item.row = row;
        item.data = row;
        for (int column = 0; column < kColumns; ++column) {
            item.col = column;
            item.text = OwnText(texts, row, column);
            item.format = CellFormat::VCentre | CellFormat::SingleLine |
                          (column % 2 == 0 ? CellFormat::Centre : CellFormat::Left);
            grid.SetItem(item);
        }
    });
    grid.SetRowCount(rows);
    grid.SetFixedRowCount(1);
    grid.Refresh();
}

// What no page does at once: every cell is asked for.
void FillWholeGrid(CGridCtrl& grid, int rows, const std::vector<QString>& texts) {
    FillGrid(grid, rows, texts);
    for (int row = 1; row < rows; ++row) {
        grid.GetItemData(row, 0);
    }
}

// The same texts for a QTableView, which copies none of them.
class TextModel : public QAbstractTableModel {
public:
    explicit TextModel(const std::vector<QString>& texts) : m_texts(texts) {}

    int rowCount(const QModelIndex& /*parent*/) const override { return kManyRows; }
    int columnCount(const QModelIndex& /*parent*/) const override { return kColumns; }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role == Qt::TextAlignmentRole) {
            return QVariant(index.column() % 2 == 0 ? Qt::AlignCenter : Qt::AlignLeft | Qt::AlignVCenter);
        }
        return role == Qt::DisplayRole ? OwnText(m_texts, index.row(), index.column()) : QVariant();
    }

private:
    const std::vector<QString>& m_texts;
};

void FillTable(QTableWidget& table, int rows, const std::vector<QString>& texts) {
    table.setColumnCount(kColumns);
    table.setRowCount(rows);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
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
    cost.milliseconds.push_back(Milliseconds([&] {
        fill(table, kManyRows, texts);
        table.viewport()->repaint();
    }));
    cost.mebibytes.push_back(MebibytesInUse() - before);
}

bool BenchFill(const std::vector<QString>& texts) {
    Cost grid;
    Cost wholeGrid;
    Cost table;
    for (int round = 0; round < kFillRounds; ++round) {
        MeasureFill<CGridCtrl>(grid, texts, FillGrid);
        MeasureFill<CGridCtrl>(wholeGrid, texts, FillWholeGrid);
        MeasureFill<QTableWidget>(table, texts, FillTable);
    }
    const auto report = [&](const char* what, const Cost& cost, double target) {
        const QByteArray name = QByteArray("fill 100,000 x 7, ") + what;
        const bool met = Report((name + ", time (QTableWidget)").constData(), Median(cost.milliseconds),
                                Median(table.milliseconds), "ms", target);
        return Report((name + ", added memory (QTableWidget)").constData(), Median(cost.mebibytes),
                      Median(table.mebibytes), "MiB", target) &&
               met;
    };
    const bool met = report("rows made when shown", grid, 0.05);
    return report("all rows made", wholeGrid, 0.5) && met;
}

// A window that is not on the screen yet paints nothing.
void WaitForScreen(const QWidget& window) {
    QElapsedTimer timer;
    timer.start();
    while (!window.windowHandle()->isExposed()) {
        QApplication::processEvents();
        if (timer.elapsed() > 10'000) {
            std::fprintf(stderr, "the window did not come up\n");
            std::exit(2);
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
    const auto many = ShownGrid(kManyRows, texts);
    const auto few = ShownGrid(kFewRows, texts);
    std::vector<double> manyTimes;
    std::vector<double> fewTimes;
    for (int round = 0; round < kRepaintRounds; ++round) {
        manyTimes.push_back(Milliseconds([&] { many->viewport()->repaint(); }));
        fewTimes.push_back(Milliseconds([&] { few->viewport()->repaint(); }));
    }
    return Report("full repaint, 100,000 rows (100 rows)", Median(manyTimes), Median(fewTimes), "ms", 1.1);
}

// Scrolls by screens through the middle of the table, each step painted.
template <typename Table>
double ScrollTime(Table& table) {
    constexpr int kSteps = 100;
    table.resize(800, 600);
    table.show();
    WaitForScreen(table);
    QApplication::processEvents();
    QScrollBar& bar = *table.verticalScrollBar();
    bar.setValue(bar.maximum() / 2);
    QApplication::processEvents();
    return Milliseconds([&] {
        for (int step = 0; step < kSteps; ++step) {
            bar.setValue(bar.value() + bar.pageStep());
            table.viewport()->repaint();
        }
    });
}

bool BenchScroll(const std::vector<QString>& texts) {
    std::vector<double> gridTimes;
    std::vector<double> viewTimes;
    for (int round = 0; round < kFillRounds; ++round) {
        CGridCtrl grid;
        FillGrid(grid, kManyRows, texts);
        gridTimes.push_back(ScrollTime(grid));
        TextModel model(texts);
        QTableView view;
        view.setModel(&model);
        viewTimes.push_back(ScrollTime(view));
    }
    return Report("100 screens scrolled and painted (QTableView with a model)", Median(gridTimes),
                  Median(viewTimes), "ms", 1.0);
}

// The exponent with which a time grows from 1,000 to 16,000 rows; 1 means in step with their number.
template <typename Work>
double GrowthExponent(Work work) {
    constexpr int kFew = 1'000;
    constexpr int kMany = 16'000;
    constexpr int kRounds = 9;
    std::vector<double> few;
    std::vector<double> many;
    for (int round = 0; round < kRounds; ++round) {
        for (int i = 0; i < kMany / kFew; ++i) {
            few.push_back(work(kFew));
        }
        many.push_back(work(kMany));
    }
    return std::log(Median(many) / Median(few)) / std::log(double{kMany} / kFew);
}

bool BenchGrowth(const std::vector<QString>& texts) {
    const auto shown = ShownGrid(kFewRows, texts);
    const auto refill = [&](int rows) {
        shown->DeleteNonFixedRows();
        shown->SetRowCount(rows + 1);
        QApplication::processEvents();
    };
    // Each new row comes before the last one, as on a page, and gets a text.
    const double append = GrowthExponent([&](int rows) {
        refill(1);
        return ProcessorMilliseconds([&] {
            for (int i = 0; i < rows; ++i) {
                const int row = shown->InsertRow({}, shown->GetRowCount() - 1);
                shown->SetItemText(row, 1, texts.front());
            }
        });
    });
    // The way a page deletes what is selected: always at the first row.
    const double remove = GrowthExponent([&](int rows) {
        refill(rows + 10);
        shown->SetSelectedRange({5, 0, rows + 4, kColumns - 1});
        return ProcessorMilliseconds([&] {
            for (int i = 0; i < rows; ++i) {
                shown->DeleteRow(5);
            }
        });
    });
    const bool appendMet =
        Report("growth of inserting rows, 1,000 to 16,000 (linear)", append, 1, "exponent", 1.1);
    return Report("growth of deleting rows, 1,000 to 16,000 (linear)", remove, 1, "exponent", 1.1) &&
           appendMet;
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
    const bool scrollMet = BenchScroll(texts);
    const bool growthMet = BenchGrowth(texts);
    return fillMet && repaintMet && scrollMet && growthMet ? 0 : 1;
}
