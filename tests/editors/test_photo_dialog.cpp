#include <QAbstractItemModelTester>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>
#include <memory>
#include <semaphore>

#include "editors/photo/directory_tree.h"
#include "editors/photo/drives.h"
#include "editors/photo/photo_dialog.h"
#include "editors/photo/picture_preview.h"
#include "model/photo/photo_library.h"
#include "tests/support/endless_files.h"
#include "tests/support/message_answers.h"
#include "tests/support/process_limits.h"
#include "widgets/dialog_template.h"
#include "widgets/ease_combo_box.h"

using namespace Qt::Literals::StringLiterals;

using namespace quorvane;
using namespace std::chrono_literals;

namespace {

enum Control { Ok = 1, Cancel, TreeControl = 1001, Preview, Drives, Previous, Next, PathEdit = 1025, Clear };

// A GIF, which cannot be written, of one pixel, or a picture in another format.
QByteArray Encoded(const char* format) {
    if (qstrcmp(format, "gif") == 0) {
        return QByteArray::fromHex("47494638396101000100800000ff00000000002c00000000010001000002024401003b");
    }
    QImage image(120, 80, QImage::Format_RGB32);
    image.fill(Qt::red);
    QBuffer buffer;
    image.save(&buffer, format, 90);
    return buffer.data();
}

// A tree on a machine whose drives and pictures the test chooses.
class Tree : public CDirTreeCtrl {
public:
    Tree() : CDirTreeCtrl(nullptr) {
        new QAbstractItemModelTester(model(), QAbstractItemModelTester::FailureReportingMode::QtTest, this);
        resize(300, 400);
        show();
    }
    QStringList drives = LogicalDrives();
    bool hasIcons = true;
    // A folder with "dead" in its path answers only when it is let go.
    const std::shared_ptr<std::counting_semaphore<>> letGo = std::make_shared<std::counting_semaphore<>>(0);

protected:
    QStringList Drives() const override { return drives; }
    FolderReader Reader() const override {
        return [gate = letGo](const QString& folder, const TreeContent& wanted) {
            if (folder.contains(u"dead"_s)) {
                gate->acquire();
            }
            return ReadFolder(folder, wanted);
        };
    }
    QIcon SystemIcon(QFileIconProvider::IconType type) const override {
        return hasIcons ? CDirTreeCtrl::SystemIcon(type) : QIcon();
    }
};

}  // namespace

class TestPhotoDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_folder = std::make_unique<QTemporaryDir>();
        m_tree = std::make_unique<Tree>();
        m_chosen.clear();
        QVERIFY(AsyncReader::WaitForAll(5s));
        connect(m_tree.get(), &CDirTreeCtrl::FileChosen, this,
                [this](const CString& path) { m_chosen += path; });
    }

    void FoldersStandFirstInAPersonsOrder() {
        Write({u"10.jpg"_s, u"2.JPG"_s, u"荧光灯.jpg"_s, u"白炽灯.Jpeg"_s, u"b 1.gif"_s, u"A.bmp"_s,
               u".x.jpg"_s, u"note.txt"_s, u"jpg"_s, u"z/1"_s, u"卤钨/1"_s, u"高压/1"_s, u"Recycled/1"_s,
               u"a.jpg/1"_s});
        const QModelIndex root = ShowFolder({u".bmp"_s, u".jpg"_s, u".GIF"_s, u".jpeg"_s});
        QCOMPARE(root.data().toString(), Path(u""_s) + QDir::separator());
        const QStringList names = Names(root);
        // Which of the two scripts stands first is the system's habit.
        QCOMPARE(names.filter(QRegularExpression(u"[一-龥]"_s)).join(u' '),
                 u"高压 卤钨 白炽灯.Jpeg 荧光灯.jpg"_s);
        QCOMPARE(names.filter(QRegularExpression(u"^[ -~]*$"_s)).join(u'|'),
                 u"a.jpg|z|.x.jpg|2.JPG|10.jpg|A.bmp|b 1.gif"_s);
        QVERIFY(names.indexOf(u"高压"_s) < 4 && names.indexOf(u"z"_s) < 4);
    }

    void AFolderIsReadWhenItIsOpened() {
        Write({u"outer/inner/a.jpg"_s, u"outer2/vanished"_s, u"outer3/locked"_s});
        QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7777)));
        QVERIFY(QFile::setPermissions(Path(u"outer3"_s), {}));
        const QModelIndex root = ShowFolder();
        const QAbstractItemModel& model = *m_tree->model();
        const QPersistentModelIndex outer = model.index(0, 0, root);
        QVERIFY(model.hasChildren(outer) && model.rowCount(outer) == 0);
        Write({u"outer/b.jpg"_s});
        m_tree->setCurrentIndex(outer);
        QTest::keyClick(m_tree.get(), Qt::Key_Right);
        QTRY_COMPARE(Names(outer), (QStringList{u"inner"_s, u"b.jpg"_s}));
        QCOMPARE(model.rowCount(model.index(0, 0, outer)), 0);
        QVERIFY(QDir(Path(u"outer2"_s)).removeRecursively());
        m_tree->expand(model.index(1, 0, root));
        QTRY_VERIFY(!model.hasChildren(model.index(1, 0, root)));
        const UnprivilegedScope unprivileged;
        m_tree->expand(model.index(2, 0, root));
        QTRY_COMPARE(Names(root).constLast(), u"outer3 (不能读取)"_s);
    }

    void SelectsDownToThePath() {
        // A link back up is followed as far as the path goes.
        QVERIFY(QFile::link(m_folder->path(), Path(u"loop"_s)));
        Write({u"outer/图 片/a.b.jpg"_s, u"outer/图 片/.x.jpg"_s, u"outer/note.txt"_s});
        m_tree->SetExtensions({u".jpg"_s});
        for (const QString& root : {QString(), m_folder->path()}) {
            for (const auto& [path, selected] :
                 {std::pair{u"outer/图 片/a.b.jpg"_s, u"outer/图 片/a.b.jpg"_s},
                  {u"outer//图 片/../图 片/.x.jpg"_s, u"outer/图 片/.x.jpg"_s},
                  {u"loop/loop/outer/note.txt"_s, u"loop/loop/outer"_s}}) {
                m_tree->Show(root, true);
                m_tree->SelectPath(Path(path));
                QTRY_COMPARE(m_tree->SelectedPath(), Path(selected));
                QVERIFY(m_tree->viewport()->rect().intersects(m_tree->visualRect(m_tree->currentIndex())));
            }
            // The last of two paths counts, and one that is not there selects nothing.
            m_tree->SelectPath(Path(u"outer/图 片/a.b.jpg"_s));
            m_tree->SelectPath(Path(u"outer/none.jpg"_s));
            QVERIFY(AsyncReader::WaitForAll(5s));
            QTest::qWait(10);
            QCOMPARE(m_tree->SelectedPath(), Path(u"loop/loop/outer"_s));
        }
        QCOMPARE(m_chosen, QStringList());
    }

    void ReportsFilesThatTheUserPicks() {
        Write({u"folder.jpg/x"_s, u"b.jpg"_s});
        const QModelIndex root = ShowFolder();
        for (const int row : {0, 1, 1}) {  // the folder, then the file twice
            const QRect item = m_tree->visualRect(m_tree->model()->index(row, 0, root));
            QTest::mouseClick(m_tree->viewport(), Qt::LeftButton, {}, item.topLeft() + QPoint(8, 8));
        }
        QCOMPARE(m_chosen, QStringList({Path(u"b.jpg"_s), Path(u"b.jpg"_s)}));
        // What the user does meanwhile goes before a selection that is still on its way.
        m_tree->SelectPath(Path(u"folder.jpg/x"_s));
        QTest::keyClick(m_tree.get(), Qt::Key_Up);
        QTest::keyClick(m_tree.get(), Qt::Key_Down);
        QCOMPARE(m_chosen.size(), 3);
        QTest::qWait(50);
        QCOMPARE(m_tree->SelectedPath(), Path(u"b.jpg"_s));
    }

    void AHungFolderHoldsUpNothing() {
        QStringList files{u"live/a.jpg"_s};
        for (int number = 0; number < 6; ++number) {  // more than are read at once
            files += u"dead %1/late.jpg"_s.arg(number);
        }
        Write(files);
        const QModelIndex root = ShowFolder();
        QAbstractItemModel& model = *m_tree->model();
        for (int row = 0; row < 7; ++row) {
            m_tree->expand(model.index(row, 0, root));
        }
        QTRY_COMPARE(Names(model.index(6, 0, root)), QStringList(u"a.jpg"_s));
        m_tree->letGo->release();
        const auto filled = [&] {
            int rows = 0;
            for (int row = 0; row < 6; ++row) {
                rows += model.rowCount(model.index(row, 0, root));
            }
            return rows;
        };
        QTRY_COMPARE(filled(), 1);
        // Another root goes before those that are still read, and what they held is not put into it.
        m_tree->Show(Path(u"live"_s), true);
        m_tree->SelectPath(Path(u"live/a.jpg"_s));
        QTRY_COMPARE_WITH_TIMEOUT(m_tree->SelectedPath(), Path(u"live/a.jpg"_s), 500);
        m_tree->letGo->release(5);
        QVERIFY(AsyncReader::WaitForAll(5s));
        QTest::qWait(10);
        QCOMPARE(Names(model.index(0, 0)), QStringList(u"a.jpg"_s));
        // A selection on its way is given up for another, here for none.
        m_tree->Show(m_folder->path(), true);
        m_tree->SelectPath(Path(u"dead 1/late.jpg"_s));
        QTest::qWait(50);
        m_tree->SelectPath({});
        m_tree->letGo->release();
        QVERIFY(AsyncReader::WaitForAll(5s));
        QTest::qWait(10);
        QCOMPARE(m_tree->SelectedPath(), QString());
        // The tree goes before its folder answers.
        m_tree->Show(Path(u"dead 1"_s), true);
        const auto letGo = m_tree->letGo;
        m_tree.reset();
        letGo->release();
        QVERIFY(AsyncReader::WaitForAll(5s));
    }

    void TellsWhatIsMissing() {
        MessageAnswers answers;
        const auto told = [&](const QString& folder) {
            answers.Plan(u"确定"_s);
            m_tree->Show(folder, true);
            QString text;
            (void)QTest::qWaitFor([&] { return !(text += answers.TakeSeen().join(u'\n')).isEmpty(); });
            return text.section(u'|', 1, 1) + u' ' + QString::number(m_tree->model()->rowCount());
        };
        QCOMPARE(told(Path(u"unplugged"_s)), u"Error Gettting SystemFileInfo! 0"_s);
        m_tree->drives.clear();
        QCOMPARE(told({}), u"Error Getting Logical DriveStrings! 0"_s);
        m_tree->hasIcons = false;
        QCOMPARE(told(m_folder->path()), u"Cannot retrieve the Handle of SystemImageList! 0"_s);
    }

    void DrivesAreThoseOfTheMountTable() {
        Write({u"mounts"_s},
              "/dev/sda1 / ext4 rw 0 0\ntmpfs /home/t tmpfs rw 0 0\n"
              "box:/a\\040b /srv/图\\040a\\134b nfs4 rw 0 0\n/dev/sdb1 /run/media/me/- vfat rw 0 0\n"
              "/dev/sdc1 /var/lib ext4 rw 0 0\ngvfsd-fuse /run/user/1/gvfs fuse.gvfsd-fuse rw 0 0\n");
        QCOMPARE(UserFolders(MountedVolumes(QFile::encodeName(Path(u"mounts"_s)).constData())),
                 QStringList({u"/"_s, u"/run/media/me/-"_s, u"/run/user/1/gvfs"_s, u"/srv/图 a\\b"_s}));
        QVERIFY(LogicalDrives().contains(QDir::toNativeSeparators(QDir::rootPath())));
    }

    void KeepsTheHistory() {
        Write({u"a.png.bmp"_s, u"b.JPG"_s, u"c.jpeg"_s}, Encoded("bmp"));
        Write({u"d.gif"_s}, Encoded("gif"));
        Open(Path(u"d.gif"_s));
        QCOMPARE(m_dialog->windowTitle(), u"筒灯 T5 图片设置"_s);
        QCOMPARE(Shown(), u"d.gif --"_s);
        QTRY_COMPARE(Item<CDirTreeCtrl>(TreeControl)->SelectedPath(), Path(u"d.gif"_s));
        // A file is chosen or a button pressed; chosen again, the first goes to the end.
        const QString steps =
            u"a.png.bmp:a.png.bmp --;b.JPG:b.JPG <-;c.jpeg:c.jpeg <-;<:b.JPG <>;<:a.png.bmp ->;"
            "a.png.bmp:a.png.bmp <-;<:c.jpeg <>;<:b.JPG ->;>:c.jpeg <>;x: <>;<:b.JPG ->;x: ->"_s;
        for (const QString& pair : steps.split(u';')) {
            const QString step = pair.section(u':', 0, 0);
            const QString shown = pair.section(u':', 1);
            const bool isFile = step.size() > 1;
            isFile ? Choose(step) : Press(step == u"<"_s ? Previous : step == u">"_s ? Next : Clear);
            QCOMPARE(Shown(), shown);
            QTRY_COMPARE(Item<PicturePreview>(Preview)->IsBlank(), step == u"x"_s);
        }
        Press(Ok);
        QCOMPARE(m_dialog->Path(), QString());
    }

    void IsLeftByEveryWayWithTheTypedPath() {
        Write({u"d.gif"_s}, Encoded("gif"));
        for (const int way : {int(Ok), int(Cancel), int(Qt::Key_Return), int(Qt::Key_Escape), 0}) {
            Open({});
            auto* edit = Item<QLineEdit>(PathEdit);
            edit->setFocus();
            QTest::keyClicks(edit, Path(u"d.gif"_s));
            QTest::keyClick(edit, Qt::Key_Tab);
            QTRY_VERIFY(!Item<PicturePreview>(Preview)->IsBlank());
            QCOMPARE(Shown(), u"d.gif --"_s);
            if (way == 0) {
                m_dialog->close();
            } else if (way > 0xFFFF) {
                edit->setFocus();
                QTest::keyClick(edit, Qt::Key_Backspace);
                QTest::keyClick(edit, Qt::Key(way));
            } else {
                Press(way);
            }
            QVERIFY(!m_dialog->isVisible());
            QCOMPARE(m_dialog->result(),
                     int(way == Ok || way == Qt::Key_Return ? QDialog::Accepted : QDialog::Rejected));
            QVERIFY(way != Qt::Key_Return || m_dialog->Path() == Path(u"d.gi"_s));
        }
    }

    // Typed, because the tree offers pictures alone.
    void APictureThatCannotBeShownSaysWhy() {
        MessageAnswers answers;
        Write({u"a.png.bmp"_s, u"locked.bmp"_s}, Encoded("bmp"));
        Write({u"text.bmp"_s}, "text");
        Write({u"cut.jpg"_s}, Encoded("jpg").chopped(9));
        Write({u"large.bmp"_s}, {});
        QVERIFY(QFile::resize(Path(u"large.bmp"_s), kLargestPhoto + 1));
        QVERIFY(QFile::setPermissions(Path(u"locked.bmp"_s), {}));
        QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7777)));
        const UnprivilegedScope unprivileged;
        QString notes =
            u"gone.bmp:图片文件不存在。;locked.bmp:图片文件不能读取。;large.bmp:文件大于64MB,不能用作图片。;"
            "text.bmp:文件中没有可以识别的图片。;a.png.bmp:;cut.jpg:图片不完整或已损坏。"_s;
        if (!EndlessFiles(Path(u"pipe.bmp"_s)).isEmpty()) {
            notes.prepend(u"pipe.bmp:图片文件不能读取。;"_s);
        }
        Open({});
        for (const QString& pair : notes.split(u';')) {
            Item(PathEdit)->setFocus();
            Item<QLineEdit>(PathEdit)->setText(Path(pair.section(u':', 0, 0)));
            QTest::keyClick(Item(PathEdit), Qt::Key_Tab);
            QTRY_COMPARE(Item<PicturePreview>(Preview)->Note(), pair.section(u':', 1));
        }
        for (const QString& answer : {u"否"_s, u"是"_s}) {
            answers.Plan(answer);
            Press(Ok);
            QCOMPARE(m_dialog->isVisible(), answer == u"否"_s);
        }
        QCOMPARE(answers.TakeSeen().size(), 2);
    }

    // Nor does a folder, or a picture whose file is gone: its folder is offered.
    void OkAloneChoosesNothing() {
        Write({u"d.gif"_s}, Encoded("gif"));
        Open(m_folder->path());
        QCOMPARE(m_dialog->Path(), QString());
        for (const QString& name : {u"d.gif"_s, u"gone.gif"_s}) {
            Open(Path(name));
            QTRY_COMPARE(Item<CDirTreeCtrl>(TreeControl)->SelectedPath(),
                         name == u"d.gif"_s ? Path(name) : QDir::toNativeSeparators(m_folder->path()));
            Press(Ok);
            QVERIFY(!m_dialog->IsChosen());
        }
        Open(Path(u"d.gif"_s));
        Press(Clear);
        QVERIFY(AsyncReader::WaitForAll(5s));
        QTest::qWait(10);
        QVERIFY(Item<PicturePreview>(Preview)->IsBlank());  // a late picture is not shown
        Press(Ok);
        QVERIFY(m_dialog->IsChosen());
    }

    void TypingMovesTheTreeAndADoubleClickChooses() {
        Write({u"e.PNG"_s}, Encoded("png"));
        Open({});
        auto* tree = Item<CDirTreeCtrl>(TreeControl);
        Item(PathEdit)->setFocus();
        QTest::keyClicks(Item(PathEdit), Path(u"e.PNG"_s));
        QTRY_COMPARE(tree->SelectedPath(), Path(u"e.PNG"_s));
        QTRY_VERIFY(!Item<PicturePreview>(Preview)->IsBlank());
        const QPoint place = tree->visualRect(tree->currentIndex()).topLeft() + QPoint(8, 8);
        const QImage shown = Item(Preview)->grab().toImage();  // the picture fills it, whatever its shape
        for (const QPoint& at : {QPoint(9, 9), QPoint(shown.width() - 9, shown.height() - 9)}) {
            QCOMPARE(shown.pixelColor(at), QColor(Qt::red));
        }
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, place);
        QVERIFY(!m_dialog->isVisible());
        QVERIFY(m_dialog->result() == QDialog::Accepted && m_dialog->Path() == Path(u"e.PNG"_s));
    }

    void BrokenPicturesShowNothing() {
        QList<QByteArray> broken{
            {}, "not a picture\n", "/* XPM */\nstatic char *x[]={\"1 1 1 1\",\"a c red\",\"a\"};"};
        QList<QByteArray> whole{Encoded("jpg") + QByteArray(100'000, 'v')};
        for (const char* format : {"bmp", "jpg", "png", "gif"}) {
            const QByteArray picture = Encoded(format);
            whole += picture;
            // A PNG ends in a block without pixels.
            broken += picture.chopped(qstrcmp(format, "png") == 0 ? 20 : 3);
            broken += picture.first(picture.size() / 2);
            broken += picture.first(7);
        }
        // An end mark, but inside a segment.
        broken += Encoded("jpg").insert(2, QByteArray::fromHex("ffe10008ffd8ffda00ffd9").left(10)).chopped(3);
        broken += Encoded("gif").replace(6, 4, QByteArray::fromHex("ffffffff"));  // huge
        broken += Encoded("bmp");
        qToLittleEndian<qint32>(100'000, broken.last().data() + 18);
        qToLittleEndian<qint32>(100'000, broken.last().data() + 22);
        for (const QByteArray& content : whole + broken) {
            Write({u"tried.jpg"_s}, content);
            QVERIFY2(LoadPicture(Path(u"tried.jpg"_s), {60, 40}).image.isNull() == broken.contains(content),
                     content.left(20).toHex().constData());
        }
        QImage bomb(12'000, 12'000, QImage::Format_Mono);
        bomb.fill(0);
        QVERIFY(bomb.save(Path(u"bomb.png"_s)));
        QCOMPARE(LoadPicture(Path(u"bomb.png"_s), {60, 40}).problem, PictureProblem::TooManyPixels);
    }

private:
    void Write(const QStringList& files, const QByteArray& content = {}) const {
        for (const QString& name : files) {
            QVERIFY(QDir().mkpath(QFileInfo(Path(name)).path()));
            QFile file(Path(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        }
    }
    QString Path(const QString& name) const { return QDir::toNativeSeparators(m_folder->filePath(name)); }
    // Shows the test's folder alone and waits until it is read.
    QModelIndex ShowFolder(const QStringList& extensions = {}) {
        m_tree->SetExtensions(extensions);
        m_tree->Show(m_folder->path(), true);
        const QModelIndex root = m_tree->model()->index(0, 0);
        return QTest::qWaitFor([&] { return m_tree->model()->rowCount(root) > 0; }) ? root : QModelIndex();
    }
    QStringList Names(const QModelIndex& folder) const {
        QStringList names;
        for (int row = 0; row < m_tree->model()->rowCount(folder); ++row) {
            names += m_tree->model()->index(row, 0, folder).data().toString();
        }
        return names;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Tree> m_tree;
    QStringList m_chosen;

    template <typename Widget = QWidget>
    Widget* Item(int id) const {
        return static_cast<Widget*>(DialogItem(m_dialog.get(), id));
    }
    void Open(const QString& path) {
        m_dialog = std::make_unique<CLuminairePhotoSettingDlg>(path, u"筒灯 T5"_s, nullptr);
        m_dialog->show();
        QVERIFY(QTest::qWaitForWindowActive(m_dialog.get()));
    }
    void Choose(const QString& name) const {
        auto* tree = Item<CDirTreeCtrl>(TreeControl);
        tree->SelectPath(Path(name));
        QTRY_COMPARE(tree->SelectedPath(), Path(name));
        const QPoint corner = tree->visualRect(tree->currentIndex()).topLeft();
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, corner + QPoint(8, 8));
    }
    void Press(int id) const { QTest::mouseClick(Item(id), Qt::LeftButton); }
    // The path shown, and which of the two buttons are enabled.
    QString Shown() const {
        return QFileInfo(Item<QLineEdit>(PathEdit)->text()).fileName() +
               (Item(Previous)->isEnabled() ? u" <"_s : u" -"_s) + (Item(Next)->isEnabled() ? u'>' : u'-');
    }

    std::unique_ptr<CLuminairePhotoSettingDlg> m_dialog;
};

QTEST_MAIN(TestPhotoDialog)
#include "test_photo_dialog.moc"
