// The operations against a real file, looked at from behind through the C library.

#include <QTest>
#include <algorithm>
#include <functional>

#include "data/lighting_database.h"
#include "data/store/store_factory.h"
#include "tests/support/decimal_comma.h"
#include "tests/support/temporary_lighting_database.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

using LightSources = std::vector<tagLAMPHOUSEINFO>;

const CString kSomeRows =
    uR"sql(
    insert into 光源类别 (LamphouseType) values ('荧光灯'), ('LED灯'), ('混光灯');
    insert into 光源 (LamphouseType, LamphouseModel, LuminousFlux, LamphousePower, Factory, LamphouseName) values
        (1, 'T5', 2600, 28, '晨光', '直管荧光灯'), (2, 'L1', 1000.5, 9, '华灯', '球泡'), (1, 'T8', 3250, 36, '华灯', '直管荧光灯');
    insert into 灯具 values
        (1, '1,5', 'a', 'A', 70, 0, 1.2, 1.3, '华灯', '2', 1, 4, '1', '', ''),
        (2, '5', 'b', 'B', 71, 1, 1.2, 1.3, '华灯', '2', 1, 4, '1', '', ''),
        (3, '2', 'c', 'C', 72, 1, 1.2, 1.3, '华灯', '2', 1, 4, '1', '', '');
    insert into 利用系数 (LuminaireID, Pcc, Pw, Pf, RCR_RI, UtilizationFactor) values
        (1, 70, 50, 20, 1, 0.5), (1, 70, 50, 20, 2, 0.4), (1, 70, 50, 20, 3, 0.3), (2, 70, 50, 20, 1, 0.6);
    insert into 照度要求及功率密度 values
        (1, '住宅', '起居室', 'a', '0.75m', 7, 6, 100, 0, 80), (2, '住宅', '起居室', 'b', '0.75m', 7, 6, 300, 0, 80),
        (3, '住宅', '起居室', 'c', '0.75m', 7, 6, 300, 0, 80), (4, '办公', '会议室', 'd', '0.75m', 11, 9, 300, 19, 80);
)sql"_s;

template <typename Record>
std::vector<int> Ids(const std::vector<Record>& records) {
    std::vector<int> ids(records.size());
    std::transform(records.begin(), records.end(), ids.begin(),
                   [](const Record& record) { return record.ID; });
    return ids;
}

}  // namespace

class TestLightingDatabase : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { UseDecimalComma(); }
    void init();
    void StoresLightSources();
    void StoresLuminaires();
    void StoresUtilizationFactors();
    void StoresIlluminanceStandards();
    void ReadsCategories();
    void LooksUpLightSources();
    void LooksUpLuminaires();
    void NullEndsALoad_data();
    void NullEndsALoad();
    void RefusesIntegersBeyond32Bits();
    void StoresTextAsTyped_data();
    void StoresTextAsTyped();
    void TextNeverReachesOtherRows_data();
    void TextNeverReachesOtherRows();

private:
    QStringList Rows(const QString& query) const { return m_file->Raw().Rows(query); }
    // Runs the change and checks that it took exactly these rows out of the file and put exactly these in.
    void VerifyChange(const std::function<bool()>& change, const QStringList& removed,
                      const QStringList& added);

    std::unique_ptr<TemporaryLightingDatabase> m_file;
    std::unique_ptr<CLightingDatabase> m_database;
};

void TestLightingDatabase::init() {
    m_file = std::make_unique<TemporaryLightingDatabase>();
    m_file->Raw().Execute(kSomeRows);
    m_database = std::make_unique<CLightingDatabase>(CreateStoreConnection, m_file->ExecutablePath());
    QVERIFY(m_database->Connect());
}

void TestLightingDatabase::VerifyChange(const std::function<bool()>& change, const QStringList& removed,
                                        const QStringList& added) {
    QStringList expected = m_file->Snapshot();
    QVERIFY(change());
    for (const QString& row : removed) {
        QVERIFY2(expected.removeOne(row), qPrintable(row));
    }
    QStringList left = m_file->Snapshot();
    for (const QString& row : added) {
        QVERIFY2(left.removeOne(row), qPrintable(row + u" not in "_s + left.join(u'\n')));
    }
    QCOMPARE(left, expected);
}

