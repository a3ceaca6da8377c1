// The way back: a copy of the file before the first statement of a run that writes.

#include <QDir>
#include <QFile>
#include <QTest>

#include "data/store/store_factory.h"
#include "tests/support/temporary_lighting_database.h"
#include "tests/support/unprivileged_scope.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestBackup : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void CopiesBeforeTheFirstWrite() {
        const TemporaryLightingDatabase file;
        const QFileInfo database(file.FilePath());
        QDir folder = database.dir();
        const QStringList older{u".2001-01-01-000000.bak"_s, u".2002-01-01-000000.bak"_s,
                                u".2003-01-01-000000.bak"_s, u".2003-01-01.bak"_s};
        for (const QString& name : older) {
            QFile(file.FilePath() + name).open(QIODevice::WriteOnly);
        }
        const QByteArray before = file.Bytes();
        const auto connection = Connect(file.FilePath(), true);
        connection->Execute(u"select * from 光源"_s);
        QCOMPARE(Copies(folder).size(), 4);
        for (int ID = 1; ID <= 2; ++ID) {
            connection->Execute(u"insert into 光源类别 values (%1, '直管')"_s.arg(ID));
        }
        const QStringList copies = Copies(folder);
        QCOMPARE(copies.size(), 4);  // three, and one of another name
        QVERIFY(!copies.contains(database.fileName() + older[0]) &&
                copies.contains(database.fileName() + older[3]));
        QFile copy(folder.filePath(copies.last()));
        QVERIFY(copy.open(QIODevice::ReadOnly) && copy.readAll() == before && file.Bytes() != before);
    }

    void AsksOnceWithoutACopy() {
        for (const bool goOn : {true, false}) {
            const TemporaryLightingDatabase file;
            QFile log(file.FilePath() + u"-wal"_s);
            const auto connection = Connect(file.FilePath(), goOn);
            QVERIFY(log.open(QIODevice::WriteOnly) && log.write("x") == 1 && log.flush());
            int failed = 0;
            for (int round = 0; round < 2; ++round) {
                try {
                    connection->Execute(u"insert into 光源类别 (LamphouseType) values ('直管')"_s);
                } catch (const ProviderError& error) {
                    failed += error.Message().contains(u"could not be copied"_s);
                }
            }
            QCOMPARE(failed, goOn ? 0 : 2);
            QCOMPARE(m_asked, 1);
        }
    }

private:
    std::shared_ptr<Connection> Connect(const QString& path, bool goOn) {
        m_asked = 0;
        const CString text = u"Provider=x;Data Source = %1;"_s.arg(path);
        auto connection = BackedUpStore([this, goOn](const CString&) {
            ++m_asked;
            return goOn;
        })(text);
        connection->Open(text, {}, {}, -1);
        return connection;
    }
    static QStringList Copies(QDir& folder) {
        folder.refresh();
        return folder.entryList({u"*.bak"_s}, QDir::Files, QDir::Name);
    }

    int m_asked = 0;
};

QTEST_GUILESS_MAIN(TestBackup)
#include "test_backup.moc"
