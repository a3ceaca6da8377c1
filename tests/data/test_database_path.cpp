// Where the database lies, told from the executable's path alone.

#include <QTest>

#include "data/database_path.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestDatabasePath : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void FindsTheParentFolder_data();
    void FindsTheParentFolder();
    void WritesPathsAsThisPlatformDoes();
};

void TestDatabasePath::FindsTheParentFolder_data() {
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QString>("folder");
    QTest::newRow("drive") << u"C:\\Programs\\Lighting\\Bin\\tool.exe"_s << u"C:\\Programs\\Lighting"_s;
    QTest::newRow("root of a drive") << u"C:\\tool.exe"_s << u"C:"_s;
    QTest::newRow("below the root of a drive") << u"C:\\Bin\\tool.exe"_s << u"C:"_s;
    QTest::newRow("slashes") << u"/opt/q/bin/quorvane"_s << u"\\opt\\q"_s;
    QTest::newRow("both separators") << u"C:/照明 设计/Bin\\tool.exe"_s << u"C:\\照明 设计"_s;
    QTest::newRow("network") << u"\\\\server\\share\\bin\\x.exe"_s << u"\\\\server\\share"_s;
    QTest::newRow("doubled separator") << u"C:\\Lighting\\\\Bin\\tool.exe"_s << u"C:\\Lighting"_s;
    QTest::newRow("root") << u"/quorvane"_s << u""_s;
    QTest::newRow("name alone") << u"quorvane"_s << u""_s;
    QTest::newRow("nothing") << u""_s << u""_s;
}

void TestDatabasePath::FindsTheParentFolder() {
    QFETCH(QString, executable);
    QFETCH(QString, folder);
    QCOMPARE(ApplicationParentFolder(executable), folder);
    QCOMPARE(DatabasePath(executable), folder.isEmpty() ? folder : folder + u"\\Vexal\\灯具数据库.mdb"_s);
}

void TestDatabasePath::WritesPathsAsThisPlatformDoes() {
#ifdef Q_OS_WIN
    QCOMPARE(NativePath(u"C:\\a\\b"_s), u"C:\\a\\b"_s);
#else
    QCOMPARE(NativePath(u"\\opt\\a b\\灯.mdb"_s), u"/opt/a b/灯.mdb"_s);
#endif
}

QTEST_GUILESS_MAIN(TestDatabasePath)
#include "test_database_path.moc"