void TestLightingDatabase::StoresLightSources() {
    tagLAMPHOUSEINFO record{-1, 2, u"M"_s, 1234567, 0.000012, u"F"_s, u"N"_s};
    VerifyChange([&] { return m_database->InsertLightSource(record); }, {},
                 {u"4|2|'M'|1234570.0|1.2e-05|'F'|'N'"_s});
    QCOMPARE(record.ID, 4);

    record = {1, 2, u"M2"_s, 10.25, 0, CString(), u"N2"_s};
    VerifyChange([&] { return m_database->UpdateLightSource(record); },
                 {u"1|1|'T5'|2600.0|28.0|'晨光'|'直管荧光灯'"_s}, {u"1|2|'M2'|10.25|0.0|''|'N2'"_s});
    tagLAMPHOUSEINFO loaded;
    QVERIFY(m_database->LoadLightSourceByID(1, loaded));
    QCOMPARE(loaded, record);

    record.ID = 0;
    VerifyChange([&] { return m_database->UpdateLightSource(record); }, {}, {});
    VerifyChange([&] { return m_database->DeleteLightSource(2); }, {u"2|2|'L1'|1000.5|9.0|'华灯'|'球泡'"_s},
                 {});
}

void TestLightingDatabase::StoresLuminaires() {
    const tagLUMINAIREINFO record{3, u"1"_s, u"n"_s,   u"m"_s, 65.5,
                                  1, 1.5,    1.25,     u"f"_s, u"1,2"_s,
                                  2, 3.5,    u"1,3"_s, u"x"_s, u"\\Vexal\\p.jpg"_s};
    const CString columns = u"|'1'|'n'|'m'|65.5|1|1.5|1.25|'f'|'1,2'|2|3.5|'1,3'|'x'|'\\Vexal\\p.jpg'"_s;
    const CString third = u"3|'2'|'c'|'C'|72.0|1|1.2|1.3|'华灯'|'2'|1|4.0|'1'|''|''"_s;
    tagLUMINAIREINFO inserted = record;
    VerifyChange([&] { return m_database->InsertLuminaire(inserted); }, {}, {u'4' + columns});
    QCOMPARE(inserted.ID, 4);
    VerifyChange([&] { return m_database->UpdateLuminaire(record); }, {third}, {u'3' + columns});

    std::vector<tagLUMINAIREINFO> loaded;
    QVERIFY(m_database->LoadLuminairesByType(u"1"_s, loaded));
    QCOMPARE(Ids(loaded), (std::vector<int>{1, 3, 4}));
    QCOMPARE(loaded[1], record);

    VerifyChange([&] { return m_database->DeleteLuminaire(2); },
                 {u"2|'5'|'b'|'B'|71.0|1|1.2|1.3|'华灯'|'2'|1|4.0|'1'|''|''"_s, u"4|2|70|50|20|1.0|0.6"_s},
                 {});
}

void TestLightingDatabase::StoresUtilizationFactors() {
    tagLUMINAIREUTILIZATIONFACTOR record{0, 3, 80, 30, 10, 0.6, 0.47};
    VerifyChange([&] { return m_database->InsertUtilizationFactor(record); }, {},
                 {u"5|3|80|30|10|0.6|0.47"_s});
    record.Pcc = 0;
    VerifyChange([&] { return m_database->UpdateUtilizationFactor(record); }, {u"5|3|80|30|10|0.6|0.47"_s},
                 {u"5|3|0|30|10|0.6|0.47"_s});
    std::vector<tagLUMINAIREUTILIZATIONFACTOR> loaded;
    QVERIFY(m_database->LoadUtilizationFactors(3, loaded));
    QCOMPARE(loaded, std::vector{record});
    VerifyChange([&] { return m_database->DeleteUtilizationFactor(5); }, {u"5|3|0|30|10|0.6|0.47"_s}, {});
    VerifyChange([&] { return m_database->DeleteUtilizationFactorsOfLuminaire(2); },
                 {u"4|2|70|50|20|1.0|0.6"_s}, {});
}

