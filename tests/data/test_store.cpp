// What stands behind the seam: the choice of a driver, bad files, locks, and the SQLite driver itself.

#include <QDir>
#include <QElapsedTimer>
#include <QScopeGuard>
#include <QTest>

#include "data/lighting_database.h"
#include "data/store/dialect.h"
#include "data/store/sqlite_connection.h"
#include "data/store/store_factory.h"
#include "tests/support/temporary_lighting_database.h"
#include "tests/support/unprivileged_scope.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

const CString kSomeRows =
    u"insert into 光源 values (1, 1, 'T5', 2600, 28, '晨光', '直管荧光灯');"
    "insert into 灯具 (LamphouseTypeID) values ('1')"_s;

void WriteFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

// Whether every kind of write is refused.
bool RefusesWrites(CLightingDatabase& database) {
    tagLAMPHOUSEINFO record;
    record.ID = 1;
    return !database.UpdateLightSource(record) && !database.InsertLightSource(record) &&
           !database.DeleteLightSource(1) && !database.DeleteLuminaire(1);
}

bool Reads(CLightingDatabase& database) {
    std::vector<tagLAMPHOUSEINFO> records;
    return database.LoadAllLightSources(records) && records.size() == 1;
}

}  // namespace

class TestStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void RefusesBadFiles_data();
    void RefusesBadFiles();
    void RefusesWhatIsNoFile();
    void MissingTableFailsItsOperations();
    void OpeningAndReadingChangeNothing();
    void ReadsWhereWritingIsForbidden_data();
    void ReadsWhereWritingIsForbidden();
    void YieldsToAnotherProgramsLock();
    void RewritesTheDialect();
    void RunsOneStatementOnly();
    void ReadsEveryKindOfValue();
    void QualifiesColumnsThatStandTwice();
    void ClosesOnlyWhenNothingIsRead();

private:
    CLightingDatabase Database() const { return {CreateStoreConnection, m_file->ExecutablePath()}; }
    std::shared_ptr<Connection> OpenConnection() const;

    std::unique_ptr<TemporaryLightingDatabase> m_file;
};

void TestStore::init() {
    m_file = std::make_unique<TemporaryLightingDatabase>();
    m_file->Raw().Execute(kSomeRows);
}

std::shared_ptr<Connection> TestStore::OpenConnection() const {
    const CString connectionString = u"Data Source = %1;"_s.arg(m_file->FilePath());
    std::shared_ptr<Connection> connection = CreateStoreConnection(connectionString);
    connection->Open(connectionString, CString(), CString(), -1);
    return connection;
}

void TestStore::RefusesBadFiles_data() {
    // What becomes of a good file's bytes.
    QTest::addColumn<std::function<QByteArray(QByteArray)>>("spoil");
    QTest::addColumn<QString>("reason");
    using Spoil = std::function<QByteArray(QByteArray)>;
    const auto row = [](const char* name, const QString& reason, const Spoil& spoil) {
        QTest::newRow(name) << spoil << reason;
    };
    row("empty", u"is empty"_s, [](const QByteArray&) { return QByteArray(); });
    row("one byte", u"is not a database"_s, [](const QByteArray&) { return QByteArray("S"); });
    row("text", u"is not a database"_s,
        [](const QByteArray&) { return QByteArray("照明设计 ").repeated(999); });
    row("Jet", u"is an Access file"_s, [](const QByteArray&) {
        return QByteArray("\0\1\0\0Standard Jet DB\0", 20) + QByteArray(4076, '\0');
    });
    row("ACE", u"is an Access file"_s, [](const QByteArray&) {
        return QByteArray("\0\1\0\0Standard ACE DB\0", 20) + QByteArray(4076, '\0');
    });
    row("signature alone", u""_s, [](const QByteArray& good) { return good.first(16); });
    row("header alone", u""_s, [](const QByteArray& good) { return good.first(100); });
    row("first page alone", u""_s, [](const QByteArray& good) { return good.first(4096); });
    row("half", u""_s, [](const QByteArray& good) { return good.first(good.size() / 2 + 77); });
    row("last page missing", u""_s, [](const QByteArray& good) { return good.chopped(4096); });
    row("noise after the header", u""_s, [](const QByteArray& good) {
        return good.first(100) + QByteArray("\x5a\xc3\x17").repeated(20000).first(good.size() - 100);
    });
    row("one page overwritten", u"is damaged"_s,
        [](QByteArray good) { return good.replace(12288, 4096, QByteArray(4096, '\xff')); });
}

