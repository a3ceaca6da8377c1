#include <QStringList>
#include <QTest>
#include <cmath>

#include "model/view/pinyin.h"
#include "model/view/row_view.h"
#include "model/view/text_matcher.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

struct Item {
    int ID = 0;
    CString name;
    double value = 0;

    bool operator==(const Item&) const = default;
};

using View = RowView<Item>;

RowOrder<Item> ByName(SortDirection direction = SortDirection::Ascending) {
    return {.text = [](const Item& item) { return item.name; }, .number = {}, .direction = direction};
}

RowOrder<Item> ByValue(SortDirection direction = SortDirection::Ascending) {
    return {.text = {}, .number = [](const Item& item) { return item.value; }, .direction = direction};
}

QString Shown(const View& view) {
    QStringList names;
    for (int row = 0; row < view.Count(); ++row) {
        names += view.At(row).name;
        if (view.RowOf(view.SlotAt(row)) != row) {
            names += u"lost"_s;
        }
    }
    return names.join(u' ');
}

}  // namespace

class TestRowView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void OrdersAndFilters() {
        WorkingRecords<Item> records;
        records.TakeLoaded({{1, u"直管"_s, 100},
                            {2, u"gone"_s, 0},
                            {3, u"卤钨"_s, 9},
                            {4, u"准直"_s, std::nan("")},
                            {5, u"高压钠"_s, 9},
                            {6, u"直管"_s, 20}});
        records.Remove(2);
        const View::Condition isLarge = [](const Item& item) { return item.value >= 20; };
        const struct {
            std::optional<RowOrder<Item>> order;
            View::Condition condition;
            QString shown;
        } cases[] = {
            {{}, {}, u"直管 卤钨 准直 高压钠 直管"_s},
            {ByName(), {}, u"高压钠 卤钨 直管 直管 准直"_s},
            {ByName(SortDirection::Descending), {}, u"准直 直管 直管 卤钨 高压钠"_s},
            {ByValue(), {}, u"卤钨 高压钠 直管 直管 准直"_s},
            {ByValue(SortDirection::Descending), {}, u"准直 直管 直管 卤钨 高压钠"_s},
            {{}, isLarge, u"直管 直管"_s},
            {ByValue(), isLarge, u"直管 直管"_s},
        };
        View view(records);
        for (const auto& [order, condition, shown] : cases) {
            view.Arrange(order, condition);
            QCOMPARE(Shown(view), shown);
        }
        QCOMPARE(view.At(0).ID, 6);  // 20 before 100
        view.Arrange(ByName(), {});
        QCOMPARE(view.At(2).ID, 1);  // equal texts in their own order, also downwards
        view.Arrange(ByName(SortDirection::Descending), {});
        QCOMPARE(view.At(1).ID, 1);
        records.Append({0, u"阿"_s, 0});
        view.NoteAppended();
        records.Remove(6);
        view.NoteRemoved(2);
        QCOMPARE(Shown(view), u"准直 直管 卤钨 高压钠 阿"_s);
        view.Arrange({}, isLarge);
        QCOMPARE(view.RowOf(3), -1);
    }

    // The words of the field, with the initials that a Chinese reader types.
    void InitialsOfTheField() {
        const CString words =
            u"荧光灯=ygd 白炽灯=bcd 卤钨灯=lwd 高压钠灯=gynd 金属卤化物=jslhw 混光灯=hgd 常用灯具=cydj "
            "三基色直管=sjszg 紧凑型=jcx 镇流器功率=zlqgl 筒灯=td 吸顶=xd 嵌入式=qrs 办公室=bgs "
            "教室黑板=jshb "
            "商店营业厅=sdyyt 阅览=yl 会议=hy 走廊=zl 配电=pd 无极=wj 耳房=ef 欧标=ob T8细管A型=t8xgax"_s;
        for (const CString& word : words.split(u' ')) {
            CString found;
            for (const QChar character : word.section(u'=', 0, 0)) {
                found += QChar(PinyinInitial(character));
            }
            QCOMPARE(found, word.section(u'=', 1));
        }
    }

    void Matching() {
        const struct {
            CString sought;
            CString text;
            bool found;
        } cases[] = {
            {u"荧光"_s, u"直管荧光灯"_s, true}, {u"yg"_s, u"直管荧光灯"_s, true},
            {u"YGD"_s, u"直管荧光灯"_s, true},  {u"gz"_s, u"直管荧光灯"_s, false},
            {u"zgt"_s, u"直管T8"_s, true},      {u"t8"_s, u"直管T8"_s, true},
            {u"36"_s, u"1360"_s, true},         {u""_s, u"a"_s, false},
            {u"."_s, u"15"_s, false},
        };
        for (const auto& [sought, text, found] : cases) {
            QVERIFY2(TextMatcher(sought).Matches(text) == found, qUtf8Printable(sought));
        }
        QCOMPARE(TextMatcher(u"t8"_s).Replaced(u"T8灯(t8)"_s, u"T5"_s), u"T5灯(T5)"_s);
        QCOMPARE(TextMatcher(u"yg"_s).Replaced(u"荧光"_s, u"x"_s), u"荧光"_s);
        QVERIFY(TextMatcher(u"1e5"_s).CanBeInNumber());
        QVERIFY(!TextMatcher(u"T8"_s).CanBeInNumber());
    }
};

QTEST_GUILESS_MAIN(TestRowView)
#include "test_row_view.moc"
