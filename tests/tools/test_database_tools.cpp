// Checking what a database holds, and copying one kind of file into the other.

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

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

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
        m_file = m_folder.filePath(u"Vexal/灯具数据库.mdb"_s);
        WriteSampleDatabase(ReadSampleData({}), m_file, DatabaseKind::Access);
    }

    void SelfCheckFindsWhatADriverLoses() {
        const auto check = [&](const ConnectionFactory& factory) {
            return CheckOperations(m_file, factory).lines.filter(u"失败"_s).value(0);
        };
        QCOMPARE(check(CreateStoreConnection), QString());
        QCOMPARE(check([](const CString& source) {
                     return std::make_shared<TrimmingConnection>(CreateStoreConnection(source));
                 }),
                 u"失败  LoadAllLightSources 读回：读回的内容与写入的不同"_s);
    }

    void NonsenseIsFound() {
        const auto database = OpenDatabase(m_file);
        const auto findings = [&] { return CheckSense(*database, m_folder.filePath(u"Vexal"_s)); };
        QCOMPARE(CheckStoreFile(m_file), QStringList());
        QCOMPARE(findings(), QStringList());
        // A statement that spoils something, what is found then, and the statement that mends it.
        const QStringList cases[] = {
            {u"update 光源 set LamphouseType=77 where ID=3"_s, u"光源 3: its category"_s,
             u"update 光源 set LamphouseType=2 where ID=3"_s},
            {u"update 光源 set Factory=null where ID=3"_s, u"光源 3: a field"_s,
             u"update 光源 set Factory='x' where ID=3"_s},
            {u"update 灯具 set DefaultLamphouse='3,999' where ID=2"_s, u"灯具 2: one of its light sources"_s,
             u"update 灯具 set DefaultLamphouse='3' where ID=2"_s},
            {u"update 灯具 set LamphouseTypeID='1,66' where ID=2"_s, u"灯具 2: one of its categories"_s,
             u"update 灯具 set LamphouseTypeID='1' where ID=2"_s},
            {u"update 灯具 set LampPhoto='\\Vexal\\LuminairePhotoLib\\no.jpg' where ID=2"_s,
             u"灯具 2: its photo"_s, u"update 灯具 set LampPhoto='' where ID=2"_s},
            {u"update 利用系数 set UtilizationFactor=UtilizationFactor+100 where ID in (select max(ID) from "
             u"利用系数 "
             "where LuminaireID=1)"_s,
             u"灯具 1: a utilization factor rises"_s,
             u"update 利用系数 set UtilizationFactor=UtilizationFactor-100 where ID in (select max(ID) from "
             u"利用系数 "
             "where LuminaireID=1)"_s},
            {u"insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) select "
             "LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor from 利用系数 where ID=1"_s,
             u"灯具 1: its factor table has two"_s, u"delete from 利用系数 where ID>6540"_s},
            {u"insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) values (999,1,1,1,1,1)"_s,
             u"its luminaire is not there"_s, u"delete from 利用系数 where ID>6540"_s},
            {u"insert into 光源类别 (ID,LamphouseType) values (15,'x')"_s, u"光源类别 15: its ID holds a 5"_s,
             u"delete from 光源类别 where ID=15"_s},
            {u"delete from 利用系数 where ID=1"_s, u"灯具 1: its factor table has gaps"_s, {}},
        };
        for (const QStringList& spoiled : cases) {
            database->Execute(spoiled[0]);
            QCOMPARE(findings().size(), 1);
            QVERIFY2(findings().first().contains(spoiled[1]), qPrintable(findings().first()));
            if (!spoiled[2].isEmpty()) {
                database->Execute(spoiled[2]);
            }
        }
        database->Execute(u"update 照度要求及功率密度 set UGR=null, Location=null where ID=7"_s);
    }

    // After what the other test has left there.
    void CopiesAreTheSame() {
        const QString sqliteFile = m_folder.filePath(u"copy.mdb"_s);
        RawDatabase(sqliteFile).Execute(QString::fromUtf8(kDatabaseSchema));
        const auto from = OpenDatabase(m_file);
        const auto to = OpenDatabase(sqliteFile);
        QVERIFY(CopyDatabase(*from, *to) > 6000);
        QVERIFY_THROWS_EXCEPTION(SampleError, CopyDatabase(*from, *to));  // it holds rows now
        to->Close();
        QCOMPARE(RawDatabase(sqliteFile).Rows(u"SELECT count(*) FROM 利用系数"_s), QStringList{u"6539"_s});
        QCOMPARE(RawDatabase(sqliteFile).Rows(u"SELECT UGR, Location FROM 照度要求及功率密度 WHERE ID=7"_s),
                 QStringList{u"NULL|NULL"_s});
    }

private:
    QTemporaryDir m_folder;
    QString m_file;
};

QTEST_GUILESS_MAIN(TestDatabaseTools)
#include "test_database_tools.moc"
