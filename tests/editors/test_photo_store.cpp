#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <utility>

#include "editors/photo_store.h"

using namespace quorvane;

class TestPhotoStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void StoresUnderTheId();
    void NewPictureReplacesTheOldOne();
    void OwnPictureIsNotCopied();
    void PictureOfAnotherLuminaireIsCopied();
    void FailedCopyLeavesTheOldPicture_data();
    void FailedCopyLeavesTheOldPicture();
    void FailedFirstCopyKeepsThePathItWouldHave();
    void DeletesTheFilesOfOneIdOnly();
    void ReplacedPictureOutlivesTheStore();

private:
    void Write(const QString& path, const QByteArray& content) const;
    QByteArray Library(const QString& name) const;
    // As a page stores the photo of a luminaire whose record can be written.
    QString Store(int id, const QString& source) const {
        const PhotoStore::StoredPhoto stored = m_store->Store(id, source);
        if (stored.replaces) {
            m_store->DeleteOthers(id, stored.photo);
        }
        return stored.photo;
    }
    QStringList LibraryNames() const { return QDir(m_library).entryList(QDir::Files, QDir::Name); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_library;
    QString m_source;
    std::unique_ptr<PhotoStore> m_store;
};

void TestPhotoStore::init() {
    m_folder = std::make_unique<QTemporaryDir>();
    m_library = m_folder->filePath(u"Vexal/LuminairePhotoLib/"_qs);
    m_source = m_folder->filePath(u"图 片/new.picture.JPG"_qs);
    QVERIFY(QDir().mkpath(m_folder->filePath(u"图 片"_qs)));
    Write(m_source, "new");
    m_store = std::make_unique<PhotoStore>(m_folder->path());
}

