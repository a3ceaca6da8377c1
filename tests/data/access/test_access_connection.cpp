// What a connection to an Access file does where something is in the way.

#include <QTemporaryDir>
#include <QTest>

#include "data/connection.h"
#include "data/store/access/disk/pages.h"
#include "data/store/store_factory.h"

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<Connection> Open(const QString& file) {
    const CString source = u"Data Source = %1;"_s.arg(file);
    std::shared_ptr<Connection> connection = CreateStoreConnection(source);
    connection->Open(source, {}, {}, -1);
    return connection;
}

// Why a statement fails; without a message when it does not.
ProviderFailure Failure(Connection& connection, const QString& statement) {
    try {
        connection.Execute(statement);
        return {};
    } catch (const ProviderError& error) {
        return error.Failure();
    }
}

QString Complaint(Connection& connection, const QString& statement) {
    return Failure(connection, statement).message;
}

FieldValue First(Connection& connection, const QString& query) {
    return connection.Execute(query)->Value(0);
}

QByteArray Bytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void Write(const QString& path, qint64 offset, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(offset));
    QCOMPARE(file.write(bytes), bytes.size());
}

constexpr qint64 kCategories = qint64{24} * access::kPageSize;  // where the table 光源类别 is defined
constexpr qint64 kRowCount = 16;

}  // namespace

