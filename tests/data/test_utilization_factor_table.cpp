#include <QTest>
#include <algorithm>
#include <array>
#include <map>
#include <random>

#include "data/lighting_database.h"
#include "data/store/store_factory.h"
#include "data/utilization_factor_table.h"
#include "tests/support/fake_connection.h"
#include "tests/support/temporary_lighting_database.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

using Values = std::vector<double>;
using Triple = std::array<int, 3>;
using Cells = std::map<std::pair<Triple, double>, double>;

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
struct Bench {
    // The rows as (ID, Pcc, Pw, Pf, RCR_RI, UtilizationFactor), 7 in front of each being the luminaire.
    explicit Bench(const QString& rows) {
        file.Raw().Execute(
            u"insert into 利用系数 (LuminaireID,ID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) values "_s + rows);
        database.Connect();
        table.Load(kLuminaire);
    }
    QStringList Stored() const {
        return file.Raw().Rows(
            u"select ID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor from 利用系数 where LuminaireID=7 order by ID"_s);
    }
    TemporaryLightingDatabase file;
    CLightingDatabase database{CreateStoreConnection, file.ExecutablePath()};
    QStringList messages;
    UtilizationFactorTable table{database, [this](const CString& message) { messages << message; }};
};

Triple TripleOf(const auto& owner) {
    return {owner.Pcc, owner.Pw, owner.Pf};
}

// All factors, once headings, row values and factors are seen to stand in their order and complete.
Cells CellsOf(const UtilizationFactorTable& table) {
    Cells cells;
    std::vector<Triple> headings;
    for (const tagColHeading& heading : table.Headings()) {
        headings.push_back(TripleOf(heading));
        for (const double rcr : table.RowValues()) {
            const tagLUMINAIREUTILIZATIONFACTOR& factor = table.Factors().at(cells.size());
            cells[{TripleOf(factor), factor.RCR_RI}] = factor.UtilizationFactor;
            if (TripleOf(factor) != headings.back() || factor.RCR_RI != rcr) {
                QTest::qFail("a factor is out of place", __FILE__, __LINE__);
            }
        }
    }
    if (!std::is_sorted(headings.rbegin(), headings.rend()) || cells.size() != table.Factors().size() ||
        !std::is_sorted(table.RowValues().begin(), table.RowValues().end())) {
        QTest::qFail("the table is out of order", __FILE__, __LINE__);
    }
    return cells;
}

}  // namespace

class TestUtilizationFactorTable : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void RandomEditsEndInTheRightCells() {
        Bench bench(u"(8,900,80,50,20,1,0.9), (7,1,80,50,20,1,0.1)"_s);
        UtilizationFactorTable& table = bench.table;
        std::mt19937 random(1);
        const auto below = [&](std::size_t bound) { return static_cast<int>(random() % bound); };
        for (int step = 0; step < 600 && !QTest::currentTestFailed(); ++step) {
            const Cells before = CellsOf(table);
            const std::vector<tagColHeading> headings = table.Headings();
            const Values rows = table.RowValues();
            const Triple to{50 + 10 * below(3), 30 + 20 * below(2), 20 * below(2)};
            const double toRow =
                std::array{0., 1e-300, 0.6, 0.8, 1., 1e300}[static_cast<std::size_t>(below(6))];
            const bool isEmpty = headings.empty() || rows.empty();
            const int column = isEmpty ? 0 : below(headings.size());
            const int row = isEmpty ? 0 : below(rows.size());
            const Triple from = isEmpty ? to : TripleOf(headings[std::size_t(column)]);
            const double fromRow = isEmpty ? toRow : rows[std::size_t(row)];
            const bool hasTo =
                std::any_of(headings.begin(), headings.end(),
                            [&](const tagColHeading& heading) { return TripleOf(heading) == to; });
            const bool hasToRow = std::find(rows.begin(), rows.end(), toRow) != rows.end();
            bench.messages.clear();
            bool isTold = false;
            Cells after = before;
            // Takes the cells of the column or row to another one, or away.
            const auto move = [&](auto part, const auto& present, const auto* other) {
                after.clear();
                for (const auto& [presentKey, value] : before) {
                    auto key = presentKey;
                    if (key.*part == present && other != nullptr) {
                        key.*part = *other;
                        after[key] = value;
                    } else if (key.*part != present) {
                        after[key] = value;
                    }
                }
            };
            using Key = Cells::key_type;
            switch (isEmpty ? below(2) : below(8)) {
                case 0:
                    QCOMPARE(table.AddHeading(to[0], to[1], to[2]), !hasTo);
                    isTold = hasTo;
                    for (const double rcr : rows) {
                        after.try_emplace({to, rcr}, 0);
                    }
                    break;
                case 1:
                    QCOMPARE(table.AddRow(toRow), !hasToRow);
                    isTold = hasToRow;
                    for (const tagColHeading& heading : headings) {
                        after.try_emplace({TripleOf(heading), toRow}, 0);
                    }
                    break;
                case 2:
                    QCOMPARE(table.ModifyHeading(column, to[0], to[1], to[2]), !hasTo);
                    isTold = hasTo && to != from;
                    hasTo ? void() : move(&Key::first, from, &to);
                    break;
                case 3:
                    QCOMPARE(table.ModifyRow(row, toRow), !hasToRow);
                    isTold = hasToRow && toRow != fromRow;
                    hasToRow ? void() : move(&Key::second, fromRow, &toRow);
                    break;
                case 4:
                    QVERIFY(table.DeleteHeading(column));
                    move(&Key::first, from, static_cast<const Triple*>(nullptr));
                    break;
                case 5:
                    QVERIFY(table.DeleteRow(row));
                    move(&Key::second, fromRow, static_cast<const double*>(nullptr));
                    break;
                case 6:
                    table.SetFactor(row + 4, column + 1, after[{from, fromRow}] = below(10000) / 1e4);
                    QCOMPARE(table.GetFactor(row + 4, column + 1), after.at({from, fromRow}));
                    break;
                default:
                    table.Submit();
                    QCOMPARE(table.UnwrittenCount(), 0);
                    QVERIFY(table.DeletedIds().empty() && table.Load(kLuminaire) && table.IsWhole());
            }
            QCOMPARE(bench.messages, isTold ? QStringList(kExists) : QStringList());
            QCOMPARE(CellsOf(table), after);
        }
        QCOMPARE(bench.file.Raw().Text(u"select UtilizationFactor from 利用系数 where ID=900"_s), u"0.9"_s);
    }

    void RowsOfOneCellAreWrittenTogether() {
        Bench bench(u"(7,1,80,50,20,1,0.1), (7,2,80,50,20,1,0.2), (7,3,70,50,20,1,0.3)"_s);
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
        const auto connection = std::make_shared<FakeConnection>();
        connection->endSubmitFailure = u"disk error"_s;
        CLightingDatabase database(FakeConnection::Factory(connection), u"/opt/q/bin/quorvane"_s);
        QVERIFY(database.Connect());
        UtilizationFactorTable table(database, [](const CString&) {});
        QVERIFY(table.AddHeading(80, 50, 20) && table.AddRow(1) && table.Submit());
        QCOMPARE(table.UnwrittenCount(), 1);
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
