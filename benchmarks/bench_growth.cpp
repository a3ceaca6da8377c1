// How long pasting, submitting and deleting many rows takes, and how that grows with their number. An
// exponent of 1 means that twice the rows take twice the processor time. Rows are deleted past the questions
// that a page asks for each.
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <cmath>

#include "benchmarks/report.h"
#include "data/store/store_factory.h"
#include "editors/requirement_page.h"
#include "grid/grid_ctrl.h"
#include "tools/sample_database.h"

namespace {

using namespace quorvane;

constexpr int kFew = 1'000;
constexpr int kMany = 16'000;
constexpr int kPasted = 50'000;
constexpr int kRounds = 3;

struct Times {
    double pasteAsSeen;
    // Of the processor:
    double paste;
    double submit;
    double remove;
};

CString RowsAsText(int rows) {
    CString text;
    for (int row = 0; row < rows; ++row) {
        text += QStringLiteral("场所%1\t0.75m水平面\t11\t9\t300\t19\t80\n").arg(row);
    }
    return text;
}

SampleData OneBuildingType() {
    tagILLUMINANCESTANDARD place;
    place.ID = 1;
    place.Vocation = QStringLiteral("公共建筑");
    place.BuildingType = QStringLiteral("办公建筑");
    place.Location = QStringLiteral("会议室");
    SampleData data;
    data.Requirements.push_back(place);
    return data;
}

double TimeOfRemoving(int rows) {
    WorkingRecords<tagILLUMINANCESTANDARD> records;
    CGridCtrl grid;
    grid.SetRowMaker([](int) {});
    grid.SetFixedRowCount(1);
    grid.InsertColumn(QStringLiteral("场所"), 0);
    grid.SetRowCount(1 + rows);
    std::vector<int> ids;
    for (int row = 0; row < rows; ++row) {
        ids.push_back(records.Append({}));
    }
    return ProcessorMilliseconds([&] {
        for (const int id : ids) {
            records.Remove(id);
            grid.DeleteRow(1);
        }
    });
}

// A page on a file of its own, into whose append row as many rows are pasted by Ctrl+V.
Times Measure(int rows, bool submits) {
    const QTemporaryDir folder;
    WriteSampleDatabase(OneBuildingType(), folder.filePath(QStringLiteral("Vexal/灯具数据库.mdb")));
    CLightingDatabase database(CreateStoreConnection, folder.filePath(QStringLiteral("bin/quorvane")));
    if (!database.Connect()) {
        qFatal("the database did not open");
    }
    CQuorvaneDemandDlg page(database, nullptr);
    page.resize(780, 480);
    page.show();
    auto* tree = page.findChild<QTreeWidget*>();
    tree->setCurrentItem(tree->topLevelItem(0)->child(0));
    auto* grid = page.findChild<CGridCtrl*>();
    QGuiApplication::clipboard()->setText(RowsAsText(rows));
    grid->SetFocusCell({2, 1});
    Times times{};
    const auto paste = [&] {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier);
        QCoreApplication::sendEvent(grid, &key);
        QCoreApplication::sendPostedEvents();
        page.repaint();
    };
    times.pasteAsSeen = Milliseconds([&] { times.paste = ProcessorMilliseconds(paste); });
    if (grid->GetRowCount() != rows + 3) {
        qFatal("%d rows were not pasted", rows);
    }
    if (submits) {
        times.submit = ProcessorMilliseconds([&] { page.Submit(); });
        times.remove = TimeOfRemoving(rows);
    }
    return times;
}

double Exponent(double few, double many) {
    return std::log(many / few) / std::log(static_cast<double>(kMany) / kFew);
}

}  // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    std::vector<double> paste;
    std::vector<double> submit;
    std::vector<double> remove;
    std::vector<double> pasted;
    for (int round = 0; round < kRounds; ++round) {
        const Times few = Measure(kFew, true);
        const Times many = Measure(kMany, true);
        paste.push_back(Exponent(few.paste, many.paste));
        submit.push_back(Exponent(few.submit, many.submit));
        remove.push_back(Exponent(few.remove, many.remove));
        pasted.push_back(Measure(kPasted, false).pasteAsSeen);
    }
    bool met = Report("pasting 50,000 rows (1.5 s)", Median(pasted), 1'500, "ms", 1.0);
    met &= Report("pasting 1,000 to 16,000 rows (linear)", Median(paste), 1, "exponent", 1.1);
    met &= Report("submitting 1,000 to 16,000 rows (linear)", Median(submit), 1, "exponent", 1.1);
    met &= Report("deleting 1,000 to 16,000 rows (linear)", Median(remove), 1, "exponent", 1.1);
    return met ? 0 : 1;
}
