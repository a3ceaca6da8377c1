// A process that is killed while it writes loses nothing it has finished, and leaves nothing in the way.

#include <QProcess>
#include <QTest>

#include "data/lighting_database.h"
#include "data/store/store_factory.h"
#include "tests/support/temporary_lighting_database.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestDurability : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void SurvivesKilling();
};

void TestDurability::SurvivesKilling() {
    for (int attempt = 0; attempt < 25; ++attempt) {
        const TemporaryLightingDatabase file;
        file.Raw().Execute(u"insert into 光源 values (1, 1, '', 0, 0, '', '')"_s);

        QProcess writer;
        writer.start(QStringLiteral(ENDLESS_WRITER), {file.ExecutablePath()});
        QVERIFY(writer.waitForReadyRead());
        // Somewhere else in the course of a statement each time.
        QTest::qSleep(3 + attempt);
        writer.kill();
        QVERIFY(writer.waitForFinished());
        QCOMPARE(writer.exitStatus(), QProcess::CrashExit);
        const QByteArray said = writer.readAllStandardOutput();
        const int done = said.first(said.lastIndexOf('\n')).split('\n').last().toInt();
        QVERIFY(done > 0);

        CLightingDatabase database(CreateStoreConnection, file.ExecutablePath());
        QVERIFY(database.Connect());
        tagLAMPHOUSEINFO first;
        QVERIFY(database.LoadLightSourceByID(1, first));
        std::vector<tagLAMPHOUSEINFO> all;
        QVERIFY(database.LoadAllLightSources(all));
        const int inserted = static_cast<int>(all.size()) - 1;
        // One more of each may have been finished without time to say so.
        QVERIFY(first.LuminousFlux == done || first.LuminousFlux == done + 1);
        QVERIFY(inserted == done || inserted == done + 1);
        QVERIFY(database.UpdateLightSource(first));
        QCOMPARE(file.Raw().Rows(u"PRAGMA integrity_check"_s), QStringList{u"'ok'"_s});
    }
}

QTEST_GUILESS_MAIN(TestDurability)
#include "test_durability.moc"
