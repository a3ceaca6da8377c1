#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include "model/async_reader.h"
#include "model/photo/photo_library.h"
#include "tests/support/endless_files.h"
#include "tests/support/files.h"
#include "tests/support/process_limits.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

// A library and what lies around it: "B/" is the base folder, "L/" the library under it. A file's content is
// its name there.
struct Disk {
    QString Path(QString name) const {
        return name.replace(u"L/"_s, u"B/Vexal/LuminairePhotoLib/"_s).replace(u"B/"_s, folder.path() + u'/');
    }
    void Write(const QStringList& names) const {
        for (const QString& name : names) {
            WriteFile(Path(name), name.toUtf8());
        }
    }
    // "name=content" of every file of the library, or only the name when that is its content.
    QString Library() const {
        QStringList files;
        for (const QString& name : QDir(Path(u"L/"_s)).entryList(QDir::Files | QDir::Hidden, QDir::Name)) {
            const QString content = Contents(Path(u"L/"_s) + name);
            files += content == u"L/"_s + name ? name : name + u'=' + content;
        }
        return files.join(u' ');
    }
    // As a page stores the photo of a luminaire whose record can be written.
    QString Store(int id, const QString& source) {
        const PhotoLibrary::PreparedPhoto prepared = library.Prepare(id, source);
        return prepared.problem != PhotoProblem::None || library.Commit(id, prepared) ? prepared.photo
                                                                                      : u"not placed"_s;
    }

    QTemporaryDir folder;
    PhotoLibrary library{folder.path()};
};

}  // namespace

