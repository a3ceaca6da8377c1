#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <semaphore>

#include "editors/photo/directory_tree.h"
#include "editors/photo/drives.h"
#include "tests/support/message_answers.h"

using namespace quorvane;
using namespace std::chrono_literals;

namespace {

// A tree on a machine whose drives and pictures the test chooses.
class Tree : public CDirTreeCtrl {
public:
    Tree() : CDirTreeCtrl(nullptr) {
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
            if (folder.contains(u"dead"_qs)) {
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

class TestDirectoryTree : public QObject {
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
        Add({u"10.jpg"_qs, u"2.JPG"_qs, u"荧光灯.jpg"_qs, u"白炽灯.Jpeg"_qs, u"b 1.gif"_qs, u"A.bmp"_qs,
             u".x.jpg"_qs, u"note.txt"_qs, u"jpg"_qs, u"z/1"_qs, u"卤钨/1"_qs, u"高压/1"_qs, u"Recycled/1"_qs,
             u"a.jpg/1"_qs});
        const QModelIndex root = ShowFolder({u".bmp"_qs, u".jpg"_qs, u".GIF"_qs, u".jpeg"_qs});
        QCOMPARE(root.data().toString(), m_folder->path() + u'/');
        const QStringList names = Names(root);
        // Which of the two scripts stands first is the system's habit.
        QCOMPARE(names.filter(QRegularExpression(u"[一-龥]"_qs)).join(u' '),
                 u"高压 卤钨 白炽灯.Jpeg 荧光灯.jpg"_qs);
        QCOMPARE(names.filter(QRegularExpression(u"^[ -~]*$"_qs)).join(u'|'),
                 u"a.jpg|z|.x.jpg|2.JPG|10.jpg|A.bmp|b 1.gif"_qs);
        QVERIFY(names.indexOf(u"高压"_qs) < 4 && names.indexOf(u"z"_qs) < 4);
    }

    void AFolderIsReadWhenItIsOpened() {
        Add({u"outer/inner/a.jpg"_qs, u"outer2/vanished"_qs});
        const QModelIndex root = ShowFolder();
        const QAbstractItemModel& model = *m_tree->model();
        const QPersistentModelIndex outer = model.index(0, 0, root);
        QVERIFY(model.hasChildren(outer));
        QTest::qWait(50);
        QCOMPARE(model.rowCount(outer), 0);
        Add({u"outer/b.jpg"_qs});
        m_tree->setCurrentIndex(outer);
        QTest::keyClick(m_tree.get(), Qt::Key_Right);
        QTRY_COMPARE(Names(outer), (QStringList{u"inner"_qs, u"b.jpg"_qs}));
        QCOMPARE(model.rowCount(model.index(0, 0, outer)), 0);

        QVERIFY(QDir(Path(u"outer2"_qs)).removeRecursively());
        m_tree->expand(model.index(1, 0, root));
        QTRY_VERIFY(!model.hasChildren(model.index(1, 0, root)));
    }

    void SelectsDownToThePath() {
        // A link back up is followed as far as the path goes.
        QVERIFY(QFile::link(m_folder->path(), Path(u"loop"_qs)));
        Add({u"outer/图 片/a.b.jpg"_qs, u"outer/图 片/.x.jpg"_qs, u"outer/note.txt"_qs});
        m_tree->SetExtensions({u".jpg"_qs});
        for (const bool allDrives : {false, true}) {
            for (const auto& [path, selected] :
                 {std::pair{u"outer/图 片/a.b.jpg"_qs, u"outer/图 片/a.b.jpg"_qs},
                  {u"outer//图 片/../图 片/.x.jpg"_qs, u"outer/图 片/.x.jpg"_qs},
                  {u"loop/loop/outer/note.txt"_qs, u"loop/loop/outer"_qs}}) {
                m_tree->Show(allDrives ? QString() : m_folder->path(), true);
                m_tree->SelectPath(Path(path));
                QTRY_COMPARE(m_tree->SelectedPath(), Path(selected));
                QVERIFY(m_tree->viewport()->rect().intersects(m_tree->visualRect(m_tree->currentIndex())));
            }
            m_tree->Show(allDrives ? QString() : m_folder->path(), true);
            m_tree->SelectPath(Path(u"outer/none.jpg"_qs));
            QTest::qWait(100);
            QCOMPARE(m_tree->SelectedPath(), QString());
        }
        QCOMPARE(m_chosen, QStringList());
    }

    void ReportsFilesThatTheUserPicks() {
        Add({u"folder.jpg/x"_qs, u"b.jpg"_qs});
        const QModelIndex root = ShowFolder();
        for (const int row : {0, 1, 1}) {  // the folder, then the file twice
            const QRect item = m_tree->visualRect(m_tree->model()->index(row, 0, root));
            QTest::mouseClick(m_tree->viewport(), Qt::LeftButton, {}, item.topLeft() + QPoint(8, 8));
        }
        QCOMPARE(m_chosen, QStringList({Path(u"b.jpg"_qs), Path(u"b.jpg"_qs)}));
        // What the user does meanwhile goes before a selection that is still on its way.
        m_tree->SelectPath(Path(u"folder.jpg/x"_qs));
        QTest::keyClick(m_tree.get(), Qt::Key_Up);
        QTest::keyClick(m_tree.get(), Qt::Key_Down);
        QCOMPARE(m_chosen.size(), 3);
        QTest::qWait(50);
        QCOMPARE(m_tree->SelectedPath(), Path(u"b.jpg"_qs));
    }

    void AHungFolderHoldsUpNothing() {
        QStringList files{u"live/a.jpg"_qs};
        for (int number = 0; number < 6; ++number) {  // more than are read at once
            files += u"dead %1/late.jpg"_qs.arg(number);
        }
        Add(files);
        const QModelIndex root = ShowFolder();
        QAbstractItemModel& model = *m_tree->model();
        for (int row = 0; row < 7; ++row) {
            m_tree->expand(model.index(row, 0, root));
        }
        QTRY_COMPARE(Names(model.index(6, 0, root)), QStringList(u"a.jpg"_qs));
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
        m_tree->Show(Path(u"live"_qs), true);
        m_tree->SelectPath(Path(u"live/a.jpg"_qs));
        QTRY_COMPARE_WITH_TIMEOUT(m_tree->SelectedPath(), Path(u"live/a.jpg"_qs), 500);
        m_tree->letGo->release(5);
        QVERIFY(AsyncReader::WaitForAll(5s));
        QTest::qWait(10);
        QCOMPARE(Names(model.index(0, 0)), QStringList(u"a.jpg"_qs));
        // The tree goes before its folder answers.
        m_tree->Show(Path(u"dead 1"_qs), true);
        const auto letGo = m_tree->letGo;
        m_tree.reset();
        letGo->release();
        QVERIFY(AsyncReader::WaitForAll(5s));
    }

    void TellsWhatIsMissing() {
        MessageAnswers answers;
        const auto told = [&](const QString& folder) {
            answers.Plan(u"确定"_qs);
            m_tree->Show(folder, true);
            QString text;
            (void)QTest::qWaitFor([&] { return !(text += answers.TakeSeen().join(u'\n')).isEmpty(); });
            return text.section(u'|', 1, 1) + u' ' + QString::number(m_tree->model()->rowCount());
        };
        QCOMPARE(told(Path(u"unplugged"_qs)), u"Error Gettting SystemFileInfo! 0"_qs);
        m_tree->drives.clear();
        QCOMPARE(told({}), u"Error Getting Logical DriveStrings! 0"_qs);
        m_tree->hasIcons = false;
        QCOMPARE(told(m_folder->path()), u"Cannot retrieve the Handle of SystemImageList! 0"_qs);
    }

    void DrivesAreThoseOfTheMountTable() {
        QCOMPARE(PersonsFolders(
                     "22 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                     "23 22 0:5 / /sys/fs rw shared:2 master:1 - sysfs sysfs rw\n"
                     "24 22 0:6 / /srv/\\345\\233\\276\\040a\\134b rw shared:2 - nfs4 box:/a\\040-\\040b rw\n"
                     "25 22 0:7 / /run/media/me/- rw - vfat /dev/sdb1 rw\n"
                     "28 22 0:9 / /run/user/1/gvfs rw - fuse.gvfsd-fuse gvfsd-fuse rw\n"
                     "26 22 0:8 / /mnt/cut rw -\n27 22\n\n"),
                 QStringList({u"/"_qs, u"/run/media/me/-"_qs, u"/run/user/1/gvfs"_qs, u"/srv/图 a\\b"_qs}));
        QVERIFY(LogicalDrives().contains(QDir::toNativeSeparators(QDir::rootPath())));
    }

private:
    void Add(const QStringList& files) const {
        for (const QString& file : files) {
            QVERIFY(QDir().mkpath(QFileInfo(Path(file)).path()));
            QVERIFY(QFile(Path(file)).open(QIODevice::WriteOnly));
        }
    }
    QString Path(const QString& name) const { return m_folder->filePath(name); }
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
};

QTEST_MAIN(TestDirectoryTree)
#include "test_directory_tree.moc"
