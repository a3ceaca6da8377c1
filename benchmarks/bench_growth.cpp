// How long the work on many rows takes, and how that grows with their number, on both kinds of files. An
// exponent of 1 means that twice the rows take twice the processor time; of the steps from each number of
// rows to the next, the one with the largest exponent is reported. What a user waits for at 100,000 rows is
// reported beside the time that they should wait at most, as they see it: until the picture is painted.
#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/report.h"
#include "data/store/store_factory.h"
#include "editors/requirement_page.h"
#include "grid/grid_ctrl.h"
#include "tools/sample_database.h"

namespace {

using namespace quorvane;

constexpr std::array kSizes = {1'000, 10'000, 100'000};
constexpr int kMany = kSizes.back();
constexpr int kPasted = 50'000;
const CString kFilled = QStringLiteral("地面");
constexpr int kScreenful = 100;
constexpr int kEntries = 300;
constexpr int kRounds = 5;
constexpr double kWait = 150;    // ms
constexpr double kKeyWait = 16;  // ms

struct Time {
    double seen;       // ms
    double processor;  // ms
};

Time Read(const Stopwatch& watch) {
    return {watch.Milliseconds(), watch.ProcessorMilliseconds()};
}

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

// Answers each question with yes, and with yes to all where that is offered.
class Consent {
public:
    Consent() {
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box != nullptr && box->isVisible()) {
                Answer(*box);
            }
        });
        m_timer.start(1);
    }
    // Runs from the last answer on.
    const Stopwatch& SinceLast() const { return m_sinceLast; }

private:
    void Answer(const QMessageBox& box) {
        QAbstractButton* yes = nullptr;
        for (QAbstractButton* button : box.buttons()) {
            const bool isYesToAll = button->text() == u"全部是";
            yes = isYesToAll || (yes == nullptr && button->text() == u"是") ? button : yes;
        }
        if (yes == nullptr) {
            qFatal("there is no answer yes");
        }
        m_sinceLast = Stopwatch();
        yes->click();
    }

    QTimer m_timer;
    Stopwatch m_sinceLast;
};

// The page of requirements on a file of its own with one row, which takes as many more as are pasted.
class Workplace {
public:
    explicit Workplace(DatabaseKind kind)
        : m_file((WriteSampleDatabase(OneBuildingType(), FileIn(m_folder), kind), FileIn(m_folder))),
          m_database(CreateStoreConnection, m_folder.filePath(QStringLiteral("bin/quorvane"))),
          m_isOpen(m_database.Connect() && m_database.IsSound()),
          m_page(m_database, nullptr) {
        if (!m_isOpen) {
            qFatal("the database did not open");
        }
        m_page.resize(780, 480);
        m_page.show();
        m_tree = m_page.findChild<QTreeWidget*>();
        Choose();
        m_grid = m_page.findChild<CGridCtrl*>();
        m_grid->setFocus();
    }

    Time Paste(int rows) {
        QGuiApplication::clipboard()->setText(RowsAsText(rows));
        m_grid->SetFocusCell({2, 1});
        const Time time = Press(Qt::Key_V, Qt::ControlModifier);
        if (m_grid->GetRowCount() != rows + 3) {
            qFatal("%d rows were not pasted", rows);
        }
        return time;
    }
    // Fills a column down from its first cell.
    Time Fill() {
        m_grid->SetFocusCell({1, 2});
        m_grid->SetItemText(1, 2, kFilled);
        Press(Qt::Key_Space, Qt::ControlModifier);
        const Time time = Press(Qt::Key_D, Qt::ControlModifier);
        RequireLast(true);
        return time;
    }
    Time Undo() {
        const Time time = Run(Action(u"撤销"));
        RequireLast(false);
        return time;
    }
    Time Submit() {
        return Painted([this] { m_page.Submit(); });
    }
    // Deletes all rows but the first two and submits. The time runs from the answer to the last question on.
    Time Delete() {
        const Consent consent;
        m_grid->SetSelectedRange({3, 1, m_grid->GetRowCount() - 2, 1});
        m_page.DeleteSelected();
        m_page.Submit();
        Show();
        const Time time = Read(consent.SinceLast());
        if (m_grid->GetRowCount() != 4 || m_page.IsModified()) {
            qFatal("the rows were not deleted");
        }
        return time;
    }
    Time Load() {
        m_tree->setCurrentItem(nullptr);
        return Painted([this] { Choose(); });
    }
    Time Sort() {
        m_grid->SetFocusCell({1, 1});
        return Run(Action(u"降序"));
    }
    Time Find() {
        Run(Action(u"查找"));
        auto* sought = m_grid->findChild<QLineEdit*>(QStringLiteral("findText"));
        const Time time = Painted([sought] { sought->setText(QStringLiteral("所99")); });
        if (m_grid->findChild<QLabel*>(QStringLiteral("findCount"))->text().isEmpty()) {
            qFatal("nothing was found");
        }
        return time;
    }
    // Types a number of two digits into one cell after another. How long 99 of 100 keys take at most until
    // the cell is painted.
    double SlowKey() {
        m_grid->SetFocusCell({1, 5});
        std::vector<double> times;
        for (int entry = 0; entry < kEntries; ++entry) {
            for (const auto& [key, text] :
                 {std::pair{Qt::Key_4, u"4"}, {Qt::Key_5, u"5"}, {Qt::Key_Return, u"\r"}}) {
                QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QString::fromUtf16(text));
                QWidget* target = m_page.focusWidget();
                times.push_back(Milliseconds([&] {
                    QCoreApplication::sendEvent(target, &press);
                    QCoreApplication::processEvents();
                }));
            }
        }
        const auto slow = times.begin() + static_cast<std::ptrdiff_t>(times.size() * 99 / 100);
        std::nth_element(times.begin(), slow, times.end());
        return *slow;
    }

