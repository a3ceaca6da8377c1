// The luminaire page in a window of its own, with its buttons, its chooser and its dialogs worked by events.
#pragma once

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <functional>

#include "editors/luminaire/luminaire_page.h"
#include "tests/support/shown_page.h"

namespace quorvane {

enum Control { Ok = 1, Cancel = 2, Filter = 1006, CopyButton = 1022, PasteButton = 1023 };
enum PhotoControl { PhotoPath = 1025, PhotoClear = 1026 };
enum {
    Number,
    Name,
    Model,
    Efficiency,
    MaxLhAA,
    MaxLhBB,
    Categories,
    LightSources,
    LightSourceCount,
    BallastCount,
    BallastPower,
    Maker,
    Photo,
    FactorKind,
    FactorTable,
};

// Light sources whose names hold a colon, a comma, or nothing at all; a category whose name holds a comma.
inline const QString kLists =
    u"insert into 光源类别 values (1,'荧光灯'),(2,'白炽灯'),(3,'常用灯具'),(5,'混光灯'),(15,'LED,模组');"
    "insert into 光源 values (11,1,'T8',3350,36,'','直管'),(12,1,'T5',2600,28,'','细管'),"
    "(10,9,'L',1,1,'','逗,号'),(13,2,'Q',1,1,'','泡:a'),(14,2,'',1,1,'','逗,号'),(16,15,'',1,1,'','');"_qs;
inline QString Relative(const QString& name) {
    return u"\\Vexal\\LuminairePhotoLib\\"_qs + name;
}

// Waits for the modal dialog of that name, then works in it.
class DialogAnswer : public QObject {
public:
    DialogAnswer(const QString& name, std::function<void(QWidget*)> work) {
        connect(&m_timer, &QTimer::timeout, this, [this, name, work = std::move(work)] {
            QWidget* dialog = QApplication::activeModalWidget();
            if (dialog != nullptr && dialog->objectName() == name && dialog->isVisible()) {
                m_timer.stop();
                WasShown = true;
                work(dialog);
            }
        });
        m_timer.start(5);
    }
    bool WasShown = false;

private:
    QTimer m_timer;
};

inline void PressIn(QWidget* dialog, int id) {
    QTest::mouseClick(DialogItem(dialog, id), Qt::LeftButton);
}

struct ShownLuminaires : ShownPage {
    explicit ShownLuminaires(const QString& rows)
        : ShownPage(rows, MakePage<CQuorvaneLuminaireDlg>) {}

    void ChooseCategory(const QString& name) {
        const std::vector<CString> names = DialogItem<CEaseComboBox>(page, Filter)->Strings();
        Choose(Filter, static_cast<int>(std::find(names.begin(), names.end(), name) - names.begin()));
    }
    int AppendRow() const { return grid->GetRowCount() - 1; }
    // Where the button of a cell stands, also beside a text.
    void PressCell(int row, int column) {
        Activate();
        grid->EnsureVisible(row, column);
        const QRect cell = grid->CellRect(row, column);
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, {cell.right() - 8, cell.center().y()});
    }
    void PressButton(int id, int row) {
        Click(row, Name);
        PressIn(page, id);
    }
    void Submit() {
        page->Submit();
        page->Refresh();
    }
    bool DeleteRow(int row) {
        Click(row, Name);
        answers.Plan(u"是"_qs);
        return page->DeleteSelected();
    }
    // Toggles those names in the chooser and leaves it by the key.
    void PickTypes(int row, const QStringList& names, Qt::Key key) {
        Click(row, Categories);
        auto* chooser = page->findChild<CLamphouseTypeChoiceWindow*>();
        QVERIFY(chooser != nullptr && chooser->isVisible());
        auto* list = chooser->findChild<QListWidget*>();
        for (const QString& name : names) {
            list->setCurrentItem(list->findItems(name, Qt::MatchExactly).constFirst());
            QTest::keyClick(list, Qt::Key_Space);
        }
        QTest::keyClick(list, key);
        QVERIFY(!chooser->isVisible());
    }
    // Chooses an entry of a cell's list.
    void PickEntry(int row, int column, const QString& text) {
        const std::vector<CString>& texts =
            dynamic_cast<CGridBtnCellCombo&>(*grid->Cell(row, column)).Choices();
        const auto entry = std::find(texts.begin(), texts.end(), text) - texts.begin();
        Click(row, column);
        QTest::keyClick(grid, Qt::Key_F4);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Home);
        for (int step = 0; step < entry; ++step) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(grid->GetItemText(row, column), text);
    }
    // Chooses that file in the photo dialog; none takes the photo away.
    void PickPhoto(int row, const QString& path, Control leave = Ok) {
        const DialogAnswer answer(u"photoDialog"_qs, [&](QWidget* dialog) {
            if (path.isEmpty()) {
                PressIn(dialog, PhotoClear);
            } else {
                DialogItem<QLineEdit>(dialog, PhotoPath)->selectAll();
                Enter(DialogItem(dialog, PhotoPath), path);
            }
            PressIn(dialog, leave);
        });
        PressCell(row, Photo);
        QVERIFY(answer.WasShown);
    }

    QString Library() const { return file.Folder() + u"/Vexal/LuminairePhotoLib/"_qs; }
    QString WriteFile(const QString& path, const QByteArray& content) const {
        QDir().mkpath(QFileInfo(path).path());
        QFile written(path);
        return written.open(QIODevice::WriteOnly) && written.write(content) >= 0 ? path : QString();
    }
    // "31.jpg=content" of every file of the library.
    QStringList Photos() const {
        QStringList photos;
        for (const QString& name : QDir(Library()).entryList(QDir::Files, QDir::Name)) {
            QFile photo(Library() + name);
            photos += name + u'=' + QString(photo.open(QIODevice::ReadOnly) ? photo.readAll() : QByteArray());
        }
        return photos;
    }
    QString Field(const char* field, int id) const {
        return file.Raw().Text(u"select %1 from 灯具 where ID=%2"_qs.arg(QLatin1String(field)).arg(id));
    }
};

}  // namespace quorvane
