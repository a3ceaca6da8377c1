// Files of both kinds with random damage are refused or read, in good time and unchanged, and no statement
// ends the program. The first argument is the number of files of each kind.

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>
#include <functional>
#include <random>

#include "tests/support/files.h"
#include "tests/support/raw_database.h"
#include "tests/support/rounds.h"
#include "tools/sample_database.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

constexpr int kPage = 4096;
constexpr int kLongestMs = 60'000;
int fileCount = 0;

// Much leads from the first pages, and from the head of each, to all the rest. They are hit more often.
QByteArray Damaged(QByteArray file, std::mt19937 random) {
    const auto below = [&](qsizetype limit) {
        return static_cast<int>(random() % static_cast<quint32>(limit));
    };
    for (int hits = 1 + below(5); hits > 0 && file.size() > kPage; --hits) {
        const int pages = static_cast<int>(file.size() / kPage);
        const int page = kPage * below(below(3) == 0 ? std::min(pages, 60) : pages);
        const int place = page + below(below(2) == 0 ? 64 : kPage - 8);
        const int other = below(pages);
        const std::function<void()> harms[] = {
            [&] { file[place] = static_cast<char>(random()); },
            [&] { file.replace(place, 8, QByteArray(8, below(2) == 0 ? '\xff' : '\0')); },
            [&] { qToLittleEndian(other, file.data() + place); },
            [&] { qToBigEndian(other, file.data() + place); },
            [&] { file.replace(page, kPage, file.mid(qsizetype{other} * kPage, kPage)); },
            [&] { file.truncate(below(4) == 0 ? place : file.size()); },
        };
        harms[below(std::size(harms))]();
    }
    return file;
}

// Every statement may fail.
void Run(Connection& connection, const QString& statement) {
    for (const QString& table :
         {u"光源类别"_s, u"光源"_s, u"灯具"_s, u"利用系数"_s, u"照度要求及功率密度"_s}) {
        try {
            for (const auto rows = connection.Execute(statement.arg(table)); !rows->AtEnd();
                 rows->MoveNext()) {
                rows->Value(u"ID"_s);
            }
        } catch (const ProviderError&) {
        }
    }
}

}  // namespace

class TestDamagedFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AreRefusedOrRead_data() {
        QTest::addColumn<QList<QByteArray>>("files");
        QList<QByteArray> access;
        for (const QFileInfo& file : QDir(QStringLiteral(ACCESS_FIXTURES)).entryInfoList({u"*.mdb"_s})) {
            access += Contents(file.filePath());
        }
        QTest::newRow("Access") << access;
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"sample.mdb"_s);
        WriteSampleDatabase(ReadSampleData({}), path);
        RawDatabase(path).Execute(  // so large that it is shown before it is checked
            u"insert into 照度要求及功率密度 (Location) select hex(zeroblob(100)) from 利用系数"_s);
        QTest::newRow("SQLite") << QList<QByteArray>{Contents(path)};
    }

    void AreRefusedOrRead() {
        QFETCH(QList<QByteArray>, files);
        int opened = 0;
        for (int number = 0; number < fileCount && !QTest::currentTestFailed(); ++number) {
            const QByteArray bytes =
                Damaged(files[number % files.size()], std::mt19937(static_cast<unsigned>(number)));
            const QTemporaryDir folder;
            const QString path = folder.filePath(u"%1.mdb"_s.arg(number));
            WriteFile(path, bytes);
            QElapsedTimer timer;
            timer.start();
            try {
                const auto connection = OpenStore(path);
                ++opened;
                Run(*connection, u"select * from %1"_s);
                QVERIFY2(Contents(path) == bytes, qPrintable(path));
                Run(*connection, u"insert into %1 (ID) values (99999)"_s);
                Run(*connection, u"delete from %1 where ID<9"_s);
            } catch (const ProviderError&) {
                QVERIFY2(Contents(path) == bytes, qPrintable(path));
            }
            QVERIFY2(timer.elapsed() < kLongestMs, qPrintable(path));
        }
        qInfo("cases: %d, %d opened", fileCount, opened);
        QVERIFY(0 < opened && opened < fileCount);
    }
};

int main(int argc, char* argv[]) {
    fileCount = Rounds(TakeArgument(argc, argv), 60, 5000);
    TestDamagedFiles test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_damaged_files.moc"
