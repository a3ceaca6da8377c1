#include <QTest>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <tuple>

#include "data/lighting_database.h"
#include "data/store/store_factory.h"
#include "data/utilization_factor_table.h"
#include "tests/support/temporary_lighting_database.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

using Triple = std::tuple<int, int, int>;
using Values = std::vector<double>;

const CString kExists = u"数据已存在"_s;
constexpr int kLuminaire = 7;

struct Key {
    Triple triple;
    double rcr;
    bool operator==(const Key&) const = default;
    bool operator<(const Key& other) const {
        return std::tie(triple, rcr) < std::tie(other.triple, other.rcr);
    }
};

Values Shown(UtilizationFactorTable& table) {
    Values values;
    for (int column = 0; column < static_cast<int>(table.Headings().size()); ++column) {
        for (int row = 0; row < static_cast<int>(table.RowValues().size()); ++row) {
            values.push_back(table.GetFactor(row + 4, column + 1));
        }
    }
    return values;
}

// A table over a file of its own, or over a connection that only pretends.
struct Bench {
    // The rows as (ID, Pcc, Pw, Pf, RCR_RI, UtilizationFactor), 7 in front of each being the luminaire.
    explicit Bench(const QString& rows) {
        file.Raw().Execute(
            u"insert into 利用系数 (LuminaireID,ID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) values "_s + rows);
        database.Connect();
        connection->Execute(u"PRAGMA synchronous=OFF"_s);  // thousands of statements, none outlives the test
        table.Load(kLuminaire);
    }
    QStringList Stored() const {
        return file.Raw().Rows(
            u"select ID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor from 利用系数 where LuminaireID=7 order by ID"_s);
    }
    TemporaryLightingDatabase file;
    std::shared_ptr<Connection> connection;
    CLightingDatabase database{
        [this](const CString& text) { return connection = CreateStoreConnection(text); },
        file.ExecutablePath()};
    QStringList messages;
    UtilizationFactorTable table{database, [this](const CString& message) { messages << message; }};
};

// The same table kept as a plain map, and a walk that does the same at random to both. It sets out from a
// file with gaps and with cells that stand in it twice, and from two edits made before anything has been
// shown.
class RandomWalk {
public:
    explicit RandomWalk(unsigned seed) : m_random(seed) {
        for (const Triple& triple : {Triple{80, 50, 20}, {80, 30, 20}, {50, 50, 0}}) {
            for (const double rcr : {0.6, 1., 1.25}) {
                for (int copies = Below(3); copies > 0; --copies) {
                    Store({triple, rcr}, Below(10000) / 1e4);
                }
            }
        }
        Load();
        EditHeadings();
        EditRows();
    }

    int Below(std::size_t bound) {
        return std::uniform_int_distribution<int>(0, static_cast<int>(bound) - 1)(m_random);
    }
    auto Pick(const auto& values) { return *std::next(values.begin(), Below(values.size())); }
    static int IndexOf(const auto& values, const auto& value) {
        return static_cast<int>(std::distance(values.begin(), values.find(value)));
    }

    void Step() {
        const int kind = Below(40);
        if (kind < 13) {
            EditHeadings();
        } else if (kind < 26) {
            EditRows();
        } else if (kind == 26) {
            Submit();
        } else if (kind == 27) {
            Load();
        } else if (kind == 28 && !m_renamed) {
            Reload();
        } else if (!m_cells.empty()) {
            const Key key{Pick(m_headings), Pick(m_rows)};
            m_cells[key].value = Below(10000) / 1e4;
            m_table.SetFactor(IndexOf(m_rows, key.rcr) + 4, IndexOf(m_headings, key.triple) + 1,
                              m_cells[key].value);
        }
    }

    void Check() {
        std::vector<tagColHeading> headings;
        Values values;
        for (const auto& [Pcc, Pw, Pf] : m_headings) {
            headings.push_back({Pcc, Pw, Pf});
            for (const double rcr : m_rows) {
                values.push_back(m_cells.at({{Pcc, Pw, Pf}, rcr}).value);
            }
        }
        QCOMPARE(m_table.Headings(), headings);
        QCOMPARE(m_table.RowValues(), Values(m_rows.begin(), m_rows.end()));
        QCOMPARE(Shown(m_table), values);
        QCOMPARE(m_table.Factors().size(), m_cells.size());
        qsizetype gaps = 0;
        for (auto& [key, cell] : m_cells) {
            gaps += std::exchange(cell.isGap, false) ? 1 : 0;
        }
        QCOMPARE(std::exchange(m_bench.messages, {}).size(), gaps);
    }

private:
    struct Cell {
        double value = 0;
        std::optional<double> stored;
        bool isGap = false;  // to be told once
        int rows = 1;        // in the file, once submitted
    };

    // A row that came later counts, the others stay.
    void Store(const Key& key, double value) {
        const auto& [Pcc, Pw, Pf] = key.triple;
        tagLUMINAIREUTILIZATIONFACTOR factor{0, kLuminaire, Pcc, Pw, Pf, key.rcr, value};
        QVERIFY(m_bench.database.InsertUtilizationFactor(factor));
        Cell& cell = m_submitted[key];
        cell.rows = cell.stored ? cell.rows + 1 : 1;
        cell.stored = cell.value = value;
    }

