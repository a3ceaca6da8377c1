#include <QBuffer>
#include <QFile>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>
#include <memory>

#include "editors/photo/directory_tree.h"
#include "editors/photo/photo_dialog.h"
#include "editors/photo/picture_preview.h"
#include "model/photo_library.h"
#include "tests/support/message_answers.h"
#include "tests/support/unprivileged_scope.h"
#include "widgets/dialog_template.h"
#include "widgets/ease_combo_box.h"

using namespace Qt::Literals::StringLiterals;

using namespace quorvane;

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

}  // namespace

class TestPhotoDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        for (const QString& name : {u"a.png.bmp"_s, u"b.JPG"_s, u"c.jpeg"_s}) {
            Write(name, Encoded("bmp"));
        }
        Write(u"d.gif"_s, Encoded("gif"));
    }

    void KeepsTheHistory() {
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

    void ALatePictureIsNotShown() {
        Open(m_folder.path());  // no picture
        QCOMPARE(m_dialog->Path(), QString());
        Open(Path(u"a.png.bmp"_s));
        Press(Clear);
        QVERIFY(AsyncReader::WaitForAll(std::chrono::seconds(5)));
        QTest::qWait(10);
        QVERIFY(Item<PicturePreview>(Preview)->IsBlank());
    }

    void IsLeftByEveryWayWithTheTypedPath() {
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
        Write(u"locked.bmp"_s, Encoded("bmp"));
        Write(u"text.bmp"_s, "text");
        Write(u"cut.jpg"_s, Encoded("jpg").chopped(9));
        Write(u"large.bmp"_s, {});
        QVERIFY(QFile::resize(Path(u"large.bmp"_s), kLargestPhoto + 1));
        QVERIFY(QFile::setPermissions(Path(u"locked.bmp"_s), {}));
        QVERIFY(QFile::setPermissions(m_folder.path(), QFile::Permissions(0x7777)));
        const UnprivilegedScope unprivileged;
        const QString notes =
            u"gone.bmp:图片文件不存在。;locked.bmp:图片文件不能读取。;large.bmp:文件大于64MB,不能用作图片。;"
            "text.bmp:文件中没有可以识别的图片。;a.png.bmp:;cut.jpg:图片不完整或已损坏。"_s;
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

    // Nor does one whose file is gone: its folder is offered.
    void OkAloneChoosesNothing() {
        for (const QString& name : {u"d.gif"_s, u"gone.gif"_s}) {
            Open(Path(name));
            auto* tree = Item<CDirTreeCtrl>(TreeControl);
            QTRY_COMPARE(tree->SelectedPath(), name == u"d.gif"_s ? Path(name) : m_folder.path());
            Press(Ok);
            QVERIFY(!m_dialog->IsChosen());
            Open(Path(name));
            Press(Clear);
            Press(Ok);
            QVERIFY(m_dialog->IsChosen());
        }
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
            Write(u"tried.jpg"_s, content);
            QVERIFY2(LoadPicture(Path(u"tried.jpg"_s), {60, 40}).image.isNull() == broken.contains(content),
                     content.left(20).toHex().constData());
        }
    }

private:
    QString Path(const QString& name) const { return m_folder.filePath(name); }
    template <typename Widget = QWidget>
    Widget* Item(int id) const {
        return static_cast<Widget*>(DialogItem(m_dialog.get(), id));
    }
    void Write(const QString& name, const QByteArray& content) const {
        QFile file(Path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
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

    QTemporaryDir m_folder;
    std::unique_ptr<CLuminairePhotoSettingDlg> m_dialog;
};

QTEST_MAIN(TestPhotoDialog)
#include "test_photo_dialog.moc"
