#include <QTest>
#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <random>
#include <set>

#include "data/utilization_factor_table.h"
#include "tests/support/failing_connection.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

using Values = std::vector<double>;
using Triple = std::array<int, 3>;
using Place = std::pair<Triple, double>;

const CString kExists = u"数据已存在"_s;
constexpr int kLuminaire = 7;

Values Shown(UtilizationFactorTable& table) {
    Values values;
    for (int column = 0; column < static_cast<int>(table.Headings().size()); ++column) {
        for (int row = 0; row < static_cast<int>(table.RowValues().size()); ++row) {
            values.push_back(table.GetFactor(row + 4, column + 1));
        }
    }
    return values;
}

// A table over a file of its own.
struct Bench : FailingDatabase {
    // The rows as (ID, Pcc, Pw, Pf, RCR_RI, UtilizationFactor), 7 in front of each being the luminaire.
    explicit Bench(const QString& rows)
        : FailingDatabase(
              u"insert into 利用系数 (LuminaireID,ID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) values "_s + rows) {
        table.Load(kLuminaire);
    }
    QStringList Stored() const {
        return file.Raw().Rows(
            u"select ID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor from 利用系数 where LuminaireID=7 order by ID"_s);
    }
    QStringList messages;
    UtilizationFactorTable table{database, [this](const CString& message) { messages << message; }};
};

template <typename Owner>
Triple TripleOf(const Owner& owner) {
    return {owner.Pcc, owner.Pw, owner.Pf};
}

// What the table should hold.
struct Model {
    std::set<Triple, std::greater<>> headings;
    std::set<double> rows;
    std::map<Place, double> cells;

    // Adds TO where FROM is empty, removes FROM where TO is empty, and else renames FROM with its cells.
    template <typename Owners, typename Part>
    bool Change(Owners& owners, Part Place::*part, std::optional<Part> from, std::optional<Part> to) {
        if (to && !owners.insert(*to).second) {
            return false;
        }
        if (from) {
            owners.erase(*from);
        }
        for (const auto& [present, value] : std::exchange(cells, {})) {
            Place place = present;
            const bool isMoved = from && place.*part == *from;
            if (!isMoved || to) {
                place.*part = isMoved ? *to : place.*part;
                cells[place] = value;
            }
        }
        return true;
    }

    bool IsShownBy(const UtilizationFactorTable& table) {
        auto factor = table.Factors().begin();
        bool isSame = table.Factors().size() == headings.size() * rows.size();
        for (auto heading = headings.begin(); isSame && heading != headings.end(); ++heading) {
            for (auto row = rows.begin(); isSame && row != rows.end(); ++row, ++factor) {
                isSame = TripleOf(*factor) == *heading && factor->RCR_RI == *row &&
                         factor->UtilizationFactor == cells[{*heading, *row}];
            }
        }
        return isSame && std::ranges::equal(table.RowValues(), rows) &&
               std::ranges::equal(table.Headings(), headings, {}, TripleOf<tagColHeading>);
    }
};

}  // namespace