void TestLightingDatabase::StoresIlluminanceStandards() {
    tagILLUMINANCESTANDARD record{-2, u"商业"_s, u"超市"_s, u"营业厅"_s, u"地面"_s, 13, 11.5, 500, 22, 80};
    VerifyChange([&] { return m_database->InsertIlluminanceStandard(record); }, {},
                 {u"5|'商业'|'超市'|'营业厅'|'地面'|13.0|11.5|500|22|80"_s});
    record.Ra = 60;
    VerifyChange([&] { return m_database->UpdateIlluminanceStandard(record); },
                 {u"5|'商业'|'超市'|'营业厅'|'地面'|13.0|11.5|500|22|80"_s},
                 {u"5|'商业'|'超市'|'营业厅'|'地面'|13.0|11.5|500|22|60"_s});
    std::vector<tagILLUMINANCESTANDARD> loaded;
    QVERIFY(m_database->LoadIlluminanceStandards(u"商业"_s, u"超市"_s, loaded));
    QCOMPARE(loaded, std::vector{record});
    VerifyChange([&] { return m_database->DeleteIlluminanceStandard(4); },
                 {u"4|'办公'|'会议室'|'d'|'0.75m'|11.0|9.0|300|19|80"_s}, {});

    std::vector<CString> texts;
    QVERIFY(m_database->LoadVocations(texts));
    QCOMPARE(texts, (std::vector{u"住宅"_s, u"商业"_s}));
    QVERIFY(m_database->LoadBuildingTypes(u"住宅"_s, texts));
    QCOMPARE(texts, std::vector{u"起居室"_s});
}

void TestLightingDatabase::ReadsCategories() {
    std::vector<tagLAMPHOUSETYPE> types;
    QVERIFY(m_database->LoadLampTypes(types));
    QCOMPARE(types, (std::vector<tagLAMPHOUSETYPE>{{2, u"LED灯"_s}, {3, u"混光灯"_s}, {1, u"荧光灯"_s}}));
    CString name;
    QVERIFY(m_database->GetLampTypeName(3, name));
    QCOMPARE(name, u"混光灯"_s);
    int id = 0;
    QVERIFY(m_database->FindLampTypeID(u"led灯"_s, id));  // letters compare without regard to case
    QCOMPARE(id, 2);
}

void TestLightingDatabase::LooksUpLightSources() {
    LightSources all;
    LightSources some;
    QVERIFY(m_database->LoadAllLightSources(all));
    QCOMPARE(Ids(all), (std::vector<int>{1, 3, 2}));
    QVERIFY(m_database->LoadLightSourcesByType(1, some));
    QCOMPARE(some, (LightSources{all[0], all[1]}));
    QVERIFY(m_database->LoadLightSourcesByTypeName(u"LED灯"_s, some));
    QCOMPARE(some, LightSources{all[2]});
    QVERIFY(m_database->LoadLightSourcesByFactory(u"华灯"_s, some));
    QCOMPARE(Ids(some), (std::vector<int>{2, 3}));

    std::vector<CString> texts;
    QVERIFY(m_database->LoadLightSourceFactories(texts));
    QCOMPARE(texts, (std::vector{u"华灯"_s, u"晨光"_s}));
    QVERIFY(m_database->LoadLightSourceNamesByType(2, texts));
    QCOMPARE(texts, std::vector{u"球泡"_s});

    int id = 0;
    CString typeName;
    QVERIFY(m_database->FindLightSourceID(u"直管荧光灯"_s, u"T8"_s, id));
    QCOMPARE(id, 3);
    QVERIFY(m_database->FindLightSourceID(CString(), u"L1"_s, id));
    QCOMPARE(id, 2);
    QVERIFY(m_database->FindLightSourceTypeName(u"球泡"_s, CString(), typeName));
    QCOMPARE(typeName, u"LED灯"_s);
    QVERIFY(m_database->FindLightSourceTypeName(u"球泡"_s, u"T8"_s, typeName));
    QCOMPARE(typeName, CString());
}

void TestLightingDatabase::LooksUpLuminaires() {
    std::vector<tagLUMINAIREINFO> records;
    QVERIFY(m_database->LoadLuminairesByType(u"5"_s, records));
    QCOMPARE(Ids(records), (std::vector<int>{1, 2}));
    QVERIFY(!m_database->LoadAllLuminaires(records));  // its statement leaves BallastPower out
    QVERIFY(records.empty());
    m_file->Raw().Execute(u"delete from 灯具"_s);
    QVERIFY(m_database->LoadAllLuminaires(records));
}

