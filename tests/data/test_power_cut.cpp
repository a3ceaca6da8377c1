// A power cut, or the end of the process, at every moment of a submit. A power cut loses, keeps or tears by
// chance what the disk had not confirmed. What the next opening finds must be whole and must hold every
// statement that had been promised: those that were finished when the process ends, those that the disk had
// confirmed when the power fails.

#include <sqlite3.h>

#include <QDir>
#include <QMap>
#include <QRandomGenerator>
#include <QSet>
#include <QTest>
#include <map>
#include <optional>

#include "data/lighting_database.h"
#include "data/store/store_factory.h"
#include "tests/support/temporary_lighting_database.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

constexpr int kSectorSize = 512;

struct Step {
    enum Kind { Write, Truncate, Sync, Delete, Finish, Promise } kind;
    QString path;
    qint64 offset = 0;  // for Delete: whether the folder is synced; last: the number of statements
    QByteArray bytes;
};

using Files = QMap<QString, QByteArray>;
enum Fate { AllLost, AllKept, EachByChance };

// The files as a disk may hold them after a power cut.
class Disk {
public:
    explicit Disk(Files files) : m_durable(std::move(files)) {}

    void Run(const Step& step) {
        bool isFolderSynced = step.kind == Step::Delete && step.offset != 0;
        if (step.kind == Step::Sync) {
            Confirm([&](const Step& pending) { return pending.path == step.path; });
            isFolderSynced = !m_synced.contains(step.path);  // with the first sync of a new file
            m_synced.insert(step.path);
        } else if (step.kind < Step::Finish) {
            m_pending.append(step);
        }
        if (step.kind == Step::Delete) {
            m_synced.remove(step.path);
        }
        if (isFolderSynced) {
            Confirm([](const Step& pending) { return pending.kind == Step::Delete; });
        }
    }
    // Decides what becomes of the steps that no sync has confirmed.
    Files CutPower(Fate fate, QRandomGenerator& chance) {
        const auto isKept = [&] {
            return fate == AllKept || (fate == EachByChance && chance.bounded(2) == 0);
        };
        for (const Step& step : std::exchange(m_pending, {})) {
            if (step.kind != Step::Write && isKept()) {
                Apply(step);
            }
            for (qint64 done = 0; done < step.bytes.size(); done += kSectorSize) {
                if (isKept()) {
                    Apply({Step::Write, step.path, step.offset + done, step.bytes.mid(done, kSectorSize)});
                }
            }
        }
        return m_durable;
    }

private:
    template <typename Predicate>
    void Confirm(Predicate isConfirmed) {
        QList<Step> left;
        for (const Step& step : std::exchange(m_pending, {})) {
            isConfirmed(step) ? Apply(step) : left.append(step);
        }
        m_pending = left;
    }
    void Apply(const Step& step) {
        QByteArray& file = m_durable[step.path];
        if (step.kind == Step::Delete) {
            m_durable.remove(step.path);
        } else if (step.kind == Step::Truncate) {
            file.resize(step.offset);
        } else {
            file.append(std::max<qint64>(step.offset + step.bytes.size() - file.size(), 0), '\0');
            file.replace(step.offset, step.bytes.size(), step.bytes);
        }
    }

    Files m_durable;
    QList<Step> m_pending;
    QSet<QString> m_synced;
};

// The file system under SQLite, but it writes down what changes the disk, and offers no shared memory.
struct Recorder : sqlite3_vfs {
    static Recorder& Instance() {
        static Recorder recorder;
        return recorder;
    }
    Recorder() : sqlite3_vfs(*sqlite3_vfs_find(nullptr)), real(sqlite3_vfs_find(nullptr)) {
        zName = "recorder";
        xOpen = [](sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* outFlags) {
            Recorder& recorder = Instance();
            recorder.paths[file] = QString::fromUtf8(path);
            const int result = recorder.real->xOpen(recorder.real, path, file, flags, outFlags);
            if (file->pMethods != nullptr) {
                recorder.realMethods = file->pMethods;  // writing is the same for all kinds of file
                file->pMethods = recorder.Changed(file->pMethods);
            }
            return result;
        };
        xDelete = [](sqlite3_vfs*, const char* path, int syncFolder) {
            Instance().steps.append({Step::Delete, QString::fromUtf8(path), syncFolder, {}});
            return Instance().real->xDelete(Instance().real, path, syncFolder);
        };
        sqlite3_vfs_register(this, 1);
    }
    static void Note(sqlite3_file* file, Step::Kind kind, qint64 offset = 0, const QByteArray& bytes = {}) {
        Instance().steps.append({kind, Instance().paths[file], offset, bytes});
    }
    const sqlite3_io_methods* Changed(const sqlite3_io_methods* given) {
        sqlite3_io_methods& methods = changed.try_emplace(given, *given).first->second;
        methods.iVersion = 1;
        methods.xWrite = [](sqlite3_file* file, const void* from, int size, sqlite3_int64 offset) {
            Note(file, Step::Write, offset, QByteArray(static_cast<const char*>(from), size));
            return Instance().realMethods->xWrite(file, from, size, offset);
        };
        methods.xTruncate = [](sqlite3_file* file, sqlite3_int64 size) {
            Note(file, Step::Truncate, size);
            return Instance().realMethods->xTruncate(file, size);
        };
        methods.xSync = [](sqlite3_file* file, int /*flags*/) {
            Note(file, Step::Sync);
            return SQLITE_OK;
        };
        methods.xSectorSize = [](sqlite3_file*) { return kSectorSize; };
        methods.xDeviceCharacteristics = [](sqlite3_file*) { return 0; };
        return &methods;
    }

