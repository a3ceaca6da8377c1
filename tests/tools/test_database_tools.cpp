// The sample database, checking what a database holds, and copying one kind of file into the other.

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "data/store/store_factory.h"
#include "tests/support/raw_database.h"
#include "tools/database_copy.h"
#include "tools/database_schema.h"
#include "tools/database_sense.h"
#include "tools/sample_database.h"
#include "tools/sample_error.h"
#include "tools/self_check.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

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

// A driver that loses a blank at the end of a text.
class TrimmingConnection : public Connection {
public:
    explicit TrimmingConnection(std::shared_ptr<Connection> connection)
        : m_connection(std::move(connection)) {}
    void Open(const CString& connectionString, const CString& user, const CString& password,
              int options) override {
        m_connection->Open(connectionString, user, password, options);
    }
    std::unique_ptr<Recordset> Execute(const CString& statement) override {
        return m_connection->Execute(CString(statement).replace(u" '"_s, u"'"_s));
    }
    void Close() override { m_connection->Close(); }

private:
    std::shared_ptr<Connection> m_connection;
};

}  // namespace

class TestDatabaseTools : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        m_access = m_folder.filePath(u"access/灯具数据库.mdb"_s);
        m_sqlite = m_folder.filePath(u"sqlite/灯具数据库.mdb"_s);
        WriteSampleDatabase(ReadSampleData({}), m_access, DatabaseKind::Access);
        WriteSampleDatabase(ReadSampleData({}), m_sqlite);
        QCOMPARE(QFileInfo(m_sqlite).dir().entryList(QDir::Files).size(), 1);
    }

    void TheSampleBreaksNoRule() {
        const QStringList rules = QString::fromUtf8(Contents(QStringLiteral(SAMPLE_RULES))).split(u';');
        QVERIFY(rules.size() > 5);
        for (const QString& rule : rules.first(rules.size() - 1)) {
            const QStringList rows = RawDatabase(m_sqlite).Rows(rule);
            QVERIFY2(rows.isEmpty(), qPrintable(rule + rows.join(u' ')));
        }
    }

    void SelfCheckFindsWhatADriverLoses() {
        const auto check = [&](const ConnectionFactory& factory) {
            return CheckOperations(m_access, factory).lines.filter(u"失败"_s).value(0);
        };
        QCOMPARE(check(CreateStoreConnection), QString());
        QCOMPARE(check([](const CString& source) {
                     return std::make_shared<TrimmingConnection>(CreateStoreConnection(source));
                 }),
                 u"失败  LoadAllLightSources 读回：读回的内容与写入的不同"_s);
    }

    void NonsenseIsFound() {
        QCOMPARE(CheckStoreFile(m_access), QStringList());
        const auto database = OpenDatabase(m_access);
        const auto findings = [&] { return CheckSense(*database, QFileInfo(m_access).path()); };
        QCOMPARE(findings(), QStringList());
        // Statements that spoil something, one after the other, and what is found then besides.
        const std::pair<QString, QString> cases[] = {
            {u"update 光源 set LamphouseType=77 where ID=3"_s, u"光源 3: its category"_s},
            {u"update 光源 set Factory=null where ID=4"_s, u"光源 4: a field"_s},
            {u"update 灯具 set DefaultLamphouse='3,999' where ID=2"_s, u"灯具 2: one of its light"_s},
            {u"update 灯具 set LamphouseTypeID='1,66' where ID=2"_s, u"灯具 2: one of its categories"_s},
            {u"update 灯具 set LampPhoto='\\Vexal\\LuminairePhotoLib\\no.jpg' where ID=2"_s,
             u"灯具 2: its photo"_s},
            {u"update 利用系数 set UtilizationFactor=100 where ID in (select max(ID) from 利用系数 where "
             "LuminaireID=1)"_s,
             u"灯具 1: a utilization factor rises"_s},
            {u"insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) select "
             "LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor from 利用系数 where ID=1"_s,
             u"灯具 1: its factor table has two"_s},
            {u"insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) values (999,1,1,1,1,1)"_s,
             u"its luminaire is not there"_s},
            {u"insert into 光源类别 (ID,LamphouseType) values (15,'x')"_s,
             u"光源类别 15: its ID holds a 5"_s},
            {u"delete from 利用系数 where ID in (select min(ID) from 利用系数 where LuminaireID=2)"_s,
             u"灯具 2: its factor table has gaps"_s},
        };
        qsizetype found = 0;
        for (const auto& [statement, finding] : cases) {
            database->Execute(statement);
            QVERIFY2(findings().size() == ++found && findings().filter(finding).size() == 1,
                     qPrintable(findings().join(u'\n')));
        }
    }

    // With what the other test has left there.
    void CopiesAreTheSame() {
        const QString copy = m_folder.filePath(u"copy.mdb"_s);
        RawDatabase(copy).Execute(QString::fromUtf8(kDatabaseSchema));
        const auto from = OpenDatabase(m_access);
        const auto to = OpenDatabase(copy);
        from->Execute(u"update 照度要求及功率密度 set UGR=null, Location=null where ID=7"_s);
        QVERIFY(CopyDatabase(*from, *to) > 6000);
        QVERIFY_THROWS_EXCEPTION(SampleError, CopyDatabase(*from, *to));  // it holds rows now
        to->Close();
        // An SQLite file as it was made, with what has been changed since.
        RawDatabase same(m_sqlite);
        same.Execute(u"attach '%1' as copy"_s.arg(copy));
        QCOMPARE(same.Rows(u"select ID, UGR, Location from (select * from copy.照度要求及功率密度 except "
                           "select * from main.照度要求及功率密度)"_s),
                 QStringList{u"7|NULL|NULL"_s});
        QCOMPARE(same.Rows(u"select count(*) from copy.利用系数 natural join main.利用系数"_s),
                 QStringList{u"6538"_s});
    }

    void OverwritesNothing() {
        const SampleData data = ReadSampleData({});
        const QString folder = m_folder.filePath(u"b/"_s);
        const QString file = folder + u"x.mdb"_s;
        const QString photo = folder + u"LuminairePhotoLib/1.jpg"_s;
        WriteSampleDatabase(data, file);
        const QByteArray before = Contents(file);
        QProcess program;
        program.start(QStringLiteral(SAMPLE_PROGRAM), {file});
        QVERIFY(program.waitForFinished() && program.exitCode() == 1);
        const QByteArray said = program.readAllStandardError();
        QVERIFY2(said.contains("x.mdb: exists already") && said.count('\n') == 1, said.constData());
        QCOMPARE(Contents(file), before);

        const auto make = [&] { WriteSampleDatabase(data, file); };
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
        const QString file = m_folder.filePath(u"large.mdb"_s);
        WriteSampleDatabase(data, file);
        QCOMPARE(RawDatabase(file).Rows(
                     u"select (select count(*) from 光源), (select count(*) from 灯具), "
                     "(select count(distinct LuminaireID) from 利用系数), "
                     "(select count(*) from 照度要求及功率密度), "
                     "(select count(distinct LamphouseName || ':' || LamphouseModel) from 光源), "
                     "(select count(distinct LamphouseType) from 光源)"_s),
                 QStringList(u"30000|1200|976|15000|30000|8"_s));
    }

private:
    QTemporaryDir m_folder;
    QString m_access;
    QString m_sqlite;
};

QTEST_GUILESS_MAIN(TestDatabaseTools)
#include "test_database_tools.moc"