void TestLightingDatabase::NullEndsALoad_data() {
    QTest::addColumn<QString>("table");
    QTest::addColumn<QStringList>("columns");
    QTest::newRow("light sources")
        << u"光源"_s << u"LamphouseModel LuminousFlux LamphousePower Factory LamphouseName"_s.split(u' ');
    QTest::newRow("luminaires")
        << u"灯具"_s
        << u"LampName LampModel LuminaireEfficiency UtilizationFactorType MaxLhAA MaxLhBB "
           "Factory LamphouseCount BallastCount BallastPower DefaultLamphouse "
           "UtilizationFactorFormat LampPhoto"_s.split(u' ');
    QTest::newRow("factors") << u"利用系数"_s << u"Pcc Pw Pf RCR_RI UtilizationFactor"_s.split(u' ');
    QTest::newRow("standards")
        << u"照度要求及功率密度"_s
        << u"Location ReferencePlane ActualLPD ObjectiveLPD IlluminanceStandard UGR Ra"_s.split(u' ');
}

void TestLightingDatabase::NullEndsALoad() {
    QFETCH(QString, table);
    QFETCH(QStringList, columns);
    m_file->Raw().Execute(u"update 光源 set LamphouseType=1; update 灯具 set LamphouseTypeID='1'"_s);
    const auto load = [&](std::vector<int>& ids) {
        LightSources sources;
        std::vector<tagLUMINAIREINFO> luminaires;
        std::vector<tagLUMINAIREUTILIZATIONFACTOR> factors;
        std::vector<tagILLUMINANCESTANDARD> standards;
        const bool loaded = table == u"光源"   ? m_database->LoadLightSourcesByType(1, sources)
                            : table == u"灯具" ? m_database->LoadLuminairesByType(u"1"_s, luminaires)
                            : table == u"利用系数"
                                ? m_database->LoadUtilizationFactors(1, factors)
                                : m_database->LoadIlluminanceStandards(u"住宅"_s, u"起居室"_s, standards);
        for (const auto& part : {Ids(sources), Ids(luminaires), Ids(factors), Ids(standards)}) {
            ids.insert(ids.end(), part.begin(), part.end());
        }
        return loaded;
    };
    std::vector<int> whole;
    QVERIFY(load(whole));
    QCOMPARE(whole, (std::vector<int>{1, 2, 3}));
    for (const QString& column : columns) {
        const QString was = m_file->Raw().Rows(u"select %1 from %2 where ID=2"_s.arg(column, table)).value(0);
        m_file->Raw().Execute(u"update %1 set %2=NULL where ID=2"_s.arg(table, column));
        std::vector<int> kept;
        QVERIFY2(!load(kept), qPrintable(column));
        QCOMPARE(kept, std::vector<int>{1});
        m_file->Raw().Execute(u"update %1 set %2=%3 where ID=2"_s.arg(table, column, was));
    }
    m_file->Raw().Execute(u"update 光源类别 set LamphouseType=NULL where ID=3"_s);
    CString name;
    QVERIFY(!m_database->GetLampTypeName(3, name));
}

void TestLightingDatabase::RefusesIntegersBeyond32Bits() {
    m_file->Raw().Execute(u"insert into 光源 values (2147483648, 1, '', 0, 0, '', '')"_s);
    LightSources records;
    QVERIFY(!m_database->LoadLightSourcesByType(1, records));
    QCOMPARE(Ids(records), (std::vector<int>{1, 3}));
    tagLAMPHOUSEINFO record;
    QVERIFY(!m_database->InsertLightSource(record));
    QCOMPARE(record.ID, 0);
}

void TestLightingDatabase::StoresTextAsTyped_data() {
    QTest::addColumn<QString>("text");
    QTest::newRow("percent signs") << u"%s %d %G %% %1 %n"_s;
    QTest::newRow("looks like SQL") << u"\"); delete from 光源; -- /* ` [x] ? :a @b $c \\"_s;
    QTest::newRow("rewritten words") << u"delete * from 光源"_s;
    QTest::newRow("control characters") << u"\x1\t\r\n\x1b\x7f\u0085"_s;
    QTest::newRow("beyond the first plane") << u"💡𠮷 e\u0301"_s;
    QTest::newRow("right to left") << u"\u202eשלום عربى\u202c"_s;
    QTest::newRow("byte order mark") << u"\ufefftext\uffff"_s;
    QTest::newRow("blanks at the ends") << u"  x  "_s;
    QTest::newRow("one megabyte") << u"照明%s"_s.repeated(262144);
}

