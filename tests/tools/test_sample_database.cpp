#include <sqlite3.h>

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <map>
#include <tuple>

#include "tools/sample_database.h"
#include "tools/sample_error.h"

using namespace quorvane;

namespace {

using Rows = std::vector<QStringList>;

// The rows of a query; a NULL reads as "NULL".
Rows Query(const QString& file, const QString& statement) {
    Rows rows;
    const auto collect = [](void* target, int count, char** values, char**) {
        QStringList row;
        for (int i = 0; i < count; ++i) {
            row += values[i] ? QString::fromUtf8(values[i]) : QStringLiteral("NULL");
        }
        static_cast<Rows*>(target)->push_back(row);
        return 0;
    };
    sqlite3* database = nullptr;
    sqlite3_open_v2(file.toUtf8().constData(), &database, SQLITE_OPEN_READONLY, nullptr);
    if (sqlite3_exec(database, statement.toUtf8().constData(), collect, &rows, nullptr) != SQLITE_OK) {
        qWarning("%s", sqlite3_errmsg(database));
        rows = {{QStringLiteral("failed")}};
    }
    sqlite3_close(database);
    return rows;
}

QByteArray Contents(const QString& file) {
    QFile source(file);
    return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArrayLiteral("unreadable");
}

void Write(const QString& file, const QByteArray& bytes) {
    QFile target(file);
    QVERIFY(target.open(QIODevice::WriteOnly));
    target.write(bytes);
}

// What the operation complains of, or an empty text.
template <typename Operation>
QString Complaint(const Operation& operation) {
    try {
        operation();
    } catch (const SampleError& error) {
        return error.Message();
    }
    return {};
}

struct Triple {
    int pcc, pw, pf;
    bool operator<(const Triple& other) const {
        return std::tie(pcc, pw, pf) < std::tie(other.pcc, other.pw, other.pf);
    }
    bool NowhereDarkerThan(const Triple& other) const {
        return pcc >= other.pcc && pw >= other.pw && pf >= other.pf;
    }
};
using FactorTable = std::map<Triple, std::map<double, double>>;

void CheckFactorTable(const FactorTable& table, bool roomIndex, double efficiency) {
    const std::size_t rowCount = table.begin()->second.size();
    QVERIFY(table.size() >= 10 && rowCount >= 10);
    for (const auto& [triple, column] : table) {
        QCOMPARE(column.size(), rowCount);
        const double bound = efficiency / 100 / (1 - qMax(triple.pcc, triple.pw) * triple.pf / 1e4);
        for (auto cell = column.begin(); cell != column.end(); ++cell) {
            QVERIFY(cell->second > 0 && cell->second <= bound + 0.005);
            if (cell != column.begin()) {
                const double previous = std::prev(cell)->second;
                QVERIFY(roomIndex ? cell->second >= previous : cell->second <= previous);
            }
            for (const auto& [other, otherColumn] : table) {
                QVERIFY(otherColumn.contains(cell->first));
                QVERIFY(!triple.NowhereDarkerThan(other) || cell->second >= otherColumn.at(cell->first));
            }
        }
        QVERIFY(column.begin()->second != column.rbegin()->second);
    }
}

}  // namespace

class TestSampleDatabase : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_file;

    QString Path(const QString& name) const { return m_folder.filePath(name); }