class TestPhotoLibrary : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ReaderIsNeverUsedUp() {
        AsyncReader reader(2);
        int arrived = 0;
        for (int read = 0; read < 100; ++read) {
            reader.Run([] { return 1; }, [&](int one) { arrived += one; });
        }
        QTRY_COMPARE(arrived, 100);
    }

    void StoresUnderTheId_data() {
        QTest::addColumn<QStringList>("before");  // beside "7.jpg", which must stay
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("photo");    // its name in the library
        QTest::addColumn<QString>("library");  // afterwards
        const auto add = [](const char* what, const QString& before, const char* source, const char* photo,
                            const char* library) {
            QTest::newRow(what) << before.split(u' ', Qt::SkipEmptyParts) << QString::fromUtf8(source)
                                << QString::fromUtf8(photo) << QString::fromUtf8(library);
        };
        add("two points", {}, "B/图 片/a.b.Gif", "12.Gif", "12.Gif=B/图 片/a.b.Gif 7.jpg");
        add("nothing but an extension", {}, "B/.jpeg", "12.jpeg", "12.jpeg=B/.jpeg 7.jpg");
        add("in place of others", u"L/12.bmp L/12.JPG L/12.a.b"_s, "B/.JPG", "12.JPG", "12.JPG=B/.JPG 7.jpg");
        add("none", u"L/1.jpg L/112.jpg L/12 L/12-old.jpg L/120.jpg L/x12.jpg L/12.jpg L/12.GIF"_s, "", "",
            "1.jpg 112.jpg 12 12-old.jpg 120.jpg 7.jpg x12.jpg");
        add("its own", u"L/12.jpg L/12.bmp"_s, "L/12.jpg", "12.jpg", "12.bmp 12.jpg 7.jpg");
        add("its own, as stored", u"L/12.jpg L/12.bmp"_s, "\\Vexal\\LuminairePhotoLib\\12.jpg", "12.jpg",
            "12.bmp 12.jpg 7.jpg");
        add("its own, written in another way", u"L/12.jpg L/12.bmp"_s, "L/../LuminairePhotoLib/12.jpg",
            "12.jpg", "12.jpg 7.jpg");
        add("another's", {}, "\\Vexal\\LuminairePhotoLib\\7.jpg", "12.jpg", "12.jpg=L/7.jpg 7.jpg");
        // A copy that fails leaves the old picture, and no file that is none.
        const QString old = u"B/folder.jpg/picture B/blocked.png L/12.gif L/12.bmp.half"_s;
        const char* const kept = "12.bmp.half 12.gif 7.jpg";
        add("missing", old, "B/gone.jpg", "12.gif", kept);
        add("a folder", old, "B/folder.jpg", "12.gif", kept);
        add("no extension, but a point in the folder", old, "B/folder.jpg/picture", "12.gif", kept);
        add("leads out of the library", old, "B/x./../../../escaped", "12.gif", kept);
        add("missing, and no old one", {}, "\\no\\extension", "", "7.jpg");
        add("cannot be put in place", old + u" L/12.png/in_the_way"_s, "B/blocked.png", "12.gif", kept);
    }

    void StoresUnderTheId() {
        QFETCH(QStringList, before);
        QFETCH(QString, source);
        QFETCH(QString, photo);
        Disk disk;
        disk.Write(before + QStringList{u"L/7.jpg"_s, u"B/图 片/a.b.Gif"_s, u"B/.jpeg"_s, u"B/.JPG"_s});
        QCOMPARE(disk.Store(12, disk.Path(source)),
                 photo.isEmpty() ? QString() : u"\\Vexal\\LuminairePhotoLib\\"_s + photo);
        QTEST(disk.Library(), "library");
        QVERIFY(!QFile::exists(disk.Path(u"B/escaped"_s)));
    }

    void LinksAreNotFollowed() {
        Disk disk;
        disk.Write({u"B/new.jpg"_s, u"B/precious"_s, u"L/7.jpg"_s});
        QVERIFY(QFile::link(disk.Path(u"B/precious"_s), disk.Path(u"L/12.jpg"_s)));
        QCOMPARE(disk.library.Prepare(12, disk.Path(u"B/new.jpg"_s)).problem,
                 PhotoProblem::UnwritableLibrary);
        QCOMPARE(disk.library.Prepare(7, disk.Path(u"L/12.jpg"_s)).problem, PhotoProblem::UnreadableSource);
        QVERIFY(disk.library.CopyPicture(7, disk.Path(u"L/12.jpg"_s)).file.isEmpty());
        disk.library.DeletePhotos(12);
        QCOMPARE(disk.Library(), u"7.jpg"_s);
        QVERIFY(QFile::exists(disk.Path(u"B/precious"_s)));
        QVERIFY(QFile::link(disk.Path(u"B/Vexal"_s), disk.Path(u"B/link"_s)));
        QVERIFY(!disk.library.CopyPicture(12, disk.Path(u"B/link/LuminairePhotoLib/7.jpg"_s)).file.isEmpty());

        QVERIFY(QFile::rename(disk.Path(u"L/"_s).chopped(1), disk.Path(u"B/elsewhere"_s)));
        QVERIFY(QFile::link(disk.Path(u"B/elsewhere"_s), disk.Path(u"L/"_s).chopped(1)));
        QCOMPARE(disk.library.Prepare(12, disk.Path(u"B/new.jpg"_s)).problem, PhotoProblem::LinkedLibrary);
        QVERIFY(!disk.library.Commit(7, disk.library.Prepare(7, {})));
        disk.library.DeletePhotos(7);
        QCOMPARE(disk.Library(), u"7.jpg"_s);
        QVERIFY(!disk.library.CopyPicture(12, disk.Path(u"L/7.jpg"_s)).file.isEmpty());
    }

    void TakesRegularFilesUpToALimit() {
        Disk disk;
        QFile large(disk.Path(u"B/large.jpg"_s));
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(64 << 20));
        QCOMPARE(disk.library.Prepare(12, large.fileName()).problem, PhotoProblem::None);
        QVERIFY(large.resize((64 << 20) + 1));
        QCOMPARE(disk.library.Prepare(12, large.fileName()).problem, PhotoProblem::UnreadableSource);
        const QStringList endless = EndlessFiles(disk.Path(u"B/pipe.jpg"_s));
        QCOMPARE(endless.size(), 2);
        for (const QString& source : endless) {
            QCOMPARE(disk.library.Prepare(12, source).problem, PhotoProblem::UnreadableSource);
        }
    }

    void AFullDiskTakesNoPartOfAPhoto() {
        const Disk disk;
        WriteFile(disk.Path(u"B/a.jpg"_s), QByteArray(5000, 'a'));
        const FullDiskScope full;
        QCOMPARE(disk.library.Prepare(12, disk.Path(u"B/a.jpg"_s)).problem, PhotoProblem::UnwritableLibrary);
    }

    // The folder is read only once: what was placed meanwhile is known, what was deleted is not.
    void NothingChangesBeforeItIsPlaced() {
        Disk disk;
        disk.Write({u"L/12.bmp"_s, u"L/7.bmp"_s, u"B/.JPG"_s, u"B/b.bmp"_s});
        const PhotoLibrary::CachedListing listing(disk.library);
        QCOMPARE(disk.library.Prepare(12, disk.Path(u"B/b.bmp"_s)).photo,
                 u"\\Vexal\\LuminairePhotoLib\\12.bmp"_s);
        QCOMPARE(disk.library.Prepare(7, {}).photo, QString());
        QCOMPARE(disk.Library(), u"12.bmp 7.bmp"_s);
        {
            const PhotoLibrary::PreparedPhoto unplaceable = disk.library.Prepare(12, disk.Path(u"B/.JPG"_s));
            QVERIFY(QDir().mkdir(disk.Path(u"L/12.JPG"_s)));
            QVERIFY(!disk.library.Commit(12, unplaceable));
            QCOMPARE(unplaceable.fallback, u"\\Vexal\\LuminairePhotoLib\\12.bmp"_s);
            QVERIFY(QDir().rmdir(disk.Path(u"L/12.JPG"_s)));
        }
        QCOMPARE(disk.Library(), u"12.bmp 7.bmp"_s);
        disk.Store(12, disk.Path(u"B/.JPG"_s));
        QCOMPARE(disk.Library(), u"12.JPG=B/.JPG 7.bmp"_s);
        disk.library.DeletePhotos(12);
        QCOMPARE(disk.Library(), u"7.bmp"_s);
    }

    void KeepsTheLibrarysPictures() {
        Disk disk;
        disk.Write({u"L/12.bmp"_s, u"L/7.bmp"_s, u"B/a.jpg"_s});
        for (const QString& none : {u"B/a.jpg"_s, u"L/12.bmp"_s, u"\\Vexal\\LuminairePhotoLib\\12.bmp"_s,
                                    u"\\Vexal\\LuminairePhotoLib\\8.bmp"_s, QString()}) {
            QVERIFY(disk.library.CopyPicture(12, disk.Path(none)).file.isEmpty());
        }
        PhotoLibrary::PictureCopy seven =
            disk.library.CopyPicture(12, u"\\Vexal\\LuminairePhotoLib\\7.bmp"_s);
        const PhotoLibrary::PictureCopy twelve = disk.library.CopyPicture(7, disk.Path(u"L/12.bmp"_s));
        disk.Store(7, twelve.file);
        disk.Store(12, seven.file);
        QCOMPARE(disk.Library(), u"12.bmp=L/7.bmp 7.bmp=L/12.bmp"_s);
        const QString file = seven.file;
        seven = {};
        QVERIFY(!QFile::exists(file) && QFile::exists(twelve.file));
    }
};

QTEST_GUILESS_MAIN(TestPhotoLibrary)
#include "test_photo_library.moc"