    // Gives every heading a cell in every row.
    void CompleteCells(bool areGaps) {
        for (const Triple& triple : m_headings) {
            for (const double rcr : m_rows) {
                const auto [place, isNew] = m_cells.try_emplace({triple, rcr});
                place->second.isGap = place->second.isGap || (isNew && areGaps);
            }
        }
    }

    void EditHeadings() {
        const Triple to{Pick(std::set{80, 50}), Pick(std::set{50, 30}), Pick(std::set{0, 20})};
        const int Pcc = std::get<0>(to);
        const int Pw = std::get<1>(to);
        const int Pf = std::get<2>(to);
        Change(
            m_headings, &Key::triple, to, [&] { return m_table.AddHeading(Pcc, Pw, Pf); },
            [&](int column) { return m_table.ModifyHeading(column, Pcc, Pw, Pf); },
            [&](int column) { return m_table.DeleteHeading(column); });
    }
    void EditRows() {
        const double to = Pick(std::set{0., 1e-300, 0.6, 0.8, 1., 1.25, 10., 1e300});
        Change(
            m_rows, &Key::rcr, to, [&] { return m_table.AddRow(to); },
            [&](int row) { return m_table.ModifyRow(row, to); },
            [&](int row) { return m_table.DeleteRow(row); });
    }

    // Adds, renames or removes a column or a row; `part` is what tells its cells.
    template <typename Value>
    void Change(auto& values, Value Key::*part, const Value& to, auto add, auto modify, auto remove) {
        const int kind = values.empty() ? 0 : Below(13);
        const Value from = values.empty() ? to : Pick(values);
        const int index = IndexOf(values, from);
        if (kind >= 10) {
            QVERIFY(remove(index));
            values.erase(from);
            std::erase_if(m_cells, [&](const auto& cell) { return cell.first.*part == from; });
            return;
        }
        const bool isNew = values.insert(to).second;
        const bool isTold = !isNew && (kind < 6 || from != to);
        QCOMPARE(kind < 6 ? add() : modify(index), isNew);
        QCOMPARE(std::exchange(m_bench.messages, {}), isTold ? QStringList(kExists) : QStringList());
        if (kind >= 6 && isNew) {
            values.erase(from);
            std::map<Key, Cell> cells;
            for (const auto& [key, cell] : m_cells) {
                Key renamed = key;
                renamed.*part = key.*part == from ? to : key.*part;
                cells.emplace(renamed, cell);
            }
            m_cells = cells;
            m_renamed = true;
        }
        CompleteCells(false);
    }

    void Submit() {
        QVERIFY(m_table.Submit());
        QCOMPARE(m_table.UnwrittenCount(), 0);
        QVERIFY(m_table.DeletedIds().empty());
        m_renamed = false;
        for (auto& [key, cell] : m_cells) {
            cell.stored = cell.value;
        }
        m_submitted = m_cells;
        std::map<Key, int> rows;
        for (const QString& row : m_bench.Stored()) {
            const QStringList is = row.split(u'|');
            const Key key{{is[1].toInt(), is[2].toInt(), is[3].toInt()}, is[4].toDouble()};
            QCOMPARE(is[5].toDouble(), m_cells.at(key).value);
            ++rows[key];
        }
        QCOMPARE(rows.size(), m_cells.size());
        for (const auto& [key, count] : rows) {
            QCOMPARE(count, m_cells.at(key).rows);
        }
        QCOMPARE(m_bench.file.Raw().Text(u"select UtilizationFactor from 利用系数 where ID=900"_s), u"0.9"_s);
    }

    // Values go back to what the file holds; cells that it does not hold are gaps.
    void Reload() {
        QVERIFY(m_table.Reload());
        for (auto& [key, cell] : m_cells) {
            cell.isGap = !cell.stored;
            cell.value = cell.stored.value_or(0);
        }
    }

    void Load() {
        QVERIFY(m_table.Load(kLuminaire));
        m_headings.clear();
        m_rows.clear();
        m_cells = m_submitted;
        m_renamed = false;
        for (const auto& [key, cell] : m_cells) {
            m_headings.insert(key.triple);
            m_rows.insert(key.rcr);
        }
        CompleteCells(true);
    }

    std::mt19937 m_random;
    Bench m_bench{u"(8,900,80,50,20,1,0.9)"_s};  // another luminaire's, to stay as it is
    UtilizationFactorTable& m_table = m_bench.table;
    std::set<Triple, std::greater<>> m_headings;
    std::set<double> m_rows;
    std::map<Key, Cell> m_cells;
    std::map<Key, Cell> m_submitted;
    bool m_renamed = false;  // since the last submit
};

}  // namespace

class TestUtilizationFactorTable : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void RandomEditsEndInTheRightCells() {
        for (const unsigned seed : {1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 10U}) {
            RandomWalk walk(seed);
            for (int step = 0; step < 250; ++step) {
                walk.Check();
                walk.Step();
                QVERIFY2(!QTest::currentTestFailed(), qPrintable(u"seed %1"_s.arg(seed)));
            }
        }
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