void TestPhotoStore::Write(const QString& path, const QByteArray& content) const {
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray TestPhotoStore::Library(const QString& name) const {
    QFile file(m_library + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

void TestPhotoStore::StoresUnderTheId() {
    const QByteArray content(3'000'000, 'x');
    const std::pair<QString, QString> cases[] = {
        {u"a.b.Gif"_qs, u"12.Gif"_qs}, {u".jpeg"_qs, u"12.jpeg"_qs}, {u" 灯 具 .jpg"_qs, u"12.jpg"_qs}};
    for (const auto& [name, stored] : cases) {
        Write(m_folder->filePath(name), content);
        QCOMPARE(Store(12, m_folder->filePath(name)), u"\\Vexal\\LuminairePhotoLib\\"_qs + stored);
        QCOMPARE(LibraryNames(), QStringList{stored});
        QVERIFY(Library(stored) == content);
    }
}

void TestPhotoStore::NewPictureReplacesTheOldOne() {
    Write(m_library + u"12.bmp"_qs, "old");
    Write(m_library + u"12.JPG"_qs, "older");
    QCOMPARE(Store(12, m_source), u"\\Vexal\\LuminairePhotoLib\\12.JPG"_qs);
    QCOMPARE(LibraryNames(), QStringList{u"12.JPG"_qs});
    QCOMPARE(Library(u"12.JPG"_qs), QByteArray("new"));
}

void TestPhotoStore::OwnPictureIsNotCopied() {
    const QString relative = u"\\Vexal\\LuminairePhotoLib\\12.jpg"_qs;
    Write(m_library + u"12.jpg"_qs, "own");
    Write(m_library + u"12.bmp"_qs, "other");
    QCOMPARE(Store(12, relative), relative);
    QCOMPARE(Store(12, m_store->FilePath(relative)), relative);
    QCOMPARE(LibraryNames().size(), 2);
    // Another way to write the same file: it survives being copied onto itself.
    QCOMPARE(Store(12, m_folder->filePath(u"Vexal/../Vexal/LuminairePhotoLib/12.jpg"_qs)), relative);
    QCOMPARE(LibraryNames(), QStringList{u"12.jpg"_qs});
    QCOMPARE(Library(u"12.jpg"_qs), QByteArray("own"));
}

void TestPhotoStore::PictureOfAnotherLuminaireIsCopied() {
    Write(m_library + u"7.jpg"_qs, "seven");
    QCOMPARE(Store(12, u"\\Vexal\\LuminairePhotoLib\\7.jpg"_qs), u"\\Vexal\\LuminairePhotoLib\\12.jpg"_qs);
    m_store->Delete(7);
    QCOMPARE(LibraryNames(), QStringList{u"12.jpg"_qs});
    QCOMPARE(Library(u"12.jpg"_qs), QByteArray("seven"));
}

void TestPhotoStore::FailedCopyLeavesTheOldPicture_data() {
    QTest::addColumn<QString>("source");
    QTest::newRow("missing") << u"gone.jpg"_qs;
    QTest::newRow("a folder") << u"folder.jpg"_qs;
    QTest::newRow("no extension, but a point in the folder") << u"folder.jpg/picture"_qs;
    QTest::newRow("leads out of the library") << u"x./../../../escaped"_qs;
    QTest::newRow("cannot be put in place") << u"图 片/blocked.png"_qs;
}

void TestPhotoStore::FailedCopyLeavesTheOldPicture() {
    QFETCH(QString, source);
    Write(m_folder->filePath(u"folder.jpg/picture"_qs), "unnamed");
    Write(m_folder->filePath(u"图 片/blocked.png"_qs), "blocked");
    Write(m_library + u"12.gif"_qs, "old");
    Write(m_library + u"12.jpg.half"_qs, "left behind");
    QVERIFY(QDir(m_library).mkpath(u"12.png/in the way"_qs));
    QCOMPARE(Store(12, m_folder->filePath(source)), u"\\Vexal\\LuminairePhotoLib\\12.gif"_qs);
    QCOMPARE(LibraryNames(), (QStringList{u"12.gif"_qs, u"12.jpg.half"_qs}));
    QCOMPARE(Library(u"12.gif"_qs), QByteArray("old"));
    QVERIFY(!QFile::exists(m_folder->filePath(u"escaped"_qs)));
}

void TestPhotoStore::FailedFirstCopyKeepsThePathItWouldHave() {
    QCOMPARE(Store(12, u"\\Vexal\\LuminairePhotoLib\\7.jpg"_qs), u"\\Vexal\\LuminairePhotoLib\\12.jpg"_qs);
    QCOMPARE(Store(12, u"no extension"_qs), u"\\Vexal\\LuminairePhotoLib\\12no extension"_qs);
    QCOMPARE(Store(12, u"\\no\\extension"_qs), QString());
}

void TestPhotoStore::DeletesTheFilesOfOneIdOnly() {
    const QStringList others{u"1.jpg"_qs,   u"112.jpg"_qs, u"12"_qs,     u"12-old.jpg"_qs,
                             u"120.jpg"_qs, u"2.jpg"_qs,   u"x12.jpg"_qs};
    for (const QString& name : others + QStringList{u"12.jpg"_qs, u"12.GIF"_qs, u"12.a.b"_qs}) {
        Write(m_library + name, "x");
    }
    QCOMPARE(Store(12, {}), QString());
    QCOMPARE(LibraryNames(), others);
}

// Also when the folder is read only once: what was copied meanwhile is known, what was deleted is not.
void TestPhotoStore::ReplacedPictureOutlivesTheStore() {
    Write(m_library + u"12.bmp"_qs, "old");
    Write(m_library + u"7.bmp"_qs, "seven");
    const PhotoStore::OneListing listing(*m_store);
    QCOMPARE(m_store->Store(12, m_source).photo, u"\\Vexal\\LuminairePhotoLib\\12.JPG"_qs);
    QCOMPARE(m_store->Store(7, {}).photo, QString());
    QCOMPARE(LibraryNames(), QStringList({u"12.JPG"_qs, u"12.bmp"_qs, u"7.bmp"_qs}));
    m_store->DeleteOthers(12, u"\\Vexal\\LuminairePhotoLib\\12.bmp"_qs);
    QCOMPARE(LibraryNames(), QStringList({u"12.bmp"_qs, u"7.bmp"_qs}));
    m_store->Delete(12);
    QCOMPARE(LibraryNames(), QStringList(u"7.bmp"_qs));
}

QTEST_GUILESS_MAIN(TestPhotoStore)
#include "test_photo_store.moc"
