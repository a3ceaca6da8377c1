// What the operations ask of a connection, word for word, and what a real file makes of it, looked at from
// behind through the C library.

#include <QLocale>
#include <QTest>
#include <algorithm>
#include <map>

#include "data/stored_records.h"
#include "tests/support/failing_connection.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

using LightSources = std::vector<tagLAMPHOUSEINFO>;

const tagLAMPHOUSEINFO kLightSource{3, 7, u"TL5 28W/840"_s, 2600, 28.5, u"晨光照明"_s, u"直管荧光灯"_s};
const tagLUMINAIREINFO kLuminaire{
    4, u"1,5"_s, u"格栅灯"_s, u"GS-236"_s, 0.000012,
    1, 1.25,     1234567,     u"华灯"_s,   u"2,1"_s,
    3, 72.5,     u"11,12"_s,  u"F"_s,      u"\\Vexal\\LuminairePhotoLib\\4.jpg"_s};
const tagLUMINAIREUTILIZATIONFACTOR kFactor{5, 4, 70, 50, 20, 0.6, 0.47};
const tagILLUMINANCESTANDARD kStandard{6, u"住宅"_s, u"起居室"_s, u"客厅"_s, u"0.75m水平面"_s,
                                       7, 6,         300,         19,        80};

// What an operation may be given and what it may fill, holding something to begin with.
struct Held {
    tagLAMPHOUSEINFO source = kLightSource;
    tagLUMINAIREINFO luminaire = kLuminaire;
    tagLUMINAIREUTILIZATIONFACTOR factor = kFactor;
    tagILLUMINANCESTANDARD standard = kStandard;
    CString word = u"%s%%"_s;
    CString other = u"M"_s;
    int id = 42;
    CString text = u"kept"_s;
    std::vector<CString> texts{u"kept"_s};
    std::vector<tagLAMPHOUSETYPE> types{{42, u"kept"_s}};
    std::vector<tagLAMPHOUSEINFO> sources{kLightSource};
    std::vector<tagLUMINAIREINFO> luminaires{kLuminaire};
    std::vector<tagLUMINAIREUTILIZATIONFACTOR> factors{kFactor};
    std::vector<tagILLUMINANCESTANDARD> standards{kStandard};
    bool operator==(const Held&) const = default;

    // Each text with the column that it is written to; "" for one that several columns are compared with.
    std::vector<std::pair<CString, CString*>> GivenTexts() {
        tagLUMINAIREINFO& l = luminaire;
        tagILLUMINANCESTANDARD& s = standard;
        // clang-format off
        return {{u"LamphouseModel"_s, &source.LamphouseModel}, {u"Factory"_s, &source.Factory}, {u"LamphouseName"_s, &source.LamphouseName},
                {u"LamphouseTypeID"_s, &l.LamphouseTypeID}, {u"LampName"_s, &l.LampName}, {u"LampModel"_s, &l.LampModel}, {u"Factory"_s, &l.Factory},
                {u"LamphouseCount"_s, &l.LamphouseCount}, {u"DefaultLamphouse"_s, &l.DefaultLamphouse},
                {u"UtilizationFactorFormat"_s, &l.UtilizationFactorFormat}, {u"LampPhoto"_s, &l.LampPhoto},
                {u"Vocation"_s, &s.Vocation}, {u"BuildingType"_s, &s.BuildingType}, {u"Location"_s, &s.Location}, {u"ReferencePlane"_s, &s.ReferencePlane},
                {u""_s, &word}, {u""_s, &other}};
        // clang-format on
    }
};

using Db = CLightingDatabase;
struct Operation {
    CString name;  // in statements.txt
    bool (*run)(Db& db, Held& held);
};

