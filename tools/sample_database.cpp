#include "tools/sample_database.h"

#include <sqlite3.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <memory>

#include "tools/database_copy.h"
#include "tools/database_schema.h"
#include "tools/luminaire_photo.h"
#include "tools/sample_error.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

// Files made so far; what is not released goes away again.
class NewFiles {
public:
    NewFiles() = default;
    NewFiles(const NewFiles&) = delete;
    NewFiles& operator=(const NewFiles&) = delete;
    ~NewFiles() {
        for (const QString& file : m_files) {
            QFile::remove(file);
        }
    }
    // Creates an empty file or throws; never opens one that exists.
    void Create(QFile& file) {
        if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
            throw SampleError(u"%1: cannot be created: %2"_s.arg(file.fileName(), file.errorString()));
        }
        m_files += file.fileName();
    }
    void Release() { m_files.clear(); }

private:
    QStringList m_files;
};

class Database {
public:
    explicit Database(const QString& file) : m_file(file) {
        sqlite3* opened = nullptr;
        const int result =
            sqlite3_open_v2(file.toUtf8().constData(), &opened, SQLITE_OPEN_READWRITE, nullptr);
        m_handle.reset(opened);
        Check(result);
    }
    void Run(const char* statements) {
        Check(sqlite3_exec(m_handle.get(), statements, nullptr, nullptr, nullptr));
    }
    void Check(int result) const {
        if (result != SQLITE_OK && result != SQLITE_DONE) {
            const char* message = m_handle ? sqlite3_errmsg(m_handle.get()) : sqlite3_errstr(result);
            throw SampleError(u"%1: cannot be written: %2"_s.arg(m_file, QString::fromUtf8(message)));
        }
    }
    sqlite3* Handle() const { return m_handle.get(); }

private:
    struct Close {
        void operator()(sqlite3* handle) const { sqlite3_close(handle); }
    };
    QString m_file;
    std::unique_ptr<sqlite3, Close> m_handle;
};

// Inserts rows into one table; the values stand in the order of its columns.
class Insert {
public:
    Insert(const Database& database, const char* table, int columns) : m_database(database) {
        const QByteArray statement =
            "INSERT INTO "_ba + table + " VALUES (?" + ",?"_ba.repeated(columns - 1) + ")";
        sqlite3_stmt* prepared = nullptr;
        database.Check(sqlite3_prepare_v2(database.Handle(), statement.constData(), -1, &prepared, nullptr));
        m_statement.reset(prepared);
    }
    template <typename... Values>
    void Row(const Values&... values) {
        int position = 0;
        (m_database.Check(Bind(++position, values)), ...);
        m_database.Check(sqlite3_step(m_statement.get()));
        m_database.Check(sqlite3_reset(m_statement.get()));
    }

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    int Bind(int position, int value) { return sqlite3_bind_int(m_statement.get(), position, value); }
    int Bind(int position, double value) { return sqlite3_bind_double(m_statement.get(), position, value); }
    // The text outlives the step, so it need not be copied (no destructor).
    int Bind(int position, const QString& text) {
        return sqlite3_bind_text16(m_statement.get(), position, text.utf16(),
                                   static_cast<int>(text.size() * 2), nullptr);
    }

    const Database& m_database;
    std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
};

void InsertRows(Database& database, const SampleData& data) {
    Insert category(database, "光源类别", 2);
    for (const auto& r : data.Categories) {
        category.Row(r.ID, r.LamphouseType);
    }
    Insert source(database, "光源", 7);
    for (const auto& r : data.LightSources) {
        source.Row(r.ID, r.LamphouseType, r.LamphouseModel, r.LuminousFlux, r.LamphousePower, r.Factory,
                   r.LamphouseName);
    }
    Insert luminaire(database, "灯具", 15);
    for (const auto& r : data.Luminaires) {
        luminaire.Row(r.ID, r.LamphouseTypeID, r.LampName, r.LampModel, r.LuminaireEfficiency,
                      r.UtilizationFactorType, r.MaxLhAA, r.MaxLhBB, r.Factory, r.LamphouseCount,
                      r.BallastCount, r.BallastPower, r.DefaultLamphouse, r.UtilizationFactorFormat,
                      r.LampPhoto);
    }
    Insert factor(database, "利用系数", 7);
    int factorId = 0;
    for (const auto& r : data.Factors) {
        factor.Row(++factorId, r.LuminaireID, r.Pcc, r.Pw, r.Pf, r.RCR_RI, r.UtilizationFactor);
    }
    Insert requirement(database, "照度要求及功率密度", 10);
    for (const auto& r : data.Requirements) {
        requirement.Row(r.ID, r.Vocation, r.BuildingType, r.Location, r.ReferencePlane, r.ActualLPD,
                        r.ObjectiveLPD, r.IlluminanceStandard, r.UGR, r.Ra);
    }
}