class TestAccessConnection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_folder = std::make_unique<QTemporaryDir>();
        m_file = m_folder->filePath(u"灯具数据库.mdb"_s);
        Take(u"lighting-general"_s);
    }

    // In the middle of a statement, and at its beginning.
    void FailedStatementsStoreNothing() {
        const QByteArray before = Bytes(m_file);
        const auto database = Open(m_file);
        const std::pair<QString, QStringList> cases[] = {
            {u"update 灯具 set LampModel='x', LamphouseTypeID=case when ID<12 then '7' else '灯' end"_s,
             {u"灯具"_s, u"row 12"_s, u"LamphouseTypeID"_s, u"灯"_s}},
            {u"update 光源 set LamphouseType=LamphouseType*400000000"_s, {u"光源"_s, u"LamphouseType"_s}},
            {u"update 光源 set LamphouseType=1.5 where ID=5"_s, {u"row 5"_s, u"1.5"_s}},
            {u"update 光源 set ID=ID+100"_s, {u"AutoNumber"_s}},
            {u"insert into 光源 (ID) values (5)"_s, {u"光源"_s, u"row 5"_s}},
            {u"update 光源 set Factory='"_s + QString(256, u'x') + u"' where ID=5"_s,
             {u"Factory"_s, u"256"_s}},
            {u"select * from 光源; select 1"_s, {u"follows"_s}},
            {u"update 光源 set Factory=zeroblob(99999999)"_s, {u"too big"_s}},
        };
        for (const auto& [statement, words] : cases) {
            const QString complaint = Complaint(*database, statement);
            for (const QString& word : words) {
                QVERIFY2(complaint.contains(word), qPrintable(statement + u'\n' + complaint));
            }
        }
        database->Close();
        QCOMPARE(Bytes(m_file), before);
    }

    void DamagedFilesAreShownAndNotWritten() {
        Write(m_file, kCategories + kRowCount, QByteArray(1, '\x07'));
        const QByteArray damaged = Bytes(m_file);
        const auto database = Open(m_file);
        QCOMPARE(First(*database, u"select count(*) from 光源类别"_s), FieldValue(qint64{20}));
        const ProviderFailure failure = Failure(*database, u"update 光源 set Factory='x'"_s);
        QVERIFY2(failure.message.contains(u"reading only") && failure.message.contains(u"光源类别"),
                 qPrintable(failure.message));
        QCOMPARE(failure.kind, FailureKind::Damaged);
        QVERIFY_THROWS_EXCEPTION(ProviderError, database->RequireSoundFile());
        database->Close();
        QCOMPARE(Bytes(m_file), damaged);
        QCOMPARE(CheckStoreFile(m_file).size(), 1);
    }

    void EmptyTextsAreToldByTheirColumn() {
        Take(u"adox-chinese"_s);
        const ProviderFailure failure = Failure(*Open(m_file), u"update 灯具 set LampPhoto='' where ID=1"_s);
        QVERIFY(failure.kind == FailureKind::EmptyText && failure.column == u"LampPhoto");
        QVERIFY(failure.message.contains(u"灯具") && failure.message.contains(u"row 1"));
    }

    // One statement tells, and the next query reads the file as it is. Until then nothing is written.
    void ChangesOfOthersAreTold() {
        const auto database = Open(m_file);
        QCOMPARE(First(*database, u"select max(ID) from 光源类别"_s), FieldValue(qint64{20}));
        const QString other = m_folder->filePath(u"other.mdb"_s);
        QVERIFY(QFile::copy(m_file, other));
        Open(other)->Execute(u"insert into 光源类别 (LamphouseType) values ('LED灯带')"_s);
        Write(m_file, 0, Bytes(other));

        const QString update = u"update 光源类别 set LamphouseType='x' where ID=1"_s;
        for (int attempt = 0; attempt < 2; ++attempt) {
            QVERIFY(Complaint(*database, update).contains(u"another program"));
        }
        QCOMPARE(First(*database, u"select max(ID) from 光源类别"_s), FieldValue(qint64{21}));
        QCOMPARE(Complaint(*database, update), QString());
        database->Close();
        QCOMPARE(CheckStoreFile(m_file), QStringList());
    }

    // What stands at the path counts, not what was opened, and who uses it now, not who did.
    void FollowsTheFileAtItsPath() {
        const QString lock = m_folder->filePath(u"灯具数据库.ldb"_s);
        const QString copy = m_folder->filePath(u"copy.mdb"_s);
        Write(lock, 0, QByteArray("OFFICE-7").leftJustified(64, '\0'));
        const auto database = Open(m_file);
        const QString update = u"update 光源类别 set LamphouseType='x' where ID=1"_s;
        QCOMPARE(Failure(*database, update).kind, FailureKind::Locked);
        QVERIFY(QFile::remove(lock));
        QCOMPARE(Complaint(*database, update), QString());
        Take(u"lighting-general"_s);
        QVERIFY(QFile::rename(m_file, copy));
        QCOMPARE(Failure(*database, update).kind, FailureKind::FileGone);
        QVERIFY(QFile::rename(copy, m_file));
        database->BeginSubmit();
        QCOMPARE(Complaint(*database, update), QString());
        database->EndSubmit();
        QCOMPARE(First(*Open(m_file), u"select LamphouseType from 光源类别 where ID=1"_s),
                 FieldValue(u"x"_s));
    }

    void OneStatementIsInTheFileWithoutASubmit() {
        const auto database = Open(m_file);
        database->Execute(u"update 光源类别 set LamphouseType='x' where ID=1"_s);
        const QString copy = m_folder->filePath(u"copy.mdb"_s);
        QVERIFY(QFile::copy(m_file, copy));
        QCOMPARE(First(*Open(copy), u"select LamphouseType from 光源类别 where ID=1"_s), FieldValue(u"x"_s));
    }

    // A query that is open while its table changes goes on with the rows behind its place.
    void OpenQueriesBearChanges() {
        const auto database = Open(m_file);
        const auto rows = database->Execute(u"select ID from 利用系数"_s);
        database->Execute(u"delete * from 利用系数 where ID<4"_s);
        rows->MoveNext();
        QCOMPARE(rows->Value(0), FieldValue(qint64{4}));
    }

    // A row that names the long value of another one, and so leaves its own behind.
    void OneLongValueHasOneRow() {
        Take(u"lighting-2003-memo"_s);
        QCOMPARE(CheckStoreFile(m_file), QStringList());
        Write(m_file, 199217, Bytes(m_file).mid(199302, 12));
        const QStringList faults = CheckStoreFile(m_file);
        QVERIFY2(faults.size() == 1 && faults[0].contains(u"share a piece"), qPrintable(faults.join(u'\n')));
    }

private:
    void Take(const QString& fixture) {
        QFile::remove(m_file);
        QVERIFY(QFile::copy(QStringLiteral(ACCESS_FIXTURES "/%1.mdb").arg(fixture), m_file));
        QFile::setPermissions(m_file, QFile::ReadOwner | QFile::WriteOwner);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_file;
};

QTEST_GUILESS_MAIN(TestAccessConnection)
#include "test_access_connection.moc"
