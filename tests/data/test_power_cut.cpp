// A power cut at every moment of a submit: what the disk had not confirmed is lost, kept or torn by chance.
// What the next opening finds must be whole and must hold every statement that had been promised.

#include <sqlite3.h>

#include <QDir>
#include <QMap>
#include <QRandomGenerator>
#include <QTest>

#include "data/lighting_database.h"
#include "data/store/store_factory.h"
#include "tests/support/temporary_lighting_database.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

constexpr int kSectorSize = 512;

struct Step {
    enum Kind { Write, Truncate, Sync, Delete, Promise } kind;
    QString path;
    qint64 offset = 0;  // for Delete: whether the folder is synced; for Promise: how many statements
    QByteArray bytes;
};

// The files as a disk may hold them after a power cut.
class Disk {
public:
    explicit Disk(QMap<QString, QByteArray> files) : m_durable(std::move(files)) {}

    void Run(const Step& step) {
        if (step.kind == Step::Sync) {
            RunPending([&](const Step& pending) { return pending.path == step.path; });
            // The first sync of a new file syncs its folder as well.
            if (!m_synced.contains(step.path)) {
                RunPending([](const Step& pending) { return pending.kind == Step::Delete; });
                m_synced.append(step.path);
            }
        } else if (step.kind == Step::Delete) {
            m_synced.removeAll(step.path);
            m_pending.append(step);
            if (step.offset != 0) {
                RunPending([](const Step& pending) { return pending.kind == Step::Delete; });
            }
        } else if (step.kind != Step::Promise) {
            m_pending.append(step);
        }
    }
    // Decides by chance what becomes of the steps that no sync has confirmed.
    QMap<QString, QByteArray> CutPower(QRandomGenerator& chance) {
        const int mood = chance.bounded(3);  // all lost, all kept, each for itself
        for (const Step& step : std::exchange(m_pending, {})) {
            for (qint64 done = 0; step.kind == Step::Write && mood == 2 && done < step.bytes.size();
                 done += kSectorSize) {
                if (chance.bounded(2) == 0) {
                    Apply({Step::Write, step.path, step.offset + done, step.bytes.mid(done, kSectorSize)});
                }
            }
            if (mood == 1 || (mood == 2 && step.kind != Step::Write && chance.bounded(2) == 0)) {
                Apply(step);
            }
        }
        return m_durable;
    }

private:
    template <typename Predicate>
    void RunPending(Predicate isConfirmed) {
        QList<Step> left;
        for (const Step& step : std::exchange(m_pending, {})) {
            isConfirmed(step) ? Apply(step) : left.append(step);
        }
        m_pending = left;
    }
    void Apply(const Step& step) {
        if (step.kind == Step::Delete) {
            m_durable.remove(step.path);
            return;
        }
        QByteArray& file = m_durable[step.path];
        if (step.kind == Step::Truncate) {
            file.resize(step.offset);
        } else {
            file.append(std::max<qint64>(step.offset + step.bytes.size() - file.size(), 0), '\0');
            file.replace(step.offset, step.bytes.size(), step.bytes);
        }
    }

    QMap<QString, QByteArray> m_durable;
    QList<Step> m_pending;
    QStringList m_synced;
};

// A file system under SQLite that writes down what is asked of it. It offers no shared memory.
struct Recorder : sqlite3_vfs {
    struct File : sqlite3_file {
        const char* path;
        sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
    };
    static File* At(sqlite3_file* file) { return static_cast<File*>(file); }