void TestStore::RefusesBadFiles() {
    QFETCH(std::function<QByteArray(QByteArray)>, spoil);
    QFETCH(QString, reason);
    const QByteArray bytes = spoil(m_file->Bytes());
    WriteFile(m_file->FilePath(), bytes);
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(u"^连接数据库失败!\n.*"_s + reason));
    CLightingDatabase database = Database();
    QVERIFY(!database.Connect());
    QCOMPARE(m_file->Bytes(), bytes);
    QCOMPARE(QDir(m_file->DatabaseFolder()).entryList(QDir::Files), QStringList{u"灯具数据库.mdb"_s});
}

void TestStore::RefusesWhatIsNoFile() {
    QVERIFY(QFile::remove(m_file->FilePath()));
    CLightingDatabase database = Database();
    QVERIFY(!database.Connect());
    QVERIFY(!QFile::exists(m_file->FilePath()));
    QVERIFY(QDir().mkdir(m_file->FilePath()));
    QVERIFY(!database.Connect());
    QVERIFY_THROWS_EXCEPTION(ProviderError, CreateStoreConnection(u"Provider=x;"_s));
}

void TestStore::MissingTableFailsItsOperations() {
    m_file->Raw().Execute(u"drop table 光源类别"_s);
    CLightingDatabase database = Database();
    QVERIFY(database.Connect());
    std::vector<tagLAMPHOUSETYPE> types;
    QVERIFY(!database.LoadLampTypes(types));
    QVERIFY(Reads(database));
}

void TestStore::OpeningAndReadingChangeNothing() {
    const QByteArray before = m_file->Bytes();
    CLightingDatabase database = Database();
    QVERIFY(database.Connect());
    QVERIFY(Reads(database));
    QVERIFY(database.Disconnect());
    QCOMPARE(m_file->Bytes(), before);
    QCOMPARE(QDir(m_file->DatabaseFolder()).entryList(QDir::Files).size(), 1);
}

void TestStore::ReadsWhereWritingIsForbidden_data() {
    QTest::addColumn<bool>("fileWritable");
    QTest::newRow("read-only folder") << true;
    QTest::newRow("read-only file and folder") << false;
}

void TestStore::ReadsWhereWritingIsForbidden() {
    QFETCH(bool, fileWritable);
    const auto readers = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
    const auto writers = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    const auto visitors = QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
    QVERIFY(QFile::setPermissions(m_file->FilePath(), fileWritable ? readers | writers : readers));
    QVERIFY(QFile::setPermissions(m_file->DatabaseFolder(), readers | visitors));
    QVERIFY(QFile::setPermissions(m_file->Folder(), readers | visitors | QFile::WriteOwner));
    const QByteArray before = m_file->Bytes();
    {
        const UnprivilegedScope nobody;
        CLightingDatabase database = Database();
        QVERIFY(database.Connect());
        QVERIFY(Reads(database));
        QVERIFY(RefusesWrites(database));
        QVERIFY(Reads(database));
    }
    QFile::setPermissions(m_file->DatabaseFolder(), readers | visitors | QFile::WriteOwner);
    QCOMPARE(m_file->Bytes(), before);
}

void TestStore::YieldsToAnotherProgramsLock() {
    CLightingDatabase database = Database();
    QVERIFY(database.Connect());
    const QStringList before = m_file->Snapshot();
    RawDatabase other = m_file->Raw();

    other.Execute(u"begin immediate"_s);
    QVERIFY(Reads(database));
    QElapsedTimer timer;
    timer.start();
    for (int row = 0; row < 10; ++row) {
        QVERIFY(RefusesWrites(database));
    }
    QVERIFY2(timer.elapsed() < 2000, "a locked file must not hold up the window");
    other.Execute(u"commit; begin exclusive"_s);
    QVERIFY(!Reads(database));
    QVERIFY(RefusesWrites(database));
    other.Execute(u"commit"_s);

    QVERIFY(Reads(database));
    QCOMPARE(m_file->Snapshot(), before);
    QVERIFY(database.DeleteLightSource(1));
}