// clang-format off
const std::vector<Operation> kOperations{
{u"InsertLightSource"_s, [](Db& db, Held& held) { return db.InsertLightSource(held.source); }},
{u"UpdateLightSource"_s, [](Db& db, Held& held) { return db.UpdateLightSource(held.source); }},
{u"DeleteLightSource"_s, [](Db& db, Held&) { return db.DeleteLightSource(-9); }},
{u"InsertLuminaire"_s, [](Db& db, Held& held) { return db.InsertLuminaire(held.luminaire); }},
{u"UpdateLuminaire"_s, [](Db& db, Held& held) { return db.UpdateLuminaire(held.luminaire); }},
{u"DeleteLuminaire"_s, [](Db& db, Held&) { return db.DeleteLuminaire(-9); }},
{u"InsertUtilizationFactor"_s, [](Db& db, Held& held) { return db.InsertUtilizationFactor(held.factor); }},
{u"UpdateUtilizationFactor"_s, [](Db& db, Held& held) { return db.UpdateUtilizationFactor(held.factor); }},
{u"DeleteUtilizationFactor"_s, [](Db& db, Held&) { return db.DeleteUtilizationFactor(-9); }},
{u"InsertIlluminanceStandard"_s, [](Db& db, Held& held) { return db.InsertIlluminanceStandard(held.standard); }},
{u"UpdateIlluminanceStandard"_s, [](Db& db, Held& held) { return db.UpdateIlluminanceStandard(held.standard); }},
{u"DeleteIlluminanceStandard"_s, [](Db& db, Held&) { return db.DeleteIlluminanceStandard(-9); }},
{u"DeleteUtilizationFactorsOfLuminaire"_s, [](Db& db, Held&) { return db.DeleteUtilizationFactorsOfLuminaire(8); }},
{u"LoadLampTypes"_s, [](Db& db, Held& held) { return db.LoadLampTypes(held.types); }},
{u"GetLampTypeName"_s, [](Db& db, Held& held) { return db.GetLampTypeName(2, held.text); }},
{u"FindLampTypeID"_s, [](Db& db, Held& held) { return db.FindLampTypeID(held.word, held.id); }},
{u"LoadAllLightSources"_s, [](Db& db, Held& held) { return db.LoadAllLightSources(held.sources); }},
{u"LoadLightSourceFactories"_s, [](Db& db, Held& held) { return db.LoadLightSourceFactories(held.texts); }},
{u"LoadLightSourcesByFactory"_s, [](Db& db, Held& held) { return db.LoadLightSourcesByFactory(held.word, held.sources); }},
{u"LoadLightSourceByID"_s, [](Db& db, Held& held) { return db.LoadLightSourceByID(3, held.source); }},
{u"LoadLightSourcesByType"_s, [](Db& db, Held& held) { return db.LoadLightSourcesByType(7, held.sources); }},
{u"LoadLightSourcesByTypeName"_s, [](Db& db, Held& held) { return db.LoadLightSourcesByTypeName(held.word, held.sources); }},
{u"LoadLightSourceNamesByType"_s, [](Db& db, Held& held) { return db.LoadLightSourceNamesByType(7, held.texts); }},
{u"FindLightSourceID (name and model)"_s, [](Db& db, Held& held) { return db.FindLightSourceID(held.word, held.other, held.id); }},
{u"FindLightSourceID (name)"_s, [](Db& db, Held& held) { return db.FindLightSourceID(held.word, u""_s, held.id); }},
{u"FindLightSourceID (model)"_s, [](Db& db, Held& held) { return db.FindLightSourceID(u""_s, held.other, held.id); }},
{u"FindLightSourceTypeName (name and model)"_s, [](Db& db, Held& held) { return db.FindLightSourceTypeName(held.word, held.other, held.text); }},
{u"FindLightSourceTypeName (name)"_s, [](Db& db, Held& held) { return db.FindLightSourceTypeName(held.word, u""_s, held.text); }},
{u"FindLightSourceTypeName (model)"_s, [](Db& db, Held& held) { return db.FindLightSourceTypeName(u""_s, held.other, held.text); }},
{u"LoadAllLuminaires"_s, [](Db& db, Held& held) { return db.LoadAllLuminaires(held.luminaires); }},
{u"LoadLuminairesByType"_s, [](Db& db, Held& held) { return db.LoadLuminairesByType(held.word, held.luminaires); }},
{u"LoadUtilizationFactors"_s, [](Db& db, Held& held) { return db.LoadUtilizationFactors(4, held.factors); }},
{u"LoadVocations"_s, [](Db& db, Held& held) { return db.LoadVocations(held.texts); }},
{u"LoadBuildingTypes"_s, [](Db& db, Held& held) { return db.LoadBuildingTypes(held.word, held.texts); }},
{u"LoadIlluminanceStandards"_s, [](Db& db, Held& held) { return db.LoadIlluminanceStandards(held.word, held.other, held.standards); }},
};
// clang-format on

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
    void initTestCase() {
        QLocale::setDefault(QLocale(QLocale::German));
        CString name;
        const CString statements = CString::fromUtf8(Contents(QStringLiteral(STATEMENTS_FILE)));
        for (const CString& line : statements.split(u'\n', Qt::SkipEmptyParts)) {
            if (const qsizetype start = line.indexOf(u'|'); start < 0) {
                name = line;
            } else {
                m_statements[name] += line.sliced(start + 1).chopped(1).replace(u"\\t"_s, u"\t"_s);
            }
        }
        QCOMPARE(m_statements.size(), kOperations.size());
    }
    void init() {
        m_log = {};
        m_file = std::make_unique<TemporaryLightingDatabase>();
        m_database = std::make_unique<Db>(FailingConnection::Factory(m_log), m_file->ExecutablePath());
        QVERIFY(m_database->Connect());
    }

    void RunsExactlyItsStatements() {
        Db unconnected(FailingConnection::Factory(m_log), m_file->ExecutablePath());
        for (const auto& [name, run] : kOperations) {
            m_file->Raw().Execute(
                u"delete from 灯具"_s);  // one statement leaves BallastPower out and reads no row
            m_log = {};
            Held held;
            QVERIFY2(run(*m_database, held), qPrintable(name));
            QCOMPARE(m_log.statements, m_statements[name]);
            m_log = {};
            m_log.failing = QStringList{u" "_s};
            QVERIFY2(!run(*m_database, held), qPrintable(name));
            QCOMPARE(m_log.statements.size(), 1);
            held = Held();
            QVERIFY2(!run(unconnected, held) && held == Held(), qPrintable(name));
            QCOMPARE(unconnected.LastFailure().kind, FailureKind::NotConnected);
        }
    }

    // A text that no statement can carry, in every place where an operation takes one, is never sent.
    void RefusesTextsThatWouldLeaveTheirQuotes() {
        m_log.failing = QStringList{u" "_s};
        for (const QString& text :
             {u"x'; delete from 光源; --"_s, u"it''s"_s, u"x\0"_s, QString(QChar(0xDC00))}) {
            for (std::size_t place = 0; place < Held().GivenTexts().size(); ++place) {
                std::size_t refused = 0;
                for (const auto& [name, run] : kOperations) {
                    Held held;
                    const auto [column, given] = held.GivenTexts()[place];
                    *given = text;
                    m_log.statements.clear();
                    QVERIFY2(!run(*m_database, held), qPrintable(name));
                    const ProviderFailure& failure = m_database->LastFailure();
                    if (m_log.statements.isEmpty()) {
                        QVERIFY(column.isEmpty() ? !failure.column.isEmpty() : failure.column == column);
                        ++refused;
                        QCOMPARE(failure.kind == FailureKind::QuoteInText, text.contains(u'\''));
                    } else {
                        QCOMPARE(m_log.statements[0], m_statements[name][0]);
                    }
                }
                QVERIFY(refused >= 2);  // each text is part of two operations at least
            }
        }
        tagLAMPHOUSEINFO source = kLightSource;
        source.LuminousFlux = std::nan("");
        m_log = {};
        QVERIFY(!m_database->UpdateLightSource(source) && m_log.statements.isEmpty());
    }

    void SubmitsEndOnce() {
        {
            SubmitScope outer(*m_database);
            SubmitScope inner(*m_database);
            QVERIFY(inner.Finish());
            QCOMPARE(m_log.statements, QStringList{u"BeginSubmit"_s});
        }
        QCOMPARE(m_log.statements, (QStringList{u"BeginSubmit"_s, u"EndSubmit"_s}));
        m_log.failing = QStringList{u"EndSubmit"_s};
        QVERIFY(!SubmitScope(*m_database).Finish());
        m_log.failing.clear();
        QVERIFY(m_database->Disconnect() && !SubmitScope(*m_database).Finish());
    }

    void ConnectsToTheFileNextToItsFolder() {
        const std::pair<CString, CString> cases[]{
            {u"C:\\Programs\\Lighting\\Bin\\tool.exe"_s, u"C:\\Programs\\Lighting"_s},
            {u"C:\\tool.exe"_s, u"C:"_s},
            {u"/opt/q/bin/quorvane"_s, u"\\opt\\q"_s},
            {u"C:/照明 设计/Bin\\tool.exe"_s, u"C:\\照明 设计"_s},
            {u"\\\\server\\share\\bin\\x.exe"_s, u"\\\\server\\share"_s},
            {u"C:\\Lighting\\\\Bin\\tool.exe"_s, u"C:\\Lighting"_s},
            {u"/quorvane"_s, u""_s},
            {u"quorvane"_s, u""_s},
        };
        for (const auto& [executable, folder] : cases) {
            m_log.openings.clear();
            QVERIFY(!Db(FailingConnection::Factory(m_log), executable).Connect());
            const CString source = u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source = %1"_s.arg(folder);
            QCOMPARE(m_log.openings,
                     folder.isEmpty() ? QStringList() : QStringList(source + u"\\Vexal\\灯具数据库.mdb;"_s));
        }
    }

    void ConnectionFailuresAreTold() {
        QVERIFY(m_database->Connect());
        QCOMPARE(m_log.openings.size(), 1);  // it was open already
        m_log.message = CString(300, u'x');
        m_log.failing = QStringList{u"Close"_s, u"Open"_s};
        const CString traced(255, u'x');
        QTest::ignoreMessage(QtDebugMsg, qUtf8Printable(u"关闭数据库连接失败!\n"_s + traced));
        QVERIFY(!m_database->Disconnect());
        m_log.failing.removeFirst();
        QVERIFY(m_database->Disconnect());
        QVERIFY(!m_database->Disconnect());
        QTest::ignoreMessage(QtWarningMsg, qUtf8Printable(u"连接数据库失败!\n"_s + traced));
        QVERIFY(!m_database->Connect());
        m_log.failing.clear();
        QVERIFY(m_database->Connect());
        m_database.reset();
        QCOMPARE(m_log.statements.count(u"Close"_s), 2);  // one that goes away only lets go of its connection
    }

    void ReadsBackWhatItInserted() {
        m_file->Raw().Execute(kSomeRows);
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
        sources.back().LuminousFlux += 0.1;
        QVERIFY(IsSameInFile(sources.back(), source));  // the file keeps six digits
        sources.back().LuminousFlux += 1;
        QVERIFY(!IsSameInFile(sources.back(), source));
        std::vector<tagLUMINAIREINFO> luminaires;
        QVERIFY(m_database->LoadLuminairesByType(u"5"_s, luminaires));
        QCOMPARE(Ids(luminaires), (std::vector<int>{1, 2}));  // "1,5" and "5"
        QVERIFY(!m_database->LoadAllLuminaires(luminaires));  // its statement leaves BallastPower out
    }

    // Inserts whose ID could not be read back are in the file, and are not made again.
    void InsertsOnceWhatIsTriedAgain() {
        m_file->Raw().Execute(kSomeRows);
        const tagLAMPHOUSEINFO record{0, 1, u"M"_s, 1.5, 2, u"F"_s, u""_s};
        LightSources records{record, record, record};
        QVERIFY(m_database->InsertLightSource(records[0]));  // an equal one, ID 4
        m_log.failing = {u"select max(ID)"_s};
        QVERIFY(!m_database->InsertLightSource(records[1]));
        m_log.failing = {u"select"_s};
        QVERIFY(!m_database->InsertLightSource(records[1]));  // the file cannot be searched
        m_log.failing.clear();
        QVERIFY(m_database->InsertLightSource(records[1]) && m_database->InsertLightSource(records[2]));
        QCOMPARE(Ids(records), (std::vector<int>{4, 5, 6}));
        QCOMPARE(m_file->Raw().Text(u"select max(ID) || ' ' || count(*) from 光源"_s), QByteArray("6 6"));
    }

    void WhatIsNoValueEndsALoad() {
        std::vector<tagILLUMINANCESTANDARD> standards;
        for (const CString& column : {u"Location"_s, u"ActualLPD"_s, u"Ra"_s}) {
            init();
            m_file->Raw().Execute(kSomeRows +
                                  u"update 照度要求及功率密度 set %1=NULL where ID=2"_s.arg(column));
            QVERIFY2(!m_database->LoadIlluminanceStandards(u"住宅"_s, u"起居室"_s, standards),
                     qPrintable(column));
            QCOMPARE(Ids(standards), std::vector<int>{1});
        }
        LightSources sources;
        for (const qint64 id : {qint64{1} << 31, -(qint64{1} << 31) - 1}) {  // no IDs of 32 bits
            m_file->Raw().Execute(u"insert into 光源 values (%1, 9, '', 0, 0, '', '')"_s.arg(id));
            QVERIFY(!m_database->LoadLightSourcesByType(9, sources) && sources.empty());
            m_file->Raw().Execute(u"delete from 光源 where LamphouseType=9"_s);
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
            QCOMPARE(m_file->Raw().Text(u"select Factory from 光源"_s), text.toUtf8());
            LightSources found;
            QVERIFY(m_database->LoadLightSourcesByFactory(text, found));
            QCOMPARE(found, LightSources{record});
            record.LamphouseModel = text;
            QVERIFY(m_database->UpdateLightSource(record));
            int id = 0;
            QVERIFY(m_database->FindLightSourceID(u"N"_s, text, id) && id == 1);
            QCOMPARE(m_file->Raw().Text(u"select count(*) from 光源"_s), QByteArray("1"));
        }
    }

private:
    std::map<CString, QStringList> m_statements;  // by the name of the operation
    StatementLog m_log;
    std::unique_ptr<TemporaryLightingDatabase> m_file;
    std::unique_ptr<Db> m_database;
};

QTEST_GUILESS_MAIN(TestLightingDatabase)
#include "test_lighting_database.moc"