private:
    static QString FileIn(const QTemporaryDir& folder) {
        return folder.filePath(QStringLiteral("Vexal/灯具数据库.mdb"));
    }
    QAction* Action(QStringView text) const {
        for (QAction* action : m_grid->findChildren<QAction*>()) {
            if (action->text().startsWith(text)) {
                return action;
            }
        }
        qFatal("there is no such command");
    }
    Time Run(QAction* action) {
        return Painted([action] { action->trigger(); });
    }
    // Whether the last row is filled like the first one.
    void RequireLast(bool isFilled) const {
        if ((m_grid->GetItemText(m_grid->GetRowCount() - 2, 2) == kFilled) != isFilled) {
            qFatal("the column was not filled or not undone");
        }
    }
    void Choose() { m_tree->setCurrentItem(m_tree->topLevelItem(0)->child(0)); }
    template <typename Work>
    Time Painted(Work work) {
        const Stopwatch watch;
        work();
        Show();
        return Read(watch);
    }
    void Show() {
        QCoreApplication::sendPostedEvents();
        m_page.repaint();
    }
    Time Press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        return Painted([&] {
            QKeyEvent press(QEvent::KeyPress, key, modifiers);
            QCoreApplication::sendEvent(m_grid, &press);
        });
    }

    QTemporaryDir m_folder;
    QString m_file;
    CLightingDatabase m_database;
    bool m_isOpen;
    CQuorvaneDemandDlg m_page;
    QTreeWidget* m_tree;
    CGridCtrl* m_grid;
};

// By what is done.
using Times = std::map<std::string, Time>;

Times Measure(DatabaseKind kind, int rows) {
    Workplace workplace(kind);
    Times times;
    times["pasting"] = workplace.Paste(rows);
    times["filling"] = workplace.Fill();
    times["undoing"] = workplace.Undo();
    times["submitting"] = workplace.Submit();
    times["loading"] = workplace.Load();
    times["sorting"] = workplace.Sort();
    times["finding"] = workplace.Find();
    times["deleting and submitting"] = workplace.Delete();
    return times;
}

// Of the straight line on logarithmic scales, as the number of rows grows from one size to another.
double Exponent(double few, double many, size_t size) {
    return std::log(many / few) / std::log(static_cast<double>(kSizes[size + 1]) / kSizes[size]);
}

// The times of one kind of work with one number of rows.
double MedianOf(const std::vector<Times>& rounds, const std::string& work, double Time::*kind) {
    std::vector<double> times(rounds.size());
    std::transform(rounds.begin(), rounds.end(), times.begin(),
                   [&](const Times& round) { return round.at(work).*kind; });
    return Median(times);
}

bool ReportGrowth(const std::string& file, DatabaseKind kind) {
    std::array<std::vector<Times>, kSizes.size()> rounds;
    for (int round = 0; round < kRounds; ++round) {
        for (size_t size = 0; size < kSizes.size(); ++size) {
            rounds[size].push_back(Measure(kind, kSizes[size]));
        }
    }
    const std::string growth = " 1,000, 10,000 and 100,000 rows" + file + " (linear)";
    bool met = true;
    for (const auto& [work, time] : rounds.back().front()) {
        double exponent = 0;
        for (size_t size = 0; size + 1 < kSizes.size(); ++size) {
            exponent = std::max(exponent, Exponent(MedianOf(rounds[size], work, &Time::processor),
                                                   MedianOf(rounds[size + 1], work, &Time::processor), size));
        }
        met &= Report((work + growth).c_str(), exponent, 1, "exponent", 1.1);
    }
    const std::string waits = " in 100,000 rows" + file + " (longest wait)";
    for (const char* work : {"sorting", "finding", "undoing"}) {
        met &= Report((work + waits).c_str(), MedianOf(rounds.back(), work, &Time::seen), kWait, "ms", 1.0);
    }
    return met;
}

double SlowKeyIn(DatabaseKind kind, int rows) {
    Workplace workplace(kind);
    workplace.Paste(rows);
    return workplace.SlowKey();
}

bool ReportWaits(const std::string& file, DatabaseKind kind) {
    std::vector<double> pasted;
    std::vector<double> fewRows;
    std::vector<double> manyRows;
    for (int round = 0; round < kRounds; ++round) {
        pasted.push_back(Workplace(kind).Paste(kPasted).seen);
        fewRows.push_back(SlowKeyIn(kind, kScreenful));
        manyRows.push_back(SlowKeyIn(kind, kMany));
    }
    const std::string key = "key to painted cell in 100,000 rows, 99 of 100 keys" + file;
    const bool pasteMet =
        Report(("pasting 50,000 rows" + file + " (1.5 s)").c_str(), Median(pasted), 1'500, "ms", 1.0);
    const bool keyMet = Report((key + " (longest wait)").c_str(), Median(manyRows), kKeyWait, "ms", 1.0);
    return Report((key + " (in 100 rows)").c_str(), Median(manyRows), Median(fewRows), "ms", 1.2) &&
           pasteMet && keyMet;
}

}  // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    bool met = true;
    for (const auto& [file, kind] :
         {std::pair{", SQLite", DatabaseKind::Sqlite}, {", Access", DatabaseKind::Access}}) {
        met &= ReportGrowth(file, kind);
        met &= ReportWaits(file, kind);
    }
    return met ? 0 : 1;
}
