#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "tests/support/raw_database.h"
#include "tools/sample_database.h"
#include "tools/sample_error.h"

using namespace Qt::Literals::StringLiterals;

using namespace quorvane;

namespace {

QStringList Query(const QString& file, const QString& statement) {
    return RawDatabase(file).Rows(statement);
}

QByteArray Contents(const QString& file) {
    QFile source(file);
    return source.open(QIODevice::ReadOnly) ? source.readAll() : "unreadable"_ba;
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

}  // namespace

class TestSampleDatabase : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_file;

    QString Path(const QString& name) const { return m_folder.filePath(name); }

private Q_SLOTS:
    void initTestCase() {
        m_file = Path(u"a/Vexal/灯具数据库.mdb"_s);
        WriteSampleDatabase(ReadSampleData({}), m_file);
        QCOMPARE(QDir(Path(u"a/Vexal"_s)).entryList(QDir::Files).size(), 1);
    }

    void HoldsNothingThatBreaksARule() {
        const QStringList rules = QString::fromUtf8(Contents(QStringLiteral(SAMPLE_RULES))).split(u';');
        QVERIFY(rules.size() > 5);
        for (const QString& rule : rules.first(rules.size() - 1)) {
            const QStringList rows = Query(m_file, rule);
            QVERIFY2(rows.isEmpty(), qPrintable(rule + rows.join(u' ')));
        }
        for (const QString& query : Query(m_file,
                                          u"select 'select 1 from ' || t.name || ' where ' || c.name || ' is "
                                          "null or instr(' || c.name || ', char(39))' from sqlite_schema t, "
                                          "pragma_table_info(t.name) c where t.type = 'table'"_s)) {
            QCOMPARE(Query(m_file, query.sliced(1).chopped(1)), QStringList());
        }
    }

    void OverwritesNothing() {
        const SampleData data = ReadSampleData({});
        const QString folder = Path(u"b/"_s);
        const QString file = folder + u"x.mdb"_s;
        const QString photo = folder + u"LuminairePhotoLib/1.jpg"_s;
        WriteSampleDatabase(data, file);
        const QByteArray before = Contents(file);
        const auto make = [&] { WriteSampleDatabase(data, file); };
        QVERIFY(Complaint(make).contains(u"x.mdb: exists already"_s));
        QCOMPARE(Contents(file), before);

        QVERIFY(QFile::remove(file));
        Write(file + u"-journal"_s, "left behind");
        QVERIFY(Complaint(make).contains(u"x.mdb-journal: exists already"_s));
        QVERIFY(QFile::remove(file + u"-journal"_s));

        Write(photo, "a photo of somebody else");
        QVERIFY(Complaint(make).contains(u"1.jpg: another photo"_s));
        QCOMPARE(Contents(photo), "a photo of somebody else"_ba);
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList());
    }

    void ABadRowIsNamedByFileAndLine() {
        const std::tuple<const char*, const char*, const char*> rows[] = {
            {"categories.csv", "15,荧光灯", "光源类别: the ID of 混光灯 is 5"},
            {"categories.csv", "3,荧光灯", "编号: 3 is 0 or stands twice"},
            {"light_sources.csv", "LED灯,甲,乙,1,1", "5 fields instead of 6"},
            {"light_sources.csv", "LED灯,甲,乙,12O0,1,丙", "光通量(lm): \"12O0\" is not a number"},
            {"light_sources.csv", "白炽灯,甲,乙,1,1,丙", "光源类别: unknown category \"白炽灯\""},
            {"light_sources.csv", "LED灯,甲,\"乙\",1,1,丁", "a quote"},
            {"light_sources.csv", "LED灯,甲+乙,丙,1,1,丁", "光源型号: a plus sign"},
            {"light_sources.csv", "LED灯,高压钠灯,ng70,1,1,丁", "stands twice"},
            {"light_sources.csv", "LED灯,甲,乙',1,1,丙", "a quote"},
            {"light_sources.csv", "LED灯,\xff,乙,1,1,丙", "not UTF-8"},
            {"luminaires.csv", "甲,乙,LED灯,70,1,1,高压钠灯:NG7,1,1,1,丙,RI,宽配光,", "unknown light source"},
            {"luminaires.csv", "甲,乙,LED灯,70,1,1,高压钠灯:NG70,1,1,1,丙,RI,宽配光,", "of none of the"},
            {"luminaires.csv", "甲,乙,高压钠灯,70,1,1,高压钠灯:NG70,1,1,1,丙,RI,圆配光,", "配光: no table"},
            {"requirements.csv", "甲,乙,丙,地面,1,1,75.5,0,80,丁", "照度标准值: \"75.5\" is not a whole"},
        };
        const QTemporaryDir data;
        for (const QFileInfo& source : QDir(u":/quorvane/sample"_s).entryInfoList()) {
            Write(data.filePath(source.fileName()), Contents(source.filePath()));
        }
        for (const auto& [file, row, complaint] : rows) {
            const QString path = data.filePath(QString::fromLatin1(file));
            const QByteArray good = Contents(path);
            Write(path, good + "\r\n" + row + "\r\n");
            const QString said = Complaint([&] { ReadSampleData(data.path()); });
            const QString place = u"/%1:%2: "_s.arg(QString::fromLatin1(file)).arg(good.count('\n') + 2);
            QVERIFY2(said.contains(place) && said.contains(QString::fromUtf8(complaint)), qPrintable(said));
            Write(path, good);
        }
    }

    void ALargeOneHasTheRowsAskedFor() {
        SampleData data = ReadSampleData({});
        QVERIFY(!Complaint([&] { EnlargeSampleData(data, 60); }).isEmpty());
        EnlargeSampleData(data, 30'000);
        const QString file = Path(u"large.mdb"_s);
        WriteSampleDatabase(data, file);
        QCOMPARE(Query(file,
                       u"select (select count(*) from 光源), (select count(*) from 灯具), "
                       "(select count(distinct LuminaireID) from 利用系数), "
                       "(select count(*) from 照度要求及功率密度), "
                       "(select count(distinct LamphouseName || ':' || LamphouseModel) from 光源), "
                       "(select count(distinct LamphouseType) from 光源)"_s),
                 QStringList(u"30000|1200|976|15000|30000|8"_s));
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
