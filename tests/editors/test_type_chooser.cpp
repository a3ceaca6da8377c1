#include <QListWidget>
#include <QTest>
#include <memory>

#include "editors/luminaire/type_chooser.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestTypeChooser : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_owner = std::make_unique<QWidget>();
        m_owner->resize(500, 400);
        m_cell = new QWidget(m_owner.get());
        m_cell->setGeometry(20, 20, 260, 20);
        m_owner->show();
        m_chooser = new CLamphouseTypeChoiceWindow(m_owner.get());
        m_chooser->SetTypeNames({u"荧光灯"_s, u"高压钠灯"_s, u"混光灯"_s, u"常用灯具"_s, u"白炽灯"_s});
        m_results.clear();
        m_rectangle = {};
        connect(m_chooser, &CLamphouseTypeChoiceWindow::Chosen, this,
                [this](const std::vector<CString>& names, const QRect& rectangle) {
                    m_results += QStringList(names.begin(), names.end()).join(u',');
                    m_rectangle = rectangle;
                });
    }

    void TicksFollowTheMixedLightRule() {
        // ticked:clicked:result
        const QString cases =
            u"白炽灯,荧光灯::荧光灯,白炽灯;白炽,荧光灯 ,没有::;荧光灯,白炽灯,常用灯具:混光灯:混光灯,常用灯具;"
            "混光灯,常用灯具:高压钠灯:高压钠灯,常用灯具;混光灯:常用灯具:混光灯,常用灯具;混光灯,荧光灯:荧光灯:"
            "混光灯;"
            "荧光灯:白炽灯,_白炽灯:荧光灯;荧光灯:_混光灯,_常用灯具:混光灯,常用灯具"_s;
        for (const QString& row : cases.split(u';')) {
            const QString ticked = row.section(u':', 0, 0);
            const QString clicked = row.section(u':', 1, 1);
            const QString result = row.section(u':', 2);
            Show(ticked);
            for (const QString& name : clicked.split(u',', Qt::SkipEmptyParts)) {
                Toggle(name);
                QVERIFY(m_chooser->isVisible());
            }
            QTest::keyClick(List(), Qt::Key_Return);
            QCOMPARE(m_results, QStringList(result));
            m_results.clear();
        }
    }

    // Twice, for the same window serves every showing.
    void ClosesOnceInEveryWay() {
        for (const int key : {int(Qt::Key_Escape), int(Qt::Key_Enter), int(Qt::Key_Tab), 0,
                              int(Qt::Key_Escape), int(Qt::Key_Enter)}) {
            Show();
            Toggle(u"荧光灯"_s);
            const QRect shownAt = m_chooser->geometry();
            QCOMPARE(shownAt.topLeft(), m_cell->mapToGlobal(QPoint(0, m_cell->height())));
            QWidget other;
            if (key != 0) {
                QTest::keyClick(List(), Qt::Key(key));
            } else {
                other.show();
                other.activateWindow();
            }
            QTRY_VERIFY(!m_chooser->isVisible());
            QCoreApplication::processEvents();
            QCOMPARE(m_results, key == Qt::Key_Escape ? QStringList() : QStringList(u"荧光灯"_s));
            QCOMPARE(m_rectangle, m_results.isEmpty() ? QRect() : shownAt);
            m_results.clear();
            m_rectangle = {};
        }
    }

    // Whether the press goes on to what it hit is asked of the window, for a platform without a screen keeps
    // it back.
    void APressOutsideCloses() {
        const QPoint inCell = m_cell->geometry().center();
        for (const QPoint at : {inCell, QPoint(340, 310), inCell}) {
            m_results.clear();
            Show(u"荧光灯"_s);
            // As the window system sends it: the open list is asked first.
            QTest::mouseClick(m_owner->windowHandle(), Qt::LeftButton, {}, at);
            QCoreApplication::processEvents();
            QVERIFY(!m_chooser->isVisible());
            QCOMPARE(m_results, QStringList{u"荧光灯"_s});
            QCOMPARE(m_chooser->testAttribute(Qt::WA_NoMouseReplay), at == inCell);
        }
    }

private:
    QListWidget* List() const { return m_chooser->findChild<QListWidget*>(u"control1003"_s); }
    void Show(const QString& ticked = {}) {
        const QStringList names = ticked.split(u',', Qt::SkipEmptyParts);
        m_chooser->Show(QRect(m_cell->mapToGlobal(QPoint()), m_cell->size()), {names.begin(), names.end()});
    }
    // A name after "_" is toggled by Space.
    void Toggle(QString name) {
        const bool byKey = name.startsWith(u'_');
        const QListWidgetItem* item = List()->findItems(name.remove(u'_'), Qt::MatchExactly).constFirst();
        if (!byKey) {
            QTest::mouseClick(List()->viewport(), Qt::LeftButton, {}, List()->visualItemRect(item).center());
            return;
        }
        QTest::keyClick(List(), Qt::Key_Home);
        for (int row = List()->row(item); row > 0; --row) {
            QTest::keyClick(List(), Qt::Key_Down);
        }
        QTest::keyClick(List(), Qt::Key_Space);
    }

    std::unique_ptr<QWidget> m_owner;
    QWidget* m_cell = nullptr;
    CLamphouseTypeChoiceWindow* m_chooser = nullptr;
    QStringList m_results;
    QRect m_rectangle;
};

QTEST_MAIN(TestTypeChooser)
#include "test_type_chooser.moc"
