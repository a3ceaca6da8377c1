// The operations against a real file, looked at from behind through the C library.

#include <QTest>
#include <algorithm>

#include "data/lighting_database.h"
#include "data/store/store_factory.h"
#include "tests/support/decimal_comma.h"
#include "tests/support/failing_connection.h"
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
    void init() {
        m_file = std::make_unique<TemporaryLightingDatabase>();
        m_file->Raw().Execute(kSomeRows);
        m_database = std::make_unique<CLightingDatabase>(CreateStoreConnection, m_file->ExecutablePath());
        QVERIFY(m_database->Connect());
    }

    // What each statement says is tested beside; here it is what a file makes of it.
    void ReadsBackWhatItInserted() {
        using Db = CLightingDatabase;
        const auto verify = [this](auto record, auto insert, const auto& load) {
            auto inserted = record;
            inserted.ID = 0;
            QVERIFY((*m_database.*insert)(inserted));
            std::vector<decltype(record)> loaded;
            QVERIFY(load(loaded));
            QCOMPARE(inserted, record);
            QCOMPARE(loaded.back(), record);
        };
        verify(tagLUMINAIREINFO{4, u"1"_s, u"n"_s, u"m"_s, 65.5, 1, 1.5, 1.25, u"f"_s, u"1,2"_s, 2, 3.5,
                                u"1,3"_s, u"x"_s, u"\\Vexal\\p.jpg"_s},
               &Db::InsertLuminaire,
               [&](auto& loaded) { return m_database->LoadLuminairesByType(u"1"_s, loaded); });
        const tagLAMPHOUSEINFO source{4, 2, u"M"_s, 123456, 0.000012, u"F"_s, u"N"_s};
        verify(source, &Db::InsertLightSource,
               [&](auto& loaded) { return m_database->LoadLightSourcesByFactory(u"F"_s, loaded); });
        verify(tagLUMINAIREUTILIZATIONFACTOR{5, 3, 80, 30, 10, 0.6, 0.47}, &Db::InsertUtilizationFactor,
               [&](auto& loaded) { return m_database->LoadUtilizationFactors(3, loaded); });
        verify(tagILLUMINANCESTANDARD{5, u"商业"_s, u"超市"_s, u"厅"_s, u"地面"_s, 13, 11.5, 500, 22, 80},
               &Db::InsertIlluminanceStandard, [&](auto& loaded) {
                   return m_database->LoadIlluminanceStandards(u"商业"_s, u"超市"_s, loaded);
               });
        LightSources sources;
        QVERIFY(m_database->LoadLightSourcesByTypeName(u"led灯"_s, sources));  // letters of either case
        QCOMPARE(sources.back(), source);
        std::vector<tagLUMINAIREINFO> luminaires;
        QVERIFY(m_database->LoadLuminairesByType(u"5"_s, luminaires));
        QCOMPARE(Ids(luminaires), (std::vector<int>{1, 2}));  // "1,5" and "5"
        QVERIFY(!m_database->LoadAllLuminaires(luminaires));  // its statement leaves BallastPower out
    }

    // Inserts whose ID could not be read back are in the file, and are not made again.
    void InsertsOnceWhatIsTriedAgain() {
        StatementLog log;
        CLightingDatabase database(FailingConnection::Factory(log), m_file->ExecutablePath());
        QVERIFY(database.Connect());
        const tagLAMPHOUSEINFO record{0, 1, u"M"_s, 1.5, 2, u"F"_s, u""_s};
        LightSources records{record, record, record};
        QVERIFY(database.InsertLightSource(records[0]));  // an equal one, ID 4
        log.failing = {u"select max(ID)"_s};
        QVERIFY(!database.InsertLightSource(records[1]));
        log.failing = {u"select"_s};
        QVERIFY(!database.InsertLightSource(records[1]));  // the file cannot be searched
        log.failing.clear();
        QVERIFY(database.InsertLightSource(records[1]) && database.InsertLightSource(records[2]));
        QCOMPARE(Ids(records), (std::vector<int>{4, 5, 6}));
        QCOMPARE(m_file->Raw().Text(u"select max(ID) || ' ' || count(*) from 光源"_s), QByteArray("6 6"));
    }

    void WhatIsNoValueEndsALoad() {
        std::vector<tagILLUMINANCESTANDARD> standards;
        for (const CString& column : {u"Location"_s, u"ActualLPD"_s, u"Ra"_s}) {
            init();
            m_file->Raw().Execute(u"update 照度要求及功率密度 set %1=NULL where ID=2"_s.arg(column));
            QVERIFY2(!m_database->LoadIlluminanceStandards(u"住宅"_s, u"起居室"_s, standards),
                     qPrintable(column));
            QCOMPARE(Ids(standards), std::vector<int>{1});
        }
        LightSources sources;
        m_file->Raw().Execute(u"insert into 光源 values (2147483648, 1, '', 0, 0, '', '')"_s);
        QVERIFY(!m_database->LoadLightSourcesByType(1, sources));  // no ID of 32 bits
        QCOMPARE(Ids(sources), (std::vector<int>{1, 3}));
    }

    // More texts than the store keeps at hand, with makers coming back after a while.
    void ReadsTheTextsOfEachRow() {
        m_file->Raw().Execute(
            u"with recursive n(i) as (select 4 union all select i + 1 from n where i < 3000) insert into "
            u"光源 "
            "select i, 9, 'M' || i, i, 1, 'F' || (i % 7), '' from n"_s);
        LightSources loaded;
        QVERIFY(m_database->LoadLightSourcesByType(9, loaded));
        QCOMPARE(loaded.size(), std::size_t{2997});
        for (const tagLAMPHOUSEINFO& record : loaded) {
            const CString id = CString::number(record.ID);
            QCOMPARE(record, (tagLAMPHOUSEINFO{record.ID, 9, u'M' + id, double(record.ID), 1,
                                               u'F' + CString::number(record.ID % 7), u""_s}));
        }
    }

    void StoresTextAsTyped() {
        for (const QString& text :
             {u"%s %d %G %% %1 %n"_s, u"\"); delete from 光源; -- /* ` [x] ? :a @b $c \\"_s,
              u"delete * from 光源"_s, u"\x1\t\r\n\x1b\x7f\u0085"_s, u"💡𠮷 e\u0301"_s,
              u"\u202eשלום عربى\u202c"_s, u"\ufefftext\uffff"_s, u"  x  "_s, u"照明%s"_s.repeated(262144)}) {
            init();
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
            QCOMPARE(m_file->Raw().Text(u"select count(*) from 光源"_s), QByteArray("4"));
        }
    }

private:
    std::unique_ptr<TemporaryLightingDatabase> m_file;
    std::unique_ptr<CLightingDatabase> m_database;
};

QTEST_GUILESS_MAIN(TestLightingDatabase)
#include "test_lighting_database.moc"