    static Recorder& Instance() {
        static Recorder recorder;
        return recorder;
    }
    Recorder() : sqlite3_vfs(*sqlite3_vfs_find(nullptr)), real(sqlite3_vfs_find(nullptr)) {
        zName = "recorder";
        szOsFile = static_cast<int>(sizeof(File)) + real->szOsFile;
        xOpen = [](sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* outFlags) {
            static const sqlite3_io_methods methods = Methods();
            At(file)->path = path;
            sqlite3_vfs* vfs = Instance().real;
            const int result = vfs->xOpen(vfs, path, At(file)->Real(), flags, outFlags);
            file->pMethods = At(file)->Real()->pMethods == nullptr ? nullptr : &methods;
            return result;
        };
        xDelete = [](sqlite3_vfs*, const char* path, int syncFolder) {
            Instance().steps.append({Step::Delete, QString::fromUtf8(path), syncFolder, {}});
            return Instance().real->xDelete(Instance().real, path, syncFolder);
        };
        sqlite3_vfs_register(this, 1);
    }
    static void Note(sqlite3_file* file, Step::Kind kind, qint64 offset = 0, const QByteArray& bytes = {}) {
        Instance().steps.append({kind, QString::fromUtf8(At(file)->path), offset, bytes});
    }
    static sqlite3_io_methods Methods() {
        using F = sqlite3_file;
        sqlite3_io_methods methods{};
        methods.iVersion = 1;
        methods.xClose = [](F* f) { return At(f)->Real()->pMethods->xClose(At(f)->Real()); };
        methods.xRead = [](F* f, void* to, int size, sqlite3_int64 offset) {
            return At(f)->Real()->pMethods->xRead(At(f)->Real(), to, size, offset);
        };
        methods.xWrite = [](F* f, const void* from, int size, sqlite3_int64 offset) {
            Note(f, Step::Write, offset, QByteArray(static_cast<const char*>(from), size));
            return At(f)->Real()->pMethods->xWrite(At(f)->Real(), from, size, offset);
        };
        methods.xTruncate = [](F* f, sqlite3_int64 size) {
            Note(f, Step::Truncate, size);
            return At(f)->Real()->pMethods->xTruncate(At(f)->Real(), size);
        };
        methods.xSync = [](F* f, int /*flags*/) {
            Note(f, Step::Sync);
            return SQLITE_OK;
        };
        methods.xFileSize = [](F* f, sqlite3_int64* size) {
            return At(f)->Real()->pMethods->xFileSize(At(f)->Real(), size);
        };
        methods.xLock = [](F* f, int lock) { return At(f)->Real()->pMethods->xLock(At(f)->Real(), lock); };
        methods.xUnlock = [](F* f, int lock) {
            return At(f)->Real()->pMethods->xUnlock(At(f)->Real(), lock);
        };
        methods.xCheckReservedLock = [](F* f, int* held) {
            return At(f)->Real()->pMethods->xCheckReservedLock(At(f)->Real(), held);
        };
        methods.xFileControl = [](F*, int, void*) { return SQLITE_NOTFOUND; };
        methods.xSectorSize = [](F*) { return kSectorSize; };
        methods.xDeviceCharacteristics = [](F*) { return 0; };
        return methods;
    }

    sqlite3_vfs* real;
    QList<Step> steps;
};

QMap<QString, QByteArray> FilesIn(const QString& folder) {
    QMap<QString, QByteArray> files;
    for (const QFileInfo& info : QDir(folder).entryInfoList(QDir::Files)) {
        QFile file(info.filePath());
        files[info.filePath()] = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    return files;
}

}  // namespace

class TestPowerCut : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void LosesNoPromisedStatement() {
        const auto insert = [this](int count) {
            for (int row = 0; row < count; ++row) {
                tagLAMPHOUSEINFO record;
                record.LuminousFlux = ++m_written;
                record.Factory =
                    u"x"_s.repeated(qsizetype{3000} * (m_written % 4));  // up to some pages a row
                QVERIFY(m_database.InsertLightSource(record));
            }
        };
        m_file.Raw().Execute(u"insert into 光源 values (1, 1, '', 0, 0, '', '')"_s);
        const QMap<QString, QByteArray> before = FilesIn(m_file.DatabaseFolder());
        Recorder::Instance();
        QVERIFY(m_database.Connect());
        for (const int submitted : {12, 0, 7}) {
            for (int alone = 0; alone < 2; ++alone) {
                insert(1);
                Promise();
            }
            SubmitScope submit(m_database);
            insert(submitted);
            QVERIFY(submit.Finish());
            Promise();
            QCOMPARE(QDir(m_file.DatabaseFolder()).entryList(QDir::Files).size(), 1);
        }
        QVERIFY(m_database.Disconnect());

        const QList<Step> steps = std::exchange(Recorder::Instance().steps, {});
        qint64 promised = 0;
        for (qsizetype end = 0; end <= steps.size(); ++end) {
            for (int chance = 0; chance < 4; ++chance) {
                Disk disk(before);
                std::for_each(steps.begin(), steps.begin() + end, [&](const Step& step) { disk.Run(step); });
                Check(disk.CutPower(m_chance), promised);
                if (QTest::currentTestFailed()) {
                    QFAIL(qPrintable(u"power cut after step %1 of %2"_s.arg(end).arg(steps.size())));
                }
            }
            promised = end < steps.size() && steps[end].kind == Step::Promise ? steps[end].offset : promised;
        }
    }

private:
    void Promise() { Recorder::Instance().steps.append({Step::Promise, {}, m_written, {}}); }

    void Check(const QMap<QString, QByteArray>& files, qint64 promised) {
        QDir folder(m_file.DatabaseFolder());
        for (const QString& name : folder.entryList(QDir::Files)) {
            QVERIFY(folder.remove(name));
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
        std::sort(rows.begin(), rows.end(), [](const auto& l, const auto& r) { return l.ID < r.ID; });
        for (std::size_t row = 0; row < rows.size(); ++row) {
            QCOMPARE(rows[row].LuminousFlux, double(row));  // a beginning of the statements
        }
        QVERIFY(database.Disconnect());
        QCOMPARE(m_file.Raw().Rows(u"PRAGMA integrity_check"_s), QStringList{u"'ok'"_s});
    }

    TemporaryLightingDatabase m_file;
    CLightingDatabase m_database{CreateStoreConnection, m_file.ExecutablePath()};
    QRandomGenerator m_chance{20260101};
    int m_written = 0;
};

QTEST_GUILESS_MAIN(TestPowerCut)
#include "test_power_cut.moc"
