#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "tests/support/raw_database.h"
#include "tools/sample_database.h"
#include "tools/sample_error.h"

using namespace quorvane;

namespace {

QStringList Query(const QString& file, const QString& statement) {
    return RawDatabase(file).Rows(statement);
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

// What no row may be: a rule, and the query for the rows that break it.
constexpr std::pair<const char*, const char*> kRules[] = {
    {"mixed light is 5 and 5 is nothing else",
     "select ID from 光源类别 where (ID like '%5%') <> (LamphouseType = '混光灯') or "
     "(LamphouseType = '混光灯') <> (ID = 5)"},
    {"light sources have a category that takes them",
     "select ID from 光源 where LamphouseType not in (select ID from 光源类别 where LamphouseType not in "
     "('混光灯', '常用灯具'))"},
    {"every category but the two special ones has light sources",
     "select ID from 光源类别 where LamphouseType not in ('混光灯', '常用灯具') and ID not in (select "
     "LamphouseType from 光源)"},
    {"name and model are distinct",
     "select 1 from 光源 group by LamphouseName || ':' || LamphouseModel collate nocase having count(*) > 1"},
    {"flux per watt is that of real lamps",
     "select ID from 光源 where LuminousFlux / LamphousePower not between 10 and 150"},
    {"efficiency and spacing are real",
     "select ID from 灯具 where LuminaireEfficiency not between 40 and 95 or MaxLhAA not between 0.5 and 2 "
     "or "
     "MaxLhBB not between 0.5 and 2"},
    {"only luminaires of mixed light have several light sources, and each has its count",
     "select ID from 灯具 where json_array_length('[' || DefaultLamphouse || ']') <> "
     "json_array_length('[' || LamphouseCount || ']') or "
     "(DefaultLamphouse like '%,%') <> (LamphouseTypeID like '%5%')"},
    {"luminaires take light sources that exist, of their own categories or mixed",
     "select l.ID from 灯具 l, json_each('[' || DefaultLamphouse || ']') source where not exists (select 1 "
     "from 光源 where ID = source.value and (l.LamphouseTypeID like '%5%' or "
     "',' || l.LamphouseTypeID || ',' like '%,' || LamphouseType || ',%'))"},
    {"a factor table is whole",
     "select l.ID from 灯具 l join 利用系数 f on LuminaireID = l.ID group by l.ID having count(distinct "
     "Pcc || ' ' || Pw || ' ' || Pf) < 10 or count(distinct RCR_RI) < 10 or count(f.ID) <> "
     "count(distinct Pcc || ' ' || Pw || ' ' || Pf || ' ' || RCR_RI) or count(f.ID) <> "
     "count(distinct Pcc || ' ' || Pw || ' ' || Pf) * count(distinct RCR_RI)"},
    {"only luminaires for streets have no factor table",
     "select ID from 灯具 where (LampName like '%路灯') = (ID in (select LuminaireID from 利用系数))"},
    {"factors are in the bounds of physics",
     "select f.ID from 利用系数 f join 灯具 l on LuminaireID = l.ID where UtilizationFactor <= 0 or "
     "UtilizationFactor > LuminaireEfficiency / 100 / (1 - max(Pcc, Pw) * Pf / 1e4) + 0.005"},
    {"factors grow with the room index and fall with the room cavity ratio",
     "select step from (select (UtilizationFactor - lag(UtilizationFactor) over (partition by LuminaireID, "
     "Pcc, Pw, Pf order by RCR_RI)) * iif(UtilizationFactorType = 1, 1, -1) as step from 利用系数 join 灯具 "
     "l "
     "on LuminaireID = l.ID) where step < 0"},
    {"a lighter room has no smaller factor",
     "select a.ID from 利用系数 a join 利用系数 b using (LuminaireID, RCR_RI) where a.Pcc >= b.Pcc and "
     "a.Pw >= b.Pw and a.Pf >= b.Pf and a.UtilizationFactor < b.UtilizationFactor"},
    {"a target density is at most the current one",
     "select ID from 照度要求及功率密度 where ObjectiveLPD > ActualLPD or "
     "(ObjectiveLPD = 0) <> (ActualLPD = 0) or IlluminanceStandard < 30 or UGR not in "
     "(0, 19, 22, 25, 28) or Ra not in (20, 40, 60, 80, 90)"},
    {"a place stands once",
     "select 1 from 照度要求及功率密度 group by Vocation, BuildingType, Location having count(*) > 1"},
};

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

    void HoldsNothingThatBreaksARule() {
        for (const auto& [rule, offenders] : kRules) {
            const QStringList rows = Query(m_file, QString::fromUtf8(offenders));
            QVERIFY2(rows.isEmpty(), qPrintable(rule + u": "_qs + rows.join(u' ')));
        }
        for (const QString& query :
             Query(m_file, QStringLiteral("select 'select 1 from ' || t.name || ' where ' || c.name || ' is "
                                          "null or instr(' || c.name || ', char(39))' from sqlite_schema t, "
                                          "pragma_table_info(t.name) c where t.type = 'table'"))) {
            QCOMPARE(Query(m_file, query.sliced(1).chopped(1)), QStringList());
        }
    }

    void HoldsEnoughToWorkWith() {
        const QStringList counts =
            Query(m_file,
                  QStringLiteral("select (select count(*) from 光源类别), (select count(*) from 光源) / 10, "
                                 "(select count(*) from 灯具) / 10, "
                                 "(select count(distinct UtilizationFactorType) from 灯具), "
                                 "(select count(*) from 灯具 where LamphouseTypeID like '%5%') >= 4, "
                                 "(select count(*) from 灯具 where LampPhoto <> '') >= 6, "
                                 "(select count(distinct BuildingType) from 照度要求及功率密度) >= 7"));
        QCOMPARE(counts, QStringList(QStringLiteral("10|6|4|2|1|1|1")));
        QCOMPARE(Query(m_file, QStringLiteral("pragma integrity_check")),
                 QStringList(QStringLiteral("'ok'")));
        QCOMPARE(Query(m_file, QStringLiteral("select ActualLPD, ObjectiveLPD, IlluminanceStandard, UGR, Ra "
                                              "from 照度要求及功率密度 where Location = '普通办公室'")),
                 QStringList(QStringLiteral("11.0|9.0|300|19|80")));
    }

    void PhotosLieWhereTheirLuminairesSay() {
        for (const QString& row :
             Query(m_file, QStringLiteral("select ID, LampPhoto from 灯具 where LampPhoto <> ''"))) {
            const QString path = row.section(u'\'', 1, 1);
            QVERIFY(path.startsWith(
                QStringLiteral("\\Vexal\\LuminairePhotoLib\\%1.").arg(row.section(u'|', 0, 0))));
            const QImage photo(Path(u'a' + QString(path).replace(u'\\', u'/')));
            QCOMPARE(photo.size(), QSize(400, 300));
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

    void ABadRowIsNamedByFileAndLine() {
        const std::tuple<const char*, const char*, const char*> rows[] = {
            {"categories.csv", "15,荧光灯", "光源类别: the ID of 混光灯 is 5"},
            {"categories.csv", "3,荧光灯", "编号: 3 is 0 or stands twice"},
            {"light_sources.csv", "LED灯,甲,乙,1,1", "5 fields instead of 6"},
            {"light_sources.csv", "LED灯,甲,乙,12O0,1,丙", "光通量(lm): \"12O0\" is not a number"},
            {"light_sources.csv", "白炽灯,甲,乙,1,1,丙", "光源类别: unknown category \"白炽灯\""},
            {"light_sources.csv", "LED灯,甲,\"乙,丙\",1,1,丁", "光源型号: a comma"},
            {"light_sources.csv", "LED灯,高压钠灯,ng70,1,1,丁", "stands twice"},
            {"light_sources.csv", "LED灯,甲,乙',1,1,丙", "a single quote"},
            {"light_sources.csv", "LED灯,\xff,乙,1,1,丙", "not UTF-8"},
            {"luminaires.csv", "甲,乙,LED灯,70,1,1,高压钠灯:NG7,1,1,1,丙,RI,宽配光,", "unknown light source"},
            {"luminaires.csv", "甲,乙,LED灯,70,1,1,高压钠灯:NG70,1,1,1,丙,RI,宽配光,", "of none of the"},
            {"luminaires.csv", "甲,乙,高压钠灯,70,1,1,高压钠灯:NG70,1,1,1,丙,RI,圆配光,", "配光: no table"},
            {"requirements.csv", "甲,乙,丙,地面,1,1,75.5,0,80,丁", "照度标准值: \"75.5\" is not a whole"},
        };
        const QTemporaryDir data;
        for (const QFileInfo& source : QDir(QStringLiteral(":/quorvane/sample")).entryInfoList()) {
            Write(data.filePath(source.fileName()), Contents(source.filePath()));
        }
        for (const auto& [file, row, complaint] : rows) {
            const QString path = data.filePath(QString::fromLatin1(file));
            const QByteArray good = Contents(path);
            Write(path, good + "\r\n" + row + "\r\n");
            const QString said = Complaint([&] { ReadSampleData(data.path()); });
            const QString place =
                QStringLiteral("/%1:%2: ").arg(QString::fromLatin1(file)).arg(good.count('\n') + 2);
            QVERIFY2(said.contains(place) && said.contains(QString::fromUtf8(complaint)), qPrintable(said));
            Write(path, good);
        }
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
                 QStringList(QStringLiteral("30000|1200|976|15000|30000|8")));
    }

    void TheProgramRefusesWithOneLine() {
        QProcess program;
        program.start(QStringLiteral(SAMPLE_PROGRAM), {m_file});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitCode(), 1);
        const QByteArray said = program.readAllStandardError();
        QVERIFY2(said.contains("灯具数据库.mdb: exists already") && said.count('\n') == 1, said.constData());
    }
};

QTEST_GUILESS_MAIN(TestSampleDatabase)
#include "test_sample_database.moc"
