#include <QTest>

#include "model/reference_lists.h"
#include "tests/support/failing_connection.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

// Names that hold a ":" or a ",", nothing at all, and two light sources that read the same.
const QString kFile =
    u"insert into 光源类别 values (1,'荧光灯'),(2,'白炽灯'),(3,'常用灯具'),(5,'混光灯'),(15,'LED,模组');"
    "insert into 光源 values (11,1,'T8',1,1,'','直管'),(12,1,'T5',1,1,'','细管'),(13,2,'Q',1,1,'','泡:a'),"
    "(14,2,'',1,1,'','逗,号'),(16,15,'',1,1,'',''),(41,2,'T8',1,1,'','直管');"_s;

struct Lists : FailingDatabase, ReferenceLists {
    Lists() : FailingDatabase(kFile), ReferenceLists(database) {
        Categories();
        log = {};
    }
};

QString Joined(const std::vector<CString>& texts) {
    return QStringList(texts.begin(), texts.end()).join(u'|');
}

}  // namespace

class TestReferenceLists : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void CategoriesByIdAndByName() {
        Lists lists;
        QCOMPARE(lists.CategoryNames(u"15,77,1"_s), u"LED,模组,荧光灯"_s);
        QCOMPARE(lists.CategoryIds(u"LED,模组,荧光灯,没有"_s), u"15,1,0"_s);
        QCOMPARE(Joined(lists.SplitCategoryNames(u"LED,模组,荧光灯"_s)), u"LED,模组|荧光灯"_s);
        QCOMPARE(lists.LightSourceCategoryNames().size(), 3U);
        QVERIFY(lists.IsComplete());
        const qsizetype asked = lists.log.statements.size();
        lists.CategoryNames(u"15,77,1"_s);
        lists.CategoryId(u"荧光灯"_s);
        QCOMPARE(lists.log.statements.size(), asked);  // each is asked for once
        lists.log.failing = QStringList{u"光源类别"_s};
        lists.Invalidate();
        QCOMPARE(lists.CategoryId(u"荧光灯"_s), 1);
        QCOMPARE(lists.CategoryName(1), u"荧光灯"_s);
        QVERIFY(lists.IsComplete());
        QCOMPARE(lists.CategoryName(77), QString());
        QVERIFY(!lists.IsComplete());
    }

    void LightSourceTextsFindTheirIds() {
        Lists lists;
        QCOMPARE(lists.LightSourceIds(u"逗,号:,细管:T5"_s, {}), u"14,12"_s);
        const QString texts = u"11,14,16,999,13,12x"_s;
        QCOMPARE(lists.LightSourceTexts(texts), u"直管:T8,逗,号:,:,999,泡:a:Q,12x"_s);
        QCOMPARE(lists.LightSourceIds(lists.LightSourceTexts(texts), {}), texts);
        QCOMPARE(lists.LightSourceIds(u"泡:a:Q"_s, {}), u"13"_s);
        QCOMPARE(lists.LightSourceIds(u"直管:T8"_s, u"41,12"_s), u"41"_s);  // the one that was there
        QCOMPARE(lists.LightSourceIds(u"没有:X"_s, {}), u"没有:X"_s);
        QCOMPARE(lists.LightSourceId(u"没有:X"_s), 0);
        QVERIFY(lists.IsComplete());
        QCOMPARE(Joined(*lists.LightSources(u"2,77,1"_s)), u"泡:a:Q|逗,号:|直管:T8|直管:T8|细管:T5"_s);
        QCOMPARE(Joined(*lists.LightSourcesOfCategory(u"荧光灯"_s)), u"直管:T8|细管:T5"_s);
    }

    // Names may change hands in another program.
    void InvalidatedListsAreReadAnew() {
        Lists lists;
        QCOMPARE(lists.LightSourceTexts(u"11"_s), u"直管:T8"_s);
        lists.LightSources(u"1"_s);
        lists.LightSourcesOfCategory(u"荧光灯"_s);
        lists.LightSourceIds(u"细管:T5"_s, {});
        lists.file.Raw().Execute(u"update 光源 set LamphouseName='旧' where ID in (11,12)"_s);
        for (const bool isRead : {false, true}) {
            const QString text = isRead ? u"旧:T8"_s : u"直管:T8"_s;
            QCOMPARE(lists.LightSourceTexts(u"11"_s), text);
            QCOMPARE(lists.LightSources(u"1"_s)->front(), text);
            QCOMPARE(lists.LightSourcesOfCategory(u"荧光灯"_s)->front(), text);
            QCOMPARE(lists.LightSourceIds(u"细管:T5"_s, {}), isRead ? u"细管:T5"_s : u"12"_s);
            lists.Invalidate();
        }
        // Former texts stand while the database does not answer.
        lists.log.failing = QStringList{u"from 光源 "_s};
        QCOMPARE(lists.LightSourceTexts(u"11"_s), u"旧:T8"_s);
        QVERIFY(!lists.IsComplete());
    }

    void ATextThatWasNotFoundIsResolvedLater() {
        Lists lists;
        lists.log.failing = QStringList{u"from 光源 "_s};
        QCOMPARE(lists.LightSourceIds(u"细管:T5"_s, {}), u"细管:T5"_s);
        QVERIFY(!lists.IsComplete());
        lists.log.failing.clear();
        lists.Invalidate();
        QVERIFY(lists.IsComplete());
        QCOMPARE(lists.ResolvedLightSourceIds(u"细管:T5,11"_s), u"12,11"_s);
        QCOMPARE(lists.ResolvedLightSourceIds(u"999,"_s), u"999,"_s);
    }

    void TheDefaultLightSourceFollowsTheCategories() {
        Lists lists;
        QCOMPARE(lists.DefaultLightSource(u"1"_s, u"12"_s), u"12"_s);
        QCOMPARE(lists.DefaultLightSource(u"2"_s, u"12"_s), u"13"_s);
        QCOMPARE(lists.DefaultLightSource(u"77"_s, u"12"_s), QString());
        QCOMPARE(lists.DefaultLightSource(u"5,2"_s, u"11,12"_s), u"11,12"_s);
        // An incomplete list takes nothing away.
        lists.file.Raw().Execute(u"update 光源 set Factory=null where ID=13"_s);
        lists.Invalidate();
        QCOMPARE(lists.DefaultLightSource(u"2"_s, u"12"_s), u"12"_s);
        QVERIFY(!lists.IsComplete());
    }
};

QTEST_GUILESS_MAIN(TestReferenceLists)
#include "test_reference_lists.moc"