void TestLightingDatabase::StoresTextAsTyped() {
    QFETCH(QString, text);
    tagLAMPHOUSEINFO record{0, 1, u"M"_s, 1, 2, text, u"N"_s};
    QVERIFY(m_database->InsertLightSource(record));
    QCOMPARE(m_file->Raw().Text(u"select Factory from 光源 where ID=4"_s), text.toUtf8());
    LightSources found;
    QVERIFY(m_database->LoadLightSourcesByFactory(text, found));
    QCOMPARE(found, LightSources{record});
    record.LamphouseModel = text;
    QVERIFY(m_database->UpdateLightSource(record));
    int id = 0;
    QVERIFY(m_database->FindLightSourceID(u"N"_s, text, id));
    QCOMPARE(id, 4);
    QCOMPARE(Rows(u"select count(*) from 光源"_s), QStringList{u"4"_s});
}

void TestLightingDatabase::TextNeverReachesOtherRows_data() {
    QTest::addColumn<QString>("text");
    QTest::newRow("second assignment") << u"x',LamphouseName='y' where ID=3 --"_s;
    QTest::newRow("second statement") << u"x'; delete from 光源; --"_s;
    QTest::newRow("always true") << u"' or '1'='1"_s;
    QTest::newRow("doubled quote") << u"it''s"_s;
    QTest::newRow("union") << u"' union select * from 光源 --"_s;
    QTest::newRow("zero") << u"x\0', LamphouseName='y"_s;
    QTest::newRow("half of a pair") << QString(QChar(0xDC00));
}

// Every text of every operation, one after the other.
void TestLightingDatabase::TextNeverReachesOtherRows() {
    QFETCH(QString, text);
    const QStringList before = m_file->Snapshot();
    for (auto field :
         {&tagLAMPHOUSEINFO::LamphouseModel, &tagLAMPHOUSEINFO::Factory, &tagLAMPHOUSEINFO::LamphouseName}) {
        tagLAMPHOUSEINFO record;
        record.ID = 1;
        record.*field = text;
        QVERIFY(!m_database->UpdateLightSource(record));
        QVERIFY(!m_database->InsertLightSource(record));
    }
    using Luminaire = tagLUMINAIREINFO;
    for (auto field : {&Luminaire::LamphouseTypeID, &Luminaire::LampName, &Luminaire::LampModel,
                       &Luminaire::Factory, &Luminaire::LamphouseCount, &Luminaire::DefaultLamphouse,
                       &Luminaire::UtilizationFactorFormat, &Luminaire::LampPhoto}) {
        Luminaire record;
        record.ID = 1;
        record.*field = text;
        QVERIFY(!m_database->UpdateLuminaire(record));
        QVERIFY(!m_database->InsertLuminaire(record));
    }
    using Standard = tagILLUMINANCESTANDARD;
    for (auto field :
         {&Standard::Vocation, &Standard::BuildingType, &Standard::Location, &Standard::ReferencePlane}) {
        Standard record;
        record.ID = 1;
        record.*field = text;
        QVERIFY(!m_database->UpdateIlluminanceStandard(record));
        QVERIFY(!m_database->InsertIlluminanceStandard(record));
    }
    int id = 0;
    CString name;
    LightSources sources;
    std::vector<Luminaire> luminaires;
    std::vector<Standard> standards;
    std::vector<CString> texts;
    QVERIFY(!m_database->FindLampTypeID(text, id));
    QVERIFY(!m_database->LoadLightSourcesByFactory(text, sources));
    QVERIFY(!m_database->LoadLightSourcesByTypeName(text, sources));
    QVERIFY(!m_database->FindLightSourceID(text, u"x"_s, id));
    QVERIFY(!m_database->FindLightSourceID(u"x"_s, text, id));
    QVERIFY(!m_database->FindLightSourceTypeName(text, CString(), name));
    QVERIFY(!m_database->FindLightSourceTypeName(CString(), text, name));
    QVERIFY(!m_database->LoadLuminairesByType(text, luminaires));
    QVERIFY(!m_database->LoadBuildingTypes(text, texts));
    QVERIFY(!m_database->LoadIlluminanceStandards(text, u"x"_s, standards));
    QVERIFY(!m_database->LoadIlluminanceStandards(u"x"_s, text, standards));
    QCOMPARE(m_file->Snapshot(), before);
}

QTEST_GUILESS_MAIN(TestLightingDatabase)
#include "test_lighting_database.moc"