class TestUtilizationFactorTable : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void RandomEditsEndInTheRightCells() {
        Bench bench(u"(8,900,80,50,20,1,0.9), (7,1,80,50,20,1,0.1)"_s);
        UtilizationFactorTable& table = bench.table;
        std::mt19937 random(1);
        const auto below = [&](std::size_t bound) { return static_cast<int>(random() % bound); };
        Model model{{{80, 50, 20}}, {1}, {{{{80, 50, 20}, 1}, 0.1}}};
        for (int step = 0; step < 600; ++step) {
            const bool isEmpty = model.headings.empty() || model.rows.empty();
            const int kind = below(isEmpty ? 2 : 8);  // add, modify, delete; a heading or a row
            const int column = isEmpty ? 0 : below(model.headings.size());
            const int row = isEmpty ? 0 : below(model.rows.size());
            const Triple to{50 + 10 * below(3), 30 + 20 * below(2), 20 * below(2)};
            const double toRow = std::array{0., 1e-300, 0.6, 0.8, 1., 1e300}.at(std::size_t(below(6)));
            std::optional<Triple> from;
            std::optional<double> fromRow;
            if (kind >= 2) {
                from = *std::next(model.headings.begin(), column);
                fromRow = *std::next(model.rows.begin(), row);
            }
            bench.messages.clear();
            if (kind < 6) {
                const auto newHeading = kind < 4 ? std::optional(to) : std::nullopt;
                const auto newRow = kind < 4 ? std::optional(toRow) : std::nullopt;
                const bool isSame = kind % 2 == 0 ? newHeading == from : newRow == fromRow;
                const bool isChanged = kind % 2 == 0
                                           ? model.Change(model.headings, &Place::first, from, newHeading)
                                           : model.Change(model.rows, &Place::second, fromRow, newRow);
                const bool results[]{kind == 0 && table.AddHeading(to[0], to[1], to[2]),
                                     kind == 1 && table.AddRow(toRow),
                                     kind == 2 && table.ModifyHeading(column, to[0], to[1], to[2]),
                                     kind == 3 && table.ModifyRow(row, toRow),
                                     kind == 4 && table.DeleteHeading(column),
                                     kind == 5 && table.DeleteRow(row)};
                QCOMPARE(results[kind], isChanged);
                QCOMPARE(bench.messages, isChanged || isSame ? QStringList() : QStringList(kExists));
            } else if (kind == 6) {
                table.SetFactor(row + 4, column + 1, model.cells[{*from, *fromRow}] = below(10000) / 1e4);
                QCOMPARE(table.GetFactor(row + 4, column + 1), (model.cells.at({*from, *fromRow})));
            } else {
                QVERIFY(table.Submit() && table.UnwrittenCount() == 0 && table.DeletedIds().empty());
                QVERIFY(table.Load(kLuminaire) && table.IsWhole() && bench.messages.isEmpty());
            }
            QVERIFY2(model.IsShownBy(table), qPrintable(QString::number(step)));
        }
        QCOMPARE(bench.file.Raw().Text(u"select UtilizationFactor from 利用系数 where ID=900"_s), u"0.9"_s);
    }

    void RowsOfOneCellAreWrittenTogether() {
        Bench bench(u"(7,1,80,50,20,1,0.1), (7,2,80,50,20,1,0.2), (7,3,70,50,20,1,0.3)"_s);
        bench.table.Load(kLuminaire);
        QCOMPARE(Shown(bench.table), Values({0.2, 0.3}));  // the newer row is the cell's
        bench.table.SetFactor(4, 1, 0.5);
        bench.table.ModifyHeading(0, 90, 50, 20);
        bench.table.Submit();
        QCOMPARE(bench.Stored(),
                 QStringList({u"1|90|50|20|1.0|0.5"_s, u"2|90|50|20|1.0|0.5"_s, u"3|70|50|20|1.0|0.3"_s}));
        bench.table.ClearFactors();
        bench.table.DeleteHeading(0);
        QStringList steps;
        bench.table.Submit([&](int done, int total) { steps << u"%1/%2"_s.arg(done).arg(total); });
        QCOMPARE(steps, QStringList({u"1/3"_s, u"2/3"_s, u"3/3"_s}));
        QCOMPARE(bench.Stored(), QStringList({u"3|70|50|20|1.0|0.0"_s}));
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument, bench.table.GetFactor(3, 1));
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument, bench.table.GetFactor(4, 2));
    }

    void WhatTheDiskDidNotConfirmIsUnwritten() {
        Bench bench(u"(7,1,80,50,20,1,0.1)"_s);
        bench.log.failing = QStringList{u"EndSubmit"_s};
        QVERIFY(bench.table.Submit());
        QCOMPARE(bench.table.UnwrittenCount(), 1);
        bench.log.failing.clear();
        bench.log.onStatement = [](QString& statement) { statement.replace(u"=0.1 "_s, u"=0.2 "_s); };
        QVERIFY(bench.table.Submit());
        QCOMPARE(bench.table.DifferentCount(), 1);
    }

    void GapsAreToldOnceAndFilled() {
        // First, middle and last cell are missing.
        Bench bench(
            u"(7,1,70,50,20,1.25,0.1), (7,2,70,50,20,1E300,0.2), (7,3,70,30,20,0.6,0.3),"
            "(7,4,70,30,20,1E300,0.4), (7,5,50,50,20,0.6,0.5), (7,6,50,50,20,1.25,0.6)"_s);
        const Values values{0, 0.1, 0.2, 0.3, 0, 0.4, 0.5, 0.6, 0};
        QCOMPARE(Shown(bench.table), values);
        QCOMPARE(bench.messages, QStringList({u"(70,50,20,0.6)数据不存在"_s, u"(70,30,20,1.25)数据不存在"_s,
                                              u"(50,50,20,1E+300)数据不存在"_s}));
        QCOMPARE(Shown(bench.table), values);
        QCOMPARE(bench.messages.size(), 3);
        bench.table.Submit();
        QCOMPARE(bench.Stored().mid(6), QStringList({u"7|70|50|20|0.6|0.0"_s, u"8|70|30|20|1.25|0.0"_s,
                                                     u"9|50|50|20|1.0e+300|0.0"_s}));
    }

    void ReloadAfterARename() {
        Bench bench(u"(7,1,80,50,20,1,0.1), (7,2,70,50,20,1,0.2), (7,3,50,50,20,1,0.3)"_s);
        bench.table.DeleteHeading(2);
        bench.table.ModifyHeading(0, 75, 50, 20);
        QVERIFY(bench.table.Reload());
        // The file still knows the old name alone. Its row must neither vanish nor push others out of place.
        QCOMPARE(Shown(bench.table), Values({0, 0.2}));
        QCOMPARE(bench.messages, QStringList(u"(75,50,20,1)数据不存在"_s));
        bench.table.Submit();
        QCOMPARE(bench.Stored(),
                 QStringList({u"1|80|50|20|1.0|0.1"_s, u"2|70|50|20|1.0|0.2"_s, u"4|75|50|20|1.0|0.0"_s}));
        // What a statement fails to do is done by the next attempt.
        bench.table.DeleteHeading(1);
        bench.table.AddRow(2);
        bench.database.Disconnect();
        QVERIFY(!bench.table.Reload());
        QVERIFY(bench.table.Submit());
        QCOMPARE(bench.table.UnwrittenCount(), 4);
        bench.database.Connect();
        bench.table.Submit();
        QCOMPARE(bench.Stored(),
                 QStringList({u"1|80|50|20|1.0|0.1"_s, u"4|75|50|20|1.0|0.0"_s, u"5|75|50|20|2.0|0.0"_s}));
    }
};

QTEST_APPLESS_MAIN(TestUtilizationFactorTable)
#include "test_utilization_factor_table.moc"