void TestStore::RewritesTheDialect() {
    const std::pair<CString, CString> cases[]{
        {u"delete * from 光源 where ID=1"_s, u"delete from 光源 where ID=1"_s},
        {u"DELETE * FROM 光源"_s, u"delete from 光源"_s},
        {u"update 光源 set Factory='delete * from x'"_s, u"update 光源 set Factory='delete * from x'"_s},
        {u"delete * from 光源 where Factory='delete * from x'"_s,
         u"delete from 光源 where Factory='delete * from x'"_s},
    };
    for (const auto& [statement, rewritten] : cases) {
        QCOMPARE(ToSqliteDialect(statement), rewritten);
    }
}

void TestStore::RunsOneStatementOnly() {
    const std::shared_ptr<Connection> connection = OpenConnection();
    const QStringList before = m_file->Snapshot();
    for (const CString& statement :
         {u"delete from 光源; delete from 灯具"_s, u"delete from 光源;;"_s, u"delete from 光源; --"_s, u""_s,
          u" ; "_s, u"delete from 光源\0"_s, u"nonsense"_s}) {
        QVERIFY_THROWS_EXCEPTION(ProviderError, connection->Execute(statement));
    }
    QCOMPARE(m_file->Snapshot(), before);
    QVERIFY(connection->Execute(u"delete from 光源 ; \r\n\t "_s)->AtEnd());
    QCOMPARE(m_file->Raw().Text(u"select count(*) from 光源"_s), QByteArray("0"));
    QVERIFY_THROWS_EXCEPTION(ProviderError, SqliteConnection().Execute(u"select 1"_s));
}

void TestStore::ReadsEveryKindOfValue() {
    const std::shared_ptr<Connection> connection = OpenConnection();
    const auto rows = connection->Execute(
        u"select NULL, 9223372036854775807, 0.5, '', x'00', "
        "cast(x'41ff42' as text) as latin, cast(x'410042' as text)"_s);
    QCOMPARE(rows->Value(0), FieldValue(std::monostate()));
    QCOMPARE(rows->Value(1), FieldValue(std::numeric_limits<qint64>::max()));
    QCOMPARE(rows->Value(2), FieldValue(0.5));
    QCOMPARE(rows->Value(3), FieldValue(CString()));
    QCOMPARE(rows->Value(6), FieldValue(u"A\0B"_s));
    QVERIFY_THROWS_EXCEPTION(ProviderError, rows->Value(4));
    QVERIFY_THROWS_EXCEPTION(ProviderError, rows->Value(u"latin"_s));
    QVERIFY_THROWS_EXCEPTION(ProviderError, rows->Value(7));
    QVERIFY_THROWS_EXCEPTION(ProviderError, rows->Value(-1));
    QVERIFY_THROWS_EXCEPTION(ProviderError, rows->Value(u"absent"_s));
    rows->MoveNext();
    QVERIFY(rows->AtEnd());
    QVERIFY_THROWS_EXCEPTION(ProviderError, rows->Value(0));
    QVERIFY_THROWS_EXCEPTION(ProviderError, rows->MoveNext());
}

void TestStore::QualifiesColumnsThatStandTwice() {
    m_file->Raw().Execute(u"insert into 光源类别 values (1, '荧光灯')"_s);
    const auto rows = OpenConnection()->Execute(
        u"select 光源.ID, 光源类别.ID, 光源.LamphouseType, 光源类别.LamphouseType, Factory "
        "from 光源, 光源类别"_s);
    QCOMPARE(rows->Value(u"光源类别.LamphouseType"_s), FieldValue(u"荧光灯"_s));
    QCOMPARE(rows->Value(u"光源.LamphouseType"_s), FieldValue(qint64{1}));
    QCOMPARE(rows->Value(u"factory"_s), FieldValue(u"晨光"_s));
    QVERIFY_THROWS_EXCEPTION(ProviderError, rows->Value(u"ID"_s));
}

void TestStore::ClosesOnlyWhenNothingIsRead() {
    const std::shared_ptr<Connection> connection = OpenConnection();
    auto rows = connection->Execute(u"select * from 光源"_s);
    QVERIFY_THROWS_EXCEPTION(ProviderError, connection->Close());
    rows.reset();
    connection->Close();
    QVERIFY_THROWS_EXCEPTION(ProviderError, connection->Execute(u"select 1"_s));
}

QTEST_GUILESS_MAIN(TestStore)
#include "test_store.moc"
