// An allocation that fails, each in turn, in every kind of operation on either kind of file: the statement
// counts as failed and is nowhere in the file, or has run; the program goes on.

#include <QTest>

#include "data/lighting_database.h"
#include "data/store/store_factory.h"
#include "tests/support/temporary_lighting_database.h"
#include "tools/sample_database.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

extern "C" {
void* __libc_malloc(size_t size);                 // NOLINT: the names are the C library's
void* __libc_calloc(size_t count, size_t size);   // NOLINT
void* __libc_realloc(void* memory, size_t size);  // NOLINT
}

namespace {

thread_local int allocationsUntilFailure = 0;  // 0: none fails

bool FailsNow() {
    return allocationsUntilFailure > 0 && --allocationsUntilFailure == 0;
}

}  // namespace

// The toolkit and the SQL engine allocate by these, and so does the operator new.
extern "C" {
void* malloc(size_t size) noexcept {
    return FailsNow() ? nullptr : __libc_malloc(size);
}
void* calloc(size_t count, size_t size) noexcept {
    return FailsNow() ? nullptr : __libc_calloc(count, size);
}
void* realloc(void* memory, size_t size) noexcept {
    return FailsNow() ? nullptr : __libc_realloc(memory, size);
}
}

class TestMemoryFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AFailedAllocationIsAFailedStatement_data() {
        QTest::addColumn<bool>("isAccess");
        QTest::newRow("SQLite") << false;
        QTest::newRow("Access") << true;
    }

    void AFailedAllocationIsAFailedStatement() {
        QFETCH(bool, isAccess);
        const TemporaryLightingDatabase place;
        QVERIFY(QFile::remove(place.FilePath()));
        WriteEmptyDatabase(place.FilePath(), isAccess ? DatabaseKind::Access : DatabaseKind::Sqlite);
        CLightingDatabase database(CreateStoreConnection, place.ExecutablePath());
        QVERIFY(database.Connect() && database.IsSound());
        std::vector<tagLAMPHOUSEINFO> rows;
        tagLAMPHOUSEINFO kept;
        kept.LamphouseName = u"荧光灯"_s;
        QVERIFY(database.InsertLightSource(kept));
        tagLAMPHOUSEINFO added;
        added.LamphouseName = u"金卤灯"_s;

        const std::pair<const char*, std::function<bool()>> operations[] = {
            {"load", [&] { return database.LoadAllLightSources(rows); }},
            {"insert", [&] { return database.InsertLightSource(added); }},
            {"update", [&] { return database.UpdateLightSource(kept); }},
            {"delete", [&] { return database.DeleteLightSource(added.ID); }},
            {"submit",
             [&] {
                 SubmitScope submit(database);
                 const bool ran = database.UpdateLightSource(kept);
                 return submit.Finish() && ran;
             }},
            {"open",
             [&] {
                 database.Disconnect();
                 const bool isOpen = database.Connect();
                 database.IsSound();  // waits for the check
                 const int left = std::exchange(allocationsUntilFailure, 0);
                 const bool isUsable = database.Connect() && database.UpdateLightSource(kept);
                 allocationsUntilFailure = left;
                 return isOpen && isUsable;
             }},
        };
        for (const auto& [name, operation] : operations) {
            bool hasRun = false;
            const bool opens = name == "open"_L1;
            const int step = opens && isAccess ? 23 : 1;  // thousands of them check the file
            int number = 0;
            while (!hasRun) {
                kept.LuminousFlux = number += step;
                allocationsUntilFailure = number;
                bool ran = false;
                bool isThrown = false;
                try {
                    ran = operation();
                } catch (const std::bad_alloc&) {
                    isThrown = true;
                }
                const bool isReached = allocationsUntilFailure == 0;
                allocationsUntilFailure = 0;
                hasRun = !isReached;
                QVERIFY2(!isThrown,
                         qPrintable(u"%1, allocation %2"_s.arg(QString::fromLatin1(name)).arg(number)));
                QVERIFY2(ran || isReached, name);
                QVERIFY2(database.LoadAllLightSources(rows), name);
                const bool isThere = std::ranges::any_of(
                    rows, [&](const tagLAMPHOUSEINFO& row) { return row.LuminousFlux == number; });
                const bool writes = name == "update"_L1 || name == "submit"_L1;
                QVERIFY2(isThere || !(opens || (writes && ran)), name);  // what is open is usable
                QVERIFY2(rows.size() <= 2, name);
            }
            QVERIFY2(number > 5, name);  // some allocations have failed
            qInfo("cases: %d", number / step);
        }
        QCOMPARE(rows.size(), 1U);
        QVERIFY(database.Disconnect());
        QCOMPARE(CheckStoreFile(place.FilePath()), QStringList());
    }
};

QTEST_APPLESS_MAIN(TestMemoryFailures)
#include "test_memory_failures.moc"