void FillDatabase(const QString& file, const SampleData& data) {
    Database database(file);
    database.Run("BEGIN");
    database.Run(kDatabaseSchema);
    InsertRows(database, data);
    database.Run("COMMIT");
}

// Into a file that has just been created: the empty one built into the program.
void WriteEmptyAccessFile(QFile& target) {
    QFile empty(u":/quorvane/sample/empty.mdb"_s);
    const QByteArray bytes = empty.open(QIODevice::ReadOnly) ? empty.readAll() : QByteArray();
    if (target.write(bytes) != bytes.size() || !target.flush()) {
        throw SampleError(u"%1: cannot be written: %2"_s.arg(target.fileName(), target.errorString()));
    }
    target.close();
}

void CopyIntoAccessFile(const QString& from, QFile& target) {
    WriteEmptyAccessFile(target);
    const auto source = OpenDatabase(from);
    const auto copy = OpenDatabase(target.fileName());
    CopyDatabase(*source, *copy);
    source->Close();
    copy->Close();
}

QByteArray EncodedPhoto(const SamplePhoto& photo) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    const QByteArray format = photo.Extension.mid(1).toLatin1();
    if (!DrawLuminaire(photo.Drawing).save(&buffer, format.constData(), 90)) {
        throw SampleError(u"the photo %1 cannot be drawn as %2"_s.arg(photo.Drawing, photo.Extension));
    }
    return buffer.data();
}

void WritePhoto(const SamplePhoto& photo, const QString& folder, NewFiles& newFiles) {
    const QByteArray bytes = EncodedPhoto(photo);
    QFile file(folder + u'/' + QString::number(photo.LuminaireID) + photo.Extension);
    if (file.exists()) {
        // One that was drawn here before stays, so that a deleted database can be made again.
        if (!file.open(QIODevice::ReadOnly) || file.readAll() != bytes) {
            throw SampleError(u"%1: another photo stands there; move it away first"_s.arg(
                QDir::toNativeSeparators(file.fileName())));
        }
        return;
    }
    newFiles.Create(file);
    if (file.write(bytes) != bytes.size() || !file.flush()) {
        throw SampleError(u"%1: cannot be written: %2"_s.arg(file.fileName(), file.errorString()));
    }
}

// A journal left behind under the new file's name would be played back into it by the first reader.
void RequireFree(const QString& file) {
    for (const QString& name : {file, file + u"-journal"_s, file + u"-wal"_s, file + u"-redo"_s}) {
        const QFileInfo info(name);
        if (info.exists() || info.isSymLink()) {
            throw SampleError(
                u"%1: exists already and is not overwritten"_s.arg(QDir::toNativeSeparators(name)));
        }
    }
}

void MakeFolder(const QString& folder) {
    if (!QDir().mkpath(folder)) {
        throw SampleError(u"%1: the folder cannot be made"_s.arg(QDir::toNativeSeparators(folder)));
    }
}

}  // namespace

void WriteEmptyDatabase(const QString& file, DatabaseKind kind) {
    NewFiles newFiles;
    QFile target(file);
    newFiles.Create(target);
    if (kind == DatabaseKind::Access) {
        WriteEmptyAccessFile(target);
    } else {
        Database(file).Run(kDatabaseSchema);
    }
    newFiles.Release();
}

void WriteSampleDatabase(const SampleData& data, const QString& file, DatabaseKind kind) {
    const QFileInfo target(file);
    RequireFree(target.absoluteFilePath());
    MakeFolder(target.absolutePath());

    NewFiles newFiles;
    const QString stem = u"%1.%2"_s.arg(target.absoluteFilePath()).arg(QCoreApplication::applicationPid());
    QFile sqliteFile(stem + u".part"_s);
    newFiles.Create(sqliteFile);
    sqliteFile.close();
    FillDatabase(sqliteFile.fileName(), data);
    QFile accessFile(stem + u".access.part"_s);
    if (kind == DatabaseKind::Access) {
        newFiles.Create(accessFile);
        CopyIntoAccessFile(sqliteFile.fileName(), accessFile);
    }
    QFile& unfinished = kind == DatabaseKind::Access ? accessFile : sqliteFile;

    const QString photoFolder = target.absolutePath() + u"/LuminairePhotoLib"_s;
    if (!data.Photos.empty()) {
        MakeFolder(photoFolder);
    }
    for (const SamplePhoto& photo : data.Photos) {
        WritePhoto(photo, photoFolder, newFiles);
    }
    if (!unfinished.rename(target.absoluteFilePath())) {
        throw SampleError(
            u"%1: cannot be created: %2"_s.arg(target.absoluteFilePath(), unfinished.errorString()));
    }
    newFiles.Release();
    if (kind == DatabaseKind::Access) {
        sqliteFile.remove();
    }
}

}  // namespace quorvane
