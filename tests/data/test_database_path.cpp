// Where the database lies, told from the executable's path alone.

#include <QTest>

#include "data/database_path.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestDatabasePath : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void FindsTheParentFolder() {
        const std::pair<CString, CString> cases[]{
            {u"C:\\Programs\\Lighting\\Bin\\tool.exe"_s, u"C:\\Programs\\Lighting"_s},
            {u"C:\\tool.exe"_s, u"C:"_s},
            {u"C:\\Bin\\tool.exe"_s, u"C:"_s},
            {u"/opt/q/bin/quorvane"_s, u"\\opt\\q"_s},
            {u"C:/照明 设计/Bin\\tool.exe"_s, u"C:\\照明 设计"_s},
            {u"\\\\server\\share\\bin\\x.exe"_s, u"\\\\server\\share"_s},
            {u"C:\\Lighting\\\\Bin\\tool.exe"_s, u"C:\\Lighting"_s},
            {u"/quorvane"_s, u""_s},
            {u"quorvane"_s, u""_s},
            {u""_s, u""_s},
        };
        for (const auto& [executable, folder] : cases) {
            QCOMPARE(ApplicationParentFolder(executable), folder);
            QCOMPARE(DatabasePath(executable),
                     folder.isEmpty() ? folder : folder + u"\\Vexal\\灯具数据库.mdb"_s);
        }
#ifndef Q_OS_WIN
        QCOMPARE(NativePath(u"\\opt\\a b\\灯.mdb"_s), u"/opt/a b/灯.mdb"_s);
#endif
    }
};

QTEST_GUILESS_MAIN(TestDatabasePath)
#include "test_database_path.moc"
