#include <QLineEdit>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "app/edit_keeper.h"
#include "app/file_notice.h"
#include "app/main_dialog.h"
#include "app/single_instance.h"
#include "tests/support/message_answers.h"
#include "widgets/dialog_template.h"

using namespace Qt::Literals::StringLiterals;

using namespace quorvane;

namespace {

const QString kQuestion = u"照度计算数据库维护|数据未提交,是否提交?|是/否/取消"_s;

// A page that writes down what the dialog asks of it.
class FakePage : public CPage {
public:
    FakePage(const QString& name, QStringList* calls, QWidget* parent)
        : CPage(parent), m_name(name), m_calls(calls) {
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(new QLineEdit(this));
        layout->addWidget(new QWidget(this));  // takes no focus
    }

    bool IsModified() const override { return modified; }
    int EditCount() const override { return modified || removed > 0 ? 3 : 0; }
    int RemovedCount() const override { return removed; }
    void EndEditing() override {
        modified = modified || editing;
        editing = false;
    }
    bool Submit() override {
        *m_calls += m_name + u".submit"_s;
        modified = failing;
        return true;
    }
    void Refresh() override { *m_calls += m_name + u".refresh"_s; }
    bool DeleteSelected() override {
        *m_calls += m_name + u".delete"_s;
        return true;
    }
    void Reload() override { *m_calls += m_name + u".reload"_s; }
    void AddCommand(QAction& /*command*/) override {}
    std::function<QCborMap()> KeepEdits() const override {
        return [] { return QCborMap(); };
    }
    QStringList MakeEditsAgain(const QCborMap&) override { return {}; }

    bool modified = false;
    int removed = 0;
    bool editing = false;
    bool failing = false;

private:
    QString m_name;
    QStringList* m_calls;
};

struct Fixture {
    Fixture() {
        const auto maker = [this](const QString& name, FakePage*& page) {
            return [this, name, &page](QWidget* parent) -> CPage* {
                return page = new FakePage(name, &calls, parent);
            };
        };
        dialog = std::make_unique<CQuorvaneDlg>(
            MainDialogPages{maker(u"light"_s, light), maker(u"luminaire"_s, luminaire),
                            maker(u"requirement"_s, requirement)},
            QString());
        dialog->show();
        dialog->activateWindow();
        if (!QTest::qWaitForWindowActive(dialog.get())) {
            qFatal("the window was not activated");
        }
    }

    void Press(int id) { QTest::mouseClick(DialogItem(dialog.get(), id), Qt::LeftButton); }
    QTabWidget* Tabs() const { return DialogItem<QTabWidget>(dialog.get(), 1027); }

    QStringList calls;
    FakePage* light = nullptr;
    FakePage* luminaire = nullptr;
    FakePage* requirement = nullptr;
    std::unique_ptr<CQuorvaneDlg> dialog;
    MessageAnswers answers;
};

// A connection whose check of the file goes on until it is ended.
struct CheckedConnection : Connection {
    void Open(const CString&, const CString&, const CString&, int) override {}
    std::unique_ptr<Recordset> Execute(const CString&) override { return nullptr; }
    void Close() override {}
    bool IsCheckRunning() const override { return isRunning; }
    void RequireSoundFile() override {
        if (isDamaged) {
            throw ProviderError(u"row 7 missing from index"_s, FailureKind::Damaged);
        }
    }
    CString ChangesPutAside() const override { return putAside; }
    bool isRunning = true;
    bool isDamaged = true;
    CString putAside;
};

enum Control { kExit = 1000, kDelete = 1002, kSubmit };

}  // namespace

class TestMainDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TabsAndTitleTellOfEdits() {
        Fixture fixture;
        const auto shown = [&](int removed) {
            fixture.luminaire->removed = removed;  // after a No that leaves the flag alone
            Q_EMIT fixture.luminaire->EditsChanged();
            return fixture.Tabs()->tabText(1) + fixture.Tabs()->tabToolTip(1) + fixture.dialog->windowTitle();
        };
        QCOMPARE(shown(1), u"灯具库*3行未提交,其中1行已删除照度计算数据库维护*"_s);
        QCOMPARE(shown(0), u"灯具库照度计算数据库维护"_s);
    }

    void LeavingAsksForEdits() {
        Fixture fixture;
        // Without an answer no question may come up.
        int finished = 0;
        connect(fixture.dialog.get(), &QDialog::finished, this, [&] { ++finished; });
        const auto leave = [&](const QString& answer) {
            fixture.dialog->show();
            if (!answer.isEmpty()) {
                fixture.answers.Plan(answer);
            }
            fixture.Press(kExit);
            QCOMPARE(fixture.answers.TakeSeen(), answer.isEmpty() ? QStringList() : QStringList(kQuestion));
            QCOMPARE(fixture.dialog->isVisible(), answer == u"取消"_s);
            QCOMPARE(std::exchange(finished, 0), answer == u"取消"_s ? 0 : 1);
        };
        leave({});
        fixture.light->editing = true;  // an edit still open when the window is closed is an edit
        leave(u"取消"_s);
        QVERIFY(fixture.light->modified);
        leave(u"否"_s);
        QVERIFY(fixture.calls.isEmpty());
        leave(u"是"_s);
        QCOMPARE(fixture.calls,
                 QStringList({u"luminaire.submit"_s, u"light.submit"_s, u"requirement.submit"_s}));
    }

    void WhatCannotBeWrittenKeepsTheWindowOpen() {
        Fixture fixture;
        fixture.requirement->modified = fixture.requirement->failing = true;
        fixture.answers.Plan(u"是"_s);
        fixture.Press(kExit);
        QVERIFY(fixture.dialog->isVisible() && fixture.requirement->isVisible());
        QCOMPARE(fixture.calls.last(), u"requirement.refresh"_s);
        fixture.answers.Plan(u"否"_s);
        fixture.Press(kExit);
        QVERIFY(!fixture.dialog->isVisible());
        QCOMPARE(fixture.answers.TakeSeen(), QStringList({kQuestion, kQuestion}));
    }

    void WhatOpeningFoundIsToldOnceTheCheckHasEnded() {
        auto connection = std::make_shared<CheckedConnection>();
        CLightingDatabase database([&](const CString&) { return connection; }, u"/opt/q/bin/quorvane"_s);
        QVERIFY(database.Connect());
        Fixture fixture;
        const auto seenAfter = [&](bool isRunning, bool isDamaged) {
            connection->isRunning = isRunning;
            connection->isDamaged = isDamaged;
            const FileNotice notice(database, *fixture.dialog);
            fixture.answers.Plan(u"确定"_s);
            QTest::qWait(350);
            return fixture.answers.TakeSeen();
        };
        QCOMPARE(seenAfter(true, true), QStringList());
        QCOMPARE(seenAfter(false, false), QStringList());
        const QStringList told = seenAfter(false, true);
        QVERIFY(told.size() == 1 && told[0].contains(u"row 7 missing from index"_s));
        connection->putAside = u"/opt/q/Vexal/a.mdb-redo-20260102-030405"_s;
        QVERIFY(seenAfter(false, false).value(0).contains(connection->putAside));
    }

    void EditsThatCannotBeKeptAreToldOnce() {
        const QTemporaryDir folder;
        const QString settings = folder.filePath(u"settings"_s);
        qputenv("XDG_CONFIG_HOME", settings.toUtf8());
        Fixture fixture;
        fixture.light->modified = true;
        EditKeeper keeper({fixture.light}, u"a.mdb"_s, *fixture.dialog);
        keeper.Start();
        keeper.findChild<QTimer*>()->setInterval(5);
        for (int round = 0; round < 2; ++round) {
            QVERIFY(QDir(settings).removeRecursively() && QFile(settings).open(QIODevice::WriteOnly));
            Q_EMIT fixture.light->EditsChanged();
            for (const int told : {0, 1}) {  // first a text is being typed
                told == 0 ? fixture.light->findChild<QLineEdit*>()->setFocus() : fixture.Tabs()->setFocus();
                QTest::qWait(200);
                QCOMPARE(fixture.answers.TakeSeen().filter(settings).size(), told);
            }
            QVERIFY(QFile::remove(settings));  // it is tried again without another edit
            QTRY_VERIFY(!QDir(settings + u"/quorvane"_s).entryList({u"*.cbor"_s}).isEmpty());
        }
    }

    // Without a folder for it there is no lock, and the program starts all the same.
    void TheLockFileStaysInTheRuntimeFolder() {
        const QTemporaryDir folder;
        QVERIFY(QDir::setCurrent(folder.path()));
        qputenv("XDG_RUNTIME_DIR", folder.path().toUtf8());
        {
            const SingleInstanceGuard first(u"Test"_s);
            QVERIFY(!first.IsAlreadyRunning() && SingleInstanceGuard(u"Test"_s).IsAlreadyRunning());
        }
        QVERIFY(QFile::remove(u"Test.lock"_s));
        qputenv("XDG_RUNTIME_DIR", "/proc/none");
        qputenv("TMPDIR", "/proc/none");
        QVERIFY(!SingleInstanceGuard(u"Test"_s).IsAlreadyRunning());
        QVERIFY(QDir(folder.path()).isEmpty());
    }

    void KeysOfTheWindow() {
        Fixture fixture;
        auto* editor = fixture.light->findChild<QLineEdit*>();
        for (QWidget* focus : {static_cast<QWidget*>(fixture.Tabs()), static_cast<QWidget*>(editor)}) {
            focus->setFocus();
            for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter}) {
                QTest::keyClick(focus, key);
                QVERIFY(fixture.dialog->isVisible() && fixture.calls.isEmpty());  // these leave nothing
            }
        }
        const auto calls = [&](Qt::Key key, Qt::KeyboardModifiers modifiers) {
            QTest::keyClick(editor, key, modifiers);
            QTest::qWait(150);  // the button goes down and up
            return std::exchange(fixture.calls, {}).join(u' ');
        };
        QCOMPARE(calls(Qt::Key_S, Qt::ControlModifier), u"light.submit light.refresh"_s);
        QCOMPARE(calls(Qt::Key_S, Qt::AltModifier), u"light.submit light.refresh"_s);
        QCOMPARE(calls(Qt::Key_F5, {}), u"light.reload"_s);
        QCOMPARE(calls(Qt::Key_PageUp, Qt::ControlModifier), QString());
        QCOMPARE(fixture.Tabs()->currentIndex(), 2);
        editor = fixture.requirement->findChild<QLineEdit*>();
        QCOMPARE(calls(Qt::Key_D, Qt::AltModifier), u"requirement.delete"_s);
        QTest::keyClick(editor, Qt::Key_PageDown, Qt::ControlModifier);
        QCOMPARE(fixture.Tabs()->currentIndex(), 0);
        QTest::keyClick(editor, Qt::Key_F1);
        const auto* guide = fixture.dialog->findChild<QTextBrowser*>(u"guide"_s);
        QVERIFY(guide != nullptr && guide->isVisible());
        QVERIFY(guide->toPlainText().contains(u"图片设置"_s));
    }

    void TabGoesFromThePageToTheButtonsThatEnterPresses() {
        Fixture fixture;
        fixture.Tabs()->setCurrentIndex(2);
        fixture.light->modified = true;
        fixture.Tabs()->tabBar()->setFocus();
        fixture.answers.Plan(u"否"_s);
        for (const int id : {0, int(kSubmit), int(kDelete), int(kExit)}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QVERIFY(id == 0 || QApplication::focusWidget() == DialogItem(fixture.dialog.get(), id));
            const QStringList before = fixture.calls;
            QTest::keyPress(QApplication::focusWidget(), Qt::Key_Return);
            QCOMPARE(fixture.calls, before);  // a key held down must not answer what the button asks
            QTest::keyRelease(QApplication::focusWidget(), Qt::Key_Return);
        }
        QCOMPARE(fixture.calls,
                 QStringList({u"requirement.submit"_s, u"requirement.refresh"_s, u"requirement.delete"_s}));
        QVERIFY(!fixture.dialog->isVisible());
    }
};

QTEST_MAIN(TestMainDialog)
#include "test_main_dialog.moc"