private Q_SLOTS:
    void initTestCase() {
        m_file = Path(QStringLiteral("a/Vexal/灯具数据库.mdb"));
        WriteSampleDatabase(ReadSampleData({}), m_file);
        QCOMPARE(QDir(Path(QStringLiteral("a/Vexal"))).entryList(QDir::Files).size(), 1);
    }

    void HoldsNothingThatBreaksARule_data() {
        QTest::addColumn<QString>("offenders");
        const auto rule = [](const char* name, const QString& offenders) {
            QTest::newRow(name) << offenders;
        };
        rule("mixed light is 5 and 5 is nothing else",
             QStringLiteral("select ID from 光源类别 where (ID like '%5%') <> (LamphouseType = '混光灯') or "
                            "(LamphouseType = '混光灯') <> (ID = 5)"));
        rule("light sources have a category that takes them",
             QStringLiteral("select ID from 光源 where LamphouseType not in (select ID from 光源类别 where "
                            "LamphouseType not in ('混光灯', '常用灯具'))"));
        rule(
            "every category but the two special ones has light sources",
            QStringLiteral("select ID from 光源类别 where LamphouseType not in ('混光灯', '常用灯具') and ID "
                           "not in (select LamphouseType from 光源)"));
        rule("name and model are distinct",
             QStringLiteral(
                 "select 1 from 光源 group by LamphouseName || ':' || LamphouseModel collate nocase "
                 "having count(*) > 1"));
        rule(
            "flux per watt is that of real lamps",
            QStringLiteral("select ID from 光源 where LuminousFlux / LamphousePower not between 10 and 150"));
        rule("efficiency and spacing are real",
             QStringLiteral("select ID from 灯具 where LuminaireEfficiency not between 40 and 95 or MaxLhAA "
                            "not between 0.5 and 2 or MaxLhBB not between 0.5 and 2"));
        rule("a target density is at most the current one",
             QStringLiteral("select ID from 照度要求及功率密度 where ObjectiveLPD > ActualLPD or "
                            "(ObjectiveLPD = 0) <> (ActualLPD = 0) or IlluminanceStandard < 30 or UGR not in "
                            "(0, 19, 22, 25, 28) or Ra not in (20, 40, 60, 80, 90)"));
        rule("a place stands once", QStringLiteral("select 1 from 照度要求及功率密度 group by Vocation, "
                                                   "BuildingType, Location having count(*) > 1"));
        for (const QStringList& column :
             Query(m_file, QStringLiteral("select t.name, c.name from sqlite_schema t, "
                                          "pragma_table_info(t.name) c where t.type = 'table'"))) {
            QTest::newRow(qPrintable(column.join(u'.')))
                << QStringLiteral("select 1 from %1 where %2 is null or instr(%2, char(39))")
                       .arg(column[0], column[1]);
        }
    }
    void HoldsNothingThatBreaksARule() {
        QFETCH(QString, offenders);
        QCOMPARE(Query(m_file, offenders), Rows());
    }

    void HoldsEnoughToWorkWith() {
        const Rows counts =
            Query(m_file,
                  QStringLiteral("select (select count(*) from 光源类别), (select count(*) from 光源) / 10, "
                                 "(select count(*) from 灯具) / 10, "
                                 "(select count(*) from 灯具 where LamphouseTypeID like '%5%') >= 4, "
                                 "(select count(*) from 灯具 where LampPhoto <> '') >= 6, "
                                 "(select count(distinct BuildingType) from 照度要求及功率密度) >= 7"));
        QCOMPARE(counts, Rows({{"10", "6", "4", "1", "1", "1"}}));
        QCOMPARE(Query(m_file, QStringLiteral("pragma integrity_check")), Rows({{"ok"}}));
        QCOMPARE(Query(m_file, QStringLiteral("pragma journal_mode")), Rows({{"delete"}}));
        QCOMPARE(Query(m_file, QStringLiteral("select ActualLPD, ObjectiveLPD, IlluminanceStandard, UGR, Ra "
                                              "from 照度要求及功率密度 where Location = '普通办公室'")),
                 Rows({{"11.0", "9.0", "300", "19", "80"}}));
    }

    void LuminairesTakeLightSourcesThatExist() {
        for (const QStringList& row :
             Query(m_file, QStringLiteral("select LamphouseTypeID, DefaultLamphouse, LamphouseCount, ID "
                                          "from 灯具"))) {
            const QStringList categories = row[0].split(u',');
            const QStringList sources = row[1].split(u',');
            const bool mixed = row[0].contains(u'5');
            QCOMPARE(sources.size() > 1, mixed);
            QCOMPARE(row[2].split(u',').size(), sources.size());
            for (const QString& source : sources) {
                const Rows found =
                    Query(m_file, QStringLiteral("select LamphouseType from 光源 where ID = ") + source);
                QCOMPARE(found.size(), 1U);
                QVERIFY2(mixed || categories.contains(found[0][0]), qPrintable(row[3]));
            }
        }
    }

    void FactorTablesAreWholeAndBehave() {
        std::map<int, FactorTable> tables;
        for (const QStringList& r : Query(m_file, QStringLiteral("select LuminaireID, Pcc, Pw, Pf, RCR_RI, "
                                                                 "UtilizationFactor from 利用系数"))) {
            auto& column = tables[r[0].toInt()][{r[1].toInt(), r[2].toInt(), r[3].toInt()}];
            QVERIFY2(column.emplace(r[4].toDouble(), r[5].toDouble()).second, qPrintable(r.join(u' ')));
        }
        const Rows luminaires =
            Query(m_file, QStringLiteral("select ID, UtilizationFactorType, LuminaireEfficiency from 灯具"));
        QCOMPARE(tables.size(), luminaires.size());
        QSet<QString> kinds;
        for (const QStringList& row : luminaires) {
            kinds.insert(row[1]);
            QVERIFY(tables.contains(row[0].toInt()));
            CheckFactorTable(tables[row[0].toInt()], row[1] == u'1', row[2].toDouble());
        }
        QCOMPARE(kinds, QSet<QString>({QStringLiteral("0"), QStringLiteral("1")}));
    }

    void PhotosLieWhereTheirLuminairesSay() {
        for (const QStringList& row :
             Query(m_file, QStringLiteral("select ID, LampPhoto from 灯具 where LampPhoto <> ''"))) {
            const QString prefix = QStringLiteral("\\Vexal\\LuminairePhotoLib\\%1.").arg(row[0]);
            QVERIFY(row[1].startsWith(prefix));
            const QImage photo(Path(u'a' + QString(row[1]).replace(u'\\', u'/')));
            QCOMPARE(photo.size(), QSize(400, 300));
            QSet<QRgb> colours;
            for (int y = 0; y < photo.height(); ++y) {
                for (int x = 0; x < photo.width(); ++x) {
                    colours.insert(photo.pixel(x, y));
                }
            }
            QVERIFY2(colours.size() > 50, qPrintable(row[1]));
        }
    }

    void OverwritesNothing() {
        const SampleData data = ReadSampleData({});
        const QString folder = Path(QStringLiteral("b/"));
        const QString file = folder + QStringLiteral("x.mdb");
        const QString photo = folder + QStringLiteral("LuminairePhotoLib/1.jpg");
        WriteSampleDatabase(data, file);
        const QByteArray before = Contents(file);
        const auto make = [&] { WriteSampleDatabase(data, file); };
        QVERIFY(Complaint(make).contains(QStringLiteral("x.mdb: exists already")));
        QCOMPARE(Contents(file), before);

        QVERIFY(QFile::remove(file));
        Write(file + QStringLiteral("-journal"), "left behind");
        QVERIFY(Complaint(make).contains(QStringLiteral("x.mdb-journal: exists already")));
        QVERIFY(QFile::remove(file + QStringLiteral("-journal")));

        Write(photo, "a photo of somebody else");
        QVERIFY(Complaint(make).contains(QStringLiteral("1.jpg: another photo")));
        QCOMPARE(Contents(photo), QByteArrayLiteral("a photo of somebody else"));
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList());

        QVERIFY(QFile::remove(photo));
        QCOMPARE(Complaint(make), QString());  // the other photos of the first time are in nobody's way
        QCOMPARE(Contents(file), before);
    }

    void ABadRowIsNamedByFileAndLine_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("row");
        QTest::addColumn<QString>("complaint");
        const auto bad = [](const char* file, const char* row, const char* complaint) {
            QTest::newRow(row) << QString::fromLatin1(file) << QByteArray(row)
                               << QString::fromUtf8(complaint);
        };
        bad("categories.csv", "15,荧光灯", "光源类别: the ID of 混光灯 is 5");
        bad("categories.csv", "3,荧光灯", "编号: 3 is 0 or stands twice");
        bad("light_sources.csv", "LED灯,甲,乙,1,1", "5 fields instead of 6");
        bad("light_sources.csv", "LED灯,甲,乙,12O0,1,丙", "光通量(lm): \"12O0\" is not a number");
        bad("light_sources.csv", "LED灯,甲,乙,nan,1,丙", "光通量(lm): \"nan\" is not a number");
        bad("light_sources.csv", "白炽灯,甲,乙,1,1,丙", "光源类别: unknown category \"白炽灯\"");
        bad("light_sources.csv", "LED灯,甲,\"乙,丙\",1,1,丁", "光源型号: a comma");
        bad("light_sources.csv", "LED灯,高压钠灯,ng70,1,1,丁", "stands twice");
        bad("light_sources.csv", "LED灯,甲,乙',1,1,丙", "a single quote");
        bad("light_sources.csv", "LED灯,\xff,乙,1,1,丙", "not UTF-8");
        bad("luminaires.csv", "甲,乙,LED灯,70,1,1,高压钠灯:NG7,1,1,1,丙,RI,宽配光,",
            "默认光源: unknown light source \"高压钠灯:NG7\"");
        bad("luminaires.csv", "甲,乙,LED灯,70,1,1,高压钠灯:NG70,1,1,1,丙,RI,宽配光,",
            "of none of the categories");
        bad("luminaires.csv", "甲,乙,LED灯+混光灯,70,1,1,高压钠灯:NG70,1,1,1,丙,RI,宽配光,",
            "goes only with");
        bad("luminaires.csv", "甲,乙,混光灯,70,1,1,高压钠灯:NG70+高压钠灯:NG100,1,1,1,丙,RI,宽配光,",
            "one count");
        bad("luminaires.csv", "甲,乙,高压钠灯,70,1,1,高压钠灯:NG70,1,1,1,丙,RI,圆配光,", "配光: no table");
        bad("luminaires.csv", "甲,乙,高压钠灯,70,1,1,高压钠灯:NG70,1,1,1,丙,RI,宽配光,猫.jpg",
            "unknown drawing");
        bad("requirements.csv", "甲,乙,丙,地面,1,1,75.5,0,80", "照度标准值: \"75.5\" is not a whole number");
    }
    void ABadRowIsNamedByFileAndLine() {
        QFETCH(QString, file);
        QFETCH(QByteArray, row);
        QFETCH(QString, complaint);
        const QTemporaryDir data;
        for (const QFileInfo& source : QDir(QStringLiteral(":/quorvane/sample")).entryInfoList()) {
            Write(data.filePath(source.fileName()), Contents(source.filePath()));
        }
        const QByteArray good = Contents(data.filePath(file));
        Write(data.filePath(file), good + "\r\n" + row + "\r\n");
        const QString said = Complaint([&] { ReadSampleData(data.path()); });
        const QString place = QStringLiteral("/%1:%2: ").arg(file).arg(good.count('\n') + 2);
        QVERIFY2(said.contains(place) && said.contains(complaint), qPrintable(said));
    }

    void ALargeOneHasTheRowsAskedFor() {
        SampleData data = ReadSampleData({});
        QVERIFY(!Complaint([&] { EnlargeSampleData(data, 60); }).isEmpty());
        EnlargeSampleData(data, 30'000);
        const QString file = Path(QStringLiteral("large.mdb"));
        WriteSampleDatabase(data, file);
        QCOMPARE(Query(file, QStringLiteral(
                                 "select (select count(*) from 光源), (select count(*) from 灯具), "
                                 "(select count(distinct LuminaireID) from 利用系数), "
                                 "(select count(*) from 照度要求及功率密度), "
                                 "(select count(distinct LamphouseName || ':' || LamphouseModel) from 光源), "
                                 "(select count(distinct LamphouseType) from 光源)")),
                 Rows({{"30000", "1200", "1000", "15000", "30000", "8"}}));
        // Each copied table is that of a luminaire of the same kind.
        QCOMPARE(
            Query(file, QStringLiteral("select ID from 灯具 l where ID <= 1000 and (select count(*) from "
                                       "利用系数 where LuminaireID = l.ID) <> iif("
                                       "UtilizationFactorType = 1, 150, 165)")),
            Rows());
    }

    void TheProgramRefusesWithOneLine() {
        QProcess program;
        program.start(QStringLiteral(SAMPLE_PROGRAM), {m_file});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitCode(), 1);
        const QByteArray said = program.readAllStandardError();
        QVERIFY2(said.contains("灯具数据库.mdb: exists already") && said.count('\n') == 1, said.constData());
        program.start(QStringLiteral(SAMPLE_PROGRAM),
                      {QStringLiteral("--rows"), QStringLiteral("100"), Path(QStringLiteral("c/灯.mdb"))});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitCode(), 0);
        QCOMPARE(Query(Path(QStringLiteral("c/灯.mdb")), QStringLiteral("select count(*) from 光源")),
                 Rows({{"100"}}));
    }
};

QTEST_GUILESS_MAIN(TestSampleDatabase)
#include "test_sample_database.moc"