    sqlite3_vfs* real;
    const sqlite3_io_methods* realMethods = nullptr;
    std::map<const sqlite3_io_methods*, sqlite3_io_methods> changed;
    QMap<sqlite3_file*, QString> paths;
    QList<Step> steps;
};

QStringList PathsIn(const QString& folder) {
    QStringList paths;
    for (const QFileInfo& info : QDir(folder).entryInfoList(QDir::Files)) {
        paths += info.filePath();
    }
    return paths;
}

}  // namespace

class TestPowerCut : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void LosesNoPromisedStatement() {
        m_file.Raw().Execute(u"insert into 光源 values (1, 1, '', 0, 0, '', '')"_s);
        const Files before{{m_file.FilePath(), m_file.Bytes()}};
        QList<Step>& noted = Recorder::Instance().steps;
        QVERIFY(m_database.Connect());
        for (const int submitted : {12, 0, 7}) {
            for (const int count : {1, 1, submitted}) {
                std::optional<SubmitScope> submit;
                if (count == submitted) {
                    submit.emplace(m_database);
                }
                for (int row = 0; row < count; ++row) {
                    const CString factory =
                        u"x"_s.repeated(qsizetype{3000} * (++m_written % 4));  // up to some pages
                    tagLAMPHOUSEINFO record{0, 0, u""_s, double(m_written), 0, factory, u""_s};
                    QVERIFY(m_database.InsertLightSource(record));
                    noted.append({Step::Finish, {}, m_written, {}});
                }
                QVERIFY(!submit || submit->Finish());
                noted.append({Step::Promise, {}, m_written, {}});
            }
            QCOMPARE(PathsIn(m_file.DatabaseFolder()).size(), 1);
        }
        QVERIFY(m_database.Disconnect());

        const QList<Step> steps = std::exchange(noted, {});
        qint64 finished = 0;
        qint64 promised = 0;
        for (qsizetype end = 0; end <= steps.size(); ++end) {
            for (const Fate fate : {AllLost, AllKept, EachByChance, EachByChance}) {
                Disk disk(before);
                std::for_each(steps.begin(), steps.begin() + end, [&](const Step& step) { disk.Run(step); });
                Check(disk.CutPower(fate, m_chance), fate == AllKept ? finished : promised);
                if (QTest::currentTestFailed()) {
                    QFAIL(qPrintable(u"power cut after step %1 of %2"_s.arg(end).arg(steps.size())));
                }
            }
            if (end < steps.size() && steps[end].kind >= Step::Finish) {
                (steps[end].kind == Step::Finish ? finished : promised) = steps[end].offset;
            }
        }
    }

private:
    void Check(const Files& files, qint64 promised) {
        for (const QString& path : PathsIn(m_file.DatabaseFolder())) {
            QVERIFY(QFile::remove(path));
        }
        for (auto entry = files.begin(); entry != files.end(); ++entry) {
            QFile file(entry.key());
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(entry.value()) == entry.value().size());
        }
        CLightingDatabase database(CreateStoreConnection, m_file.ExecutablePath());
        QVERIFY(database.Connect());
        std::vector<tagLAMPHOUSEINFO> rows;
        QVERIFY(database.LoadAllLightSources(rows));
        QVERIFY(qint64(rows.size()) - 1 >= promised);
        std::ranges::sort(rows, {}, &tagLAMPHOUSEINFO::ID);
        for (std::size_t row = 0; row < rows.size(); ++row) {
            QCOMPARE(rows[row].LuminousFlux, double(row));  // a beginning of the statements
        }
        QVERIFY(database.UpdateLightSource(rows[0]) && database.Disconnect());
        QCOMPARE(PathsIn(m_file.DatabaseFolder()).size(), 1);
        QCOMPARE(m_file.Raw().Rows(u"PRAGMA integrity_check"_s), QStringList{u"'ok'"_s});
    }

    TemporaryLightingDatabase m_file;
    CLightingDatabase m_database{CreateStoreConnection, m_file.ExecutablePath()};
    QRandomGenerator m_chance{20260101};
    int m_written = 0;
};

QTEST_GUILESS_MAIN(TestPowerCut)
#include "test_power_cut.moc"
