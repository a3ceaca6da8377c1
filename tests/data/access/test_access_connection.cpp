// What a connection to an Access file refuses, in the file and in statements, and what others do to the file.

#include <QTemporaryDir>
#include <QTest>

#include "data/store/access/bytes.h"
#include "data/store/access/disk/pages.h"
#include "tests/support/files.h"

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

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

constexpr qsizetype kRowCount = 24 * access::kPageSize + 16;  // of the table 光源类别

}  // namespace

class TestAccessConnection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_folder = std::make_unique<QTemporaryDir>();
        m_file = m_folder->filePath(u"灯具数据库.mdb"_s);
        Take(u"lighting-general"_s);
    }

    // What is refused is refused for a reason and changes nothing; the rest is in the file at once.
    void StatementsAreRefusedOrStored() {
        const QString file = QString::fromUtf8(Contents(QStringLiteral(REFUSED_FILE)));
        const QStringList cases = file.split(u'\n', Qt::SkipEmptyParts).mid(1);
        QVERIFY(cases.size() > 10);
        const auto database = OpenStore(m_file);
        for (const QString& line : cases) {
            const QStringList parts = line.split(u" | "_s);  // a statement and what its refusal tells
            const QByteArray before = Contents(m_file);
            const QString complaint = Complaint(*database, parts[0]);
            for (const QString& word : parts.mid(1)) {
                QVERIFY2(complaint.contains(word), qPrintable(line + u'\n' + complaint));
            }
            QCOMPARE(complaint.isEmpty(), parts.size() == 1);
            QCOMPARE(Contents(m_file) == before, parts.size() > 1);
        }
    }

    void SomeFilesAreShownAndNotWritten() {
        const QByteArray good = Contents(m_file);
        const auto mapRow = qsizetype{access::ReadU16(good, access::kPageSize + 14)} & 0x1FFF;
        // What stands where, why the file is not written then, and of which kind that is.
        const std::tuple<qsizetype, QByteArray, QString, FailureKind> cases[] = {
            {kRowCount, "\7", u"光源类别"_s, FailureKind::Damaged},
            {68, "x", u"密码"_s, FailureKind::Other},
            // The global map as references: its first pointer names no page.
            {access::kPageSize + mapRow, "\1" + QByteArray(68, '\0'), u"空闲页"_s, FailureKind::Other},
        };
        for (const auto& [offset, bytes, reason, kind] : cases) {
            const QByteArray patched = QByteArray(good).replace(offset, bytes.size(), bytes);
            WriteFile(m_file, patched);
            const auto database = OpenStore(m_file);
            QCOMPARE(First(*database, u"select count(*) from 光源类别"_s), FieldValue(qint64{20}));
            const ProviderFailure failure = Failure(*database, u"update 光源 set Factory='x'"_s);
            QVERIFY2(failure.message.contains(reason), qPrintable(failure.message));
            QCOMPARE(failure.kind, kind);
            if (kind == FailureKind::Damaged) {
                QVERIFY_THROWS_EXCEPTION(ProviderError, database->RequireSoundFile());
            }
            database->Close();
            QCOMPARE(Contents(m_file), patched);
            QCOMPARE(CheckStoreFile(m_file).size(), kind == FailureKind::Damaged ? 1 : 0);
        }
    }

    void EmptyTextsAreToldByTheirColumn() {
        Take(u"adox-chinese"_s);
        const ProviderFailure failure =
            Failure(*OpenStore(m_file), u"update 灯具 set LampPhoto='' where ID=1"_s);
        QVERIFY(failure.kind == FailureKind::EmptyText && failure.column == u"LampPhoto");
        QVERIFY(failure.message.contains(u"灯具") && failure.message.contains(u"ID=1"));
    }

    // One statement tells, and the next query reads the file as it is. Until then nothing is written.
    void ChangesOfOthersAreTold() {
        const auto database = OpenStore(m_file);
        QCOMPARE(First(*database, u"select max(ID) from 光源类别"_s), FieldValue(qint64{20}));
        const QString other = m_folder->filePath(u"other.mdb"_s);
        QVERIFY(QFile::copy(m_file, other));
        OpenStore(other)->Execute(u"insert into 光源类别 (LamphouseType) values ('LED灯带')"_s);
        WriteFile(m_file, Contents(other));

        const QString update = u"update 光源类别 set LamphouseType='x' where ID=1"_s;
        for (int attempt = 0; attempt < 2; ++attempt) {
            QVERIFY(Complaint(*database, update).contains(u"其他程序"));
        }
        QCOMPARE(First(*database, u"select max(ID) from 光源类别"_s), FieldValue(qint64{21}));
        QCOMPARE(Complaint(*database, update), QString());
        database->Close();
        QCOMPARE(CheckStoreFile(m_file), QStringList());

        // What changes before its check has ended is neither sound nor damaged.
        const QByteArray sound = Contents(m_file);
        for (const QByteArray& bytes : {QByteArray(sound).replace(kRowCount, 1, "\7"), sound}) {
            const auto changing = OpenStore(m_file);
            WriteFile(m_file, bytes);
            QVERIFY_THROWS_EXCEPTION(ProviderError, changing->RequireSoundFile());
            QCOMPARE(Failure(*changing, update).kind, FailureKind::FileChanged);
            First(*changing, u"select 1"_s);
            QCOMPARE(Complaint(*changing, update).isEmpty(), bytes == sound);
        }
    }

    // What stands at the path counts, not what was opened, and who uses it now, not who did.
    void FollowsTheFileAtItsPath() {
        const QString lock = m_folder->filePath(u"灯具数据库.ldb"_s);
        const QString copy = m_folder->filePath(u"copy.mdb"_s);
        const QByteArray slot = QByteArray("OFFICE-7").leftJustified(64, '\0');
        WriteFile(lock, slot);
        const auto database = OpenStore(m_file);
        const QString update = u"update 光源类别 set LamphouseType='x' where ID=1"_s;
        QCOMPARE(Failure(*database, update).kind, FailureKind::Locked);
        QVERIFY(Complaint(*database, update).contains(u"OFFICE-7"));
        QVERIFY(Contents(lock) == slot && QFile::remove(lock));
        QCOMPARE(Complaint(*database, update), QString());
        Take(u"lighting-general"_s);
        QVERIFY(QFile::rename(m_file, copy));
        QCOMPARE(Failure(*database, update).kind, FailureKind::FileGone);
        QVERIFY(QFile::rename(copy, m_file));
        database->BeginSubmit();
        QCOMPARE(Complaint(*database, update), QString());
        database->EndSubmit();
        QCOMPARE(First(*OpenStore(m_file), u"select LamphouseType from 光源类别 where ID=1"_s),
                 FieldValue(u"x"_s));
    }

    // A query that is open while its table changes goes on with the rows behind its place.
    void OpenQueriesBearChanges() {
        const auto database = OpenStore(m_file);
        const auto rows = database->Execute(u"select ID from 利用系数"_s);
        database->Execute(u"delete * from 利用系数 where ID<4"_s);
        rows->MoveNext();
        QCOMPARE(rows->Value(0), FieldValue(qint64{4}));
    }

    void DamageIsFoundAndNotShown() {
        Take(u"lighting-2003-memo"_s);
        QCOMPARE(CheckStoreFile(m_file), QStringList());
        const QByteArray bytes = Contents(m_file);
        // What stands where, what the check finds, and whether the rows can be read nevertheless.
        const std::tuple<qsizetype, QByteArray, QString, bool> cases[] = {
            // A row that names the long value of another one, and so leaves its own behind.
            {199217, bytes.mid(199302, 12), u"share a piece"_s, true},
            {172431, "\x22", u"not as long as it says"_s, false},
            {172433, "\xff", u"longer than the file"_s, false},
            {172036, "\x7e", u"belongs to another table"_s, false},
        };
        for (const auto& [offset, harm, fault, isShown] : cases) {
            WriteFile(m_file, QByteArray(bytes).replace(offset, harm.size(), harm));
            const QStringList faults = CheckStoreFile(m_file);
            QVERIFY2(faults.size() == 1 && faults[0].contains(fault), qPrintable(faults.join(u'\n')));
            QCOMPARE(Complaint(*OpenStore(m_file), u"select max(LampPhoto) from 灯具"_s).isEmpty(), isShown);
        }
    }

private:
    void Take(const QString& fixture) {
        QFile::remove(m_file);  // not the file that may still be open
        WriteFile(m_file, Contents(QStringLiteral(ACCESS_FIXTURES "/%1.mdb").arg(fixture)));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_file;
};

QTEST_GUILESS_MAIN(TestAccessConnection)
#include "test_access_connection.moc"
