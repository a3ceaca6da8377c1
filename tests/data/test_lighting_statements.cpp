// What the operations ask of a connection, word for word, and what they make of its answers.

#include <QTest>

#include "data/lighting_database.h"
#include "tests/support/fake_connection.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

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

    std::vector<CString*> GivenTexts() {
        tagLUMINAIREINFO& l = luminaire;
        tagILLUMINANCESTANDARD& s = standard;
        std::vector<CString*> given{&source.LamphouseModel, &source.Factory, &source.LamphouseName};
        given.insert(given.end(),
                     {&l.LamphouseTypeID, &l.LampName, &l.LampModel, &l.Factory, &l.LamphouseCount,
                      &l.DefaultLamphouse, &l.UtilizationFactorFormat, &l.LampPhoto, &s.Vocation,
                      &s.BuildingType, &s.Location, &s.ReferencePlane});
        given.insert(given.end(), {&word, &other});
        return given;
    }
};

using Db = CLightingDatabase;
struct Case {
    bool (*run)(Db& db, Held& held);
    std::vector<CString> statements;  // an insertion also asks for the new row's ID
};

// clang-format off
const std::vector<Case> kCases{
{[](Db& db, Held& held) { return db.InsertLightSource(held.source) && held.source.ID == 17; },
 {u"insert into 光源 (LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName) v"
   "alues (7,'TL5 28W/840',2600,28.5,'晨光照明','直管荧光灯')"_s}},
{[](Db& db, Held& held) { return db.UpdateLightSource(held.source); },
 {u"update 光源 set LamphouseType=7,LamphouseModel='TL5 28W/840',LuminousFlux=2600,LamphousePower=28.5,"
   "Factory='晨光照明',LamphouseName='直管荧光灯' where ID=3"_s}},
{[](Db& db, Held& /*held*/) { return db.DeleteLightSource(-9); }, {u"delete * from 光源 where ID=-9"_s}},
{[](Db& db, Held& held) { return db.InsertLuminaire(held.luminaire) && held.luminaire.ID == 17; },
 {u"insert into 灯具 (LamphouseTypeID,\t\tLampName,LampModel,LuminaireEfficiency,UtilizationFactorType,"
   "\t\tMaxLhAA,MaxLhBB,Factory,LamphouseCount,BallastCount,BallastPower,\t\tDefaultLamphouse,Utilization"
   "FactorFormat, LampPhoto) \t\tvalues ('1,5' , '格栅灯' , 'GS-236' , 1.2E-05, 1, 1.25, 1.23457E+06, '华"
   "灯' , '2,1' , 3, 72.5, '11,12', 'F', '\\Vexal\\LuminairePhotoLib\\4.jpg')"_s}},
{[](Db& db, Held& held) { return db.UpdateLuminaire(held.luminaire); },
 {u"update 灯具 set \t\tLamphouseTypeID='1,5',\t\tLampName='格栅灯',\t\tLampModel='GS-236',\t\tLuminair"
   "eEfficiency=1.2E-05,\t\tUtilizationFactorType=1,\t\tMaxLhAA=1.25,\t\tMaxLhBB=1.23457E+06,\t\tFactory="
   "'华灯',\t\tLamphouseCount='2,1',\t\tBallastCount=3,\t\tBallastPower=72.5,\t\tDefaultLamphouse='11,12'"
   ",\t\tUtilizationFactorFormat='F', \t\tLampPhoto='\\Vexal\\LuminairePhotoLib\\4.jpg'\t\twhere ID=4"_s}},
{[](Db& db, Held& /*held*/) { return db.DeleteLuminaire(-9); },
 {u"delete * from 灯具 where ID=-9"_s,
  u"delete * from 利用系数 where LuminaireID=-9"_s}},
{[](Db& db, Held& held) { return db.InsertUtilizationFactor(held.factor) && held.factor.ID == 17; },
 {u"insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) values (4,70,50,20,0.6,0.47)"_s}},
{[](Db& db, Held& held) { return db.UpdateUtilizationFactor(held.factor); },
 {u"update 利用系数 set LuminaireID=4,Pcc=70,Pw=50,Pf=20,RCR_RI=0.6,UtilizationFactor=0.47 where ID=5"_s}},
{[](Db& db, Held& /*held*/) { return db.DeleteUtilizationFactor(-9); },
 {u"delete * from 利用系数 where ID=-9"_s}},
{[](Db& db, Held& held) { return db.InsertIlluminanceStandard(held.standard) && held.standard.ID == 17; },
 {u"insert into 照度要求及功率密度 (Vocation,BuildingType,Location,ReferencePlane,ActualLPD,ObjectiveLP"
   "D,IlluminanceStandard,UGR,Ra) \t\tvalues ('住宅','起居室','客厅','0.75m水平面',7,6,300,19,80)"_s}},
{[](Db& db, Held& held) { return db.UpdateIlluminanceStandard(held.standard); },
 {u"update 照度要求及功率密度 set Vocation='住宅',BuildingType='起居室',Location='客厅',\t\t\t\t\t Refe"
   "rencePlane='0.75m水平面',ActualLPD=7,ObjectiveLPD=6,IlluminanceStandard=300,UGR=19,Ra=80 where ID=6"_s}},
{[](Db& db, Held& /*held*/) { return db.DeleteIlluminanceStandard(-9); },
 {u"delete * from 照度要求及功率密度 where ID=-9"_s}},
{[](Db& db, Held& /*held*/) { return db.DeleteUtilizationFactorsOfLuminaire(8); },
 {u"delete * from 利用系数 where LuminaireID=8"_s}},
{[](Db& db, Held& held) { return db.LoadLampTypes(held.types); },
 {u"select ID, LamphouseType from 光源类别 order by LamphouseType"_s}},
{[](Db& db, Held& held) { return db.GetLampTypeName(2, held.text); },
 {u"select LamphouseType from 光源类别 where ID=2"_s}},
{[](Db& db, Held& held) { return db.FindLampTypeID(held.word, held.id); },
 {u"select ID from 光源类别 where LamphouseType ='%s%%'"_s}},
{[](Db& db, Held& held) { return db.LoadAllLightSources(held.sources); },
 {u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName from 光源 "
   "order by LamphouseType"_s}},
{[](Db& db, Held& held) { return db.LoadLightSourceFactories(held.texts); },
 {u"select DISTINCT Factory from 光源 order by Factory"_s}},
{[](Db& db, Held& held) { return db.LoadLightSourcesByFactory(held.word, held.sources); },
 {u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName from 光源 "
   "where Factory='%s%%'"_s}},
{[](Db& db, Held& held) { return db.LoadLightSourceByID(3, held.source); },
 {u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName from 光源 "
   "where ID=3"_s}},
{[](Db& db, Held& held) { return db.LoadLightSourcesByType(7, held.sources); },
 {u"select ID, LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName \t\t\t\tfrom 光源 where"
   " LamphouseType = 7 "_s}},
{[](Db& db, Held& held) { return db.LoadLightSourcesByTypeName(held.word, held.sources); },
 {u"select 光源.ID, 光源类别.ID, 光源.LamphouseType, 光源类别.LamphouseType,LamphouseModel,LuminousFlux"
   ",LamphousePower,Factory,LamphouseName \t\t\t\tfrom 光源,光源类别 where \t\t\t\t光源.LamphouseType =光"
   "源类别.ID and 光源类别.LamphouseType='%s%%' "_s}},
{[](Db& db, Held& held) { return db.LoadLightSourceNamesByType(7, held.texts); },
 {u"select LamphouseName from 光源 where  LamphouseType = 7 order by LamphouseName"_s}},
{[](Db& db, Held& held) { return db.FindLightSourceID(held.word, held.other, held.id); },
 {u"select ID from 光源 where \t\t\tLamphouseName ='%s%%' and LamphouseModel = 'M'"_s}},
{[](Db& db, Held& held) { return db.FindLightSourceID(held.word, u""_s, held.id); },
 {u"select ID from 光源 where \t\t\tLamphouseName ='%s%%' "_s}},
{[](Db& db, Held& held) { return db.FindLightSourceID(u""_s, held.other, held.id); },
 {u"select ID from 光源 where \t\t\tLamphouseModel ='M' "_s}},
{[](Db& db, Held& held) { return db.FindLightSourceTypeName(held.word, held.other, held.text); },
 {u"select 光源类别.LamphouseType from 光源,光源类别 where \t\t\t\t光源.LamphouseType = 光源类别.ID  an"
   "d  光源.LamphouseName ='%s%%' and 光源.LamphouseModel = 'M'"_s}},
{[](Db& db, Held& held) { return db.FindLightSourceTypeName(held.word, u""_s, held.text); },
 {u"select 光源类别.LamphouseType from 光源,光源类别 where \t\t\t\t光源.LamphouseType = 光源类别.ID  an"
   "d  光源.LamphouseName ='%s%%'"_s}},
{[](Db& db, Held& held) { return db.FindLightSourceTypeName(u""_s, held.other, held.text); },
 {u"select 光源类别.LamphouseType from 光源,光源类别 where \t\t\t\t光源.LamphouseType = 光源类别.ID  an"
   "d 光源.LamphouseModel = 'M'"_s}},
{[](Db& db, Held& held) { return db.LoadAllLuminaires(held.luminaires); },
 {u"select ID,LamphouseTypeID,LampName,LampModel,LuminaireEfficiency,UtilizationFactorType,MaxLhAA,MaxL"
   "hBB,Factory,LamphouseCount,BallastCount,DefaultLamphouse,UtilizationFactorFormat, LampPhoto from 灯具"_s}},
{[](Db& db, Held& held) { return db.LoadLuminairesByType(held.word, held.luminaires); },
 {u"select ID,LamphouseTypeID,LampName,LampModel,LuminaireEfficiency,UtilizationFactorType,MaxLhAA,MaxL"
   "hBB,Factory,LamphouseCount,BallastCount,BallastPower,DefaultLamphouse,UtilizationFactorFormat, LampPh"
   "oto from 灯具 where LamphouseTypeID like '%%s%%%'"_s}},
{[](Db& db, Held& held) { return db.LoadUtilizationFactors(4, held.factors); },
 {u"select ID,Pcc,Pw,Pf,RCR_RI, UtilizationFactor from 利用系数 where LuminaireID=4"_s}},
{[](Db& db, Held& held) { return db.LoadVocations(held.texts); },
 {u"select DISTINCT Vocation from 照度要求及功率密度 order by Vocation"_s}},
{[](Db& db, Held& held) { return db.LoadBuildingTypes(held.word, held.texts); },
 {u"select DISTINCT BuildingType from 照度要求及功率密度 Where Vocation='%s%%' \t\t\t\t\t order by Buil"
   "dingType"_s}},
{[](Db& db, Held& held) { return db.LoadIlluminanceStandards(held.word, held.other, held.standards); },
 {u"select ID,Location,ReferencePlane,ActualLPD,ObjectiveLPD,IlluminanceStandard,UGR,Ra from 照度要求及"
   "功率密度 \t\twhere Vocation='%s%%' and BuildingType='M'"_s}},
};
// clang-format on

const CString kExecutable = u"C:\\Lighting\\bin\\quorvane.exe"_s;

}  // namespace

class TestLightingStatements : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_connection = std::make_shared<FakeConnection>();
        m_database = std::make_unique<CLightingDatabase>(FakeConnection::Factory(m_connection), kExecutable);
        QVERIFY(m_database->Connect());
    }

    void RunsExactlyItsStatements() {
        Db unconnected(FakeConnection::Factory(m_connection), kExecutable);
        for (const Case& test : kCases) {
            std::vector<CString> statements = test.statements;
            if (const CString& first = statements[0]; first.startsWith(u"insert into ")) {
                statements.push_back(u"select max(ID) from "_s + first.split(u' ')[2]);
                m_connection->results = {{}, {{u"Expr1000"_s}, {{qint64{17}}}}};
            }
            m_connection->failures.clear();
            m_connection->statements.clear();
            Held held;
            QVERIFY2(test.run(*m_database, held), qPrintable(statements[0]));
            QCOMPARE(m_connection->statements, statements);

            m_connection->failures = {u" "_s};
            m_connection->statements.clear();
            QVERIFY2(!test.run(*m_database, held), qPrintable(statements[0]));
            QCOMPARE(m_connection->statements.size(), std::size_t{1});
            held = Held();
            QVERIFY2(!test.run(unconnected, held) && held == Held(), qPrintable(statements[0]));
            QCOMPARE(m_connection->statements.size(), std::size_t{1});
        }
    }

    // A text that no statement can carry, in every place where an operation takes one, is never sent.
    void RefusesTextsThatWouldLeaveTheirQuotes() {
        for (const QString& text :
             {u"x'; delete from 光源; --"_s, u"it''s"_s, u"x\0"_s, QString(QChar(0xDC00))}) {
            for (std::size_t place = 0; place < Held().GivenTexts().size(); ++place) {
                std::size_t refused = 0;
                for (const Case& test : kCases) {
                    Held held;
                    *held.GivenTexts()[place] = text;
                    m_connection->statements.clear();
                    const bool result = test.run(*m_database, held);
                    if (m_connection->statements.empty()) {
                        QVERIFY2(!result, qPrintable(test.statements[0]));
                        ++refused;
                    } else {
                        QCOMPARE(m_connection->statements[0], test.statements[0]);
                    }
                }
                QVERIFY(refused >= 2);  // each text is part of two operations at least
            }
        }
    }

    void WritesAllOrFails() {
        using Rows = std::vector<std::vector<FieldValue>>;
        const std::tuple<Rows, bool, int> cases[]{{{{qint64{17}}}, true, 17},
                                                  {{}, true, 0},
                                                  {{{std::monostate()}}, false, 0},
                                                  {{{qint64{1} << 31}}, false, 0}};
        for (const auto& [rows, result, id] : cases) {
            m_connection->results = {{}, {{u"Expr1000"_s}, rows}};
            tagLAMPHOUSEINFO source = kLightSource;
            source.ID = 0;
            QCOMPARE(m_database->InsertLightSource(source), result);
            QCOMPARE(source.ID, id);
        }
        tagLAMPHOUSEINFO source = kLightSource;
        source.LuminousFlux = std::nan("");
        QVERIFY(!m_database->UpdateLightSource(source));

        m_connection->statements.clear();
        m_connection->failures = {u"灯具"_s};
        QVERIFY(!m_database->DeleteLuminaire(4));  // its factors stay too
        QCOMPARE(m_connection->statements.size(), std::size_t{1});
    }

    void SubmitsEndOnce() {
        {
            SubmitScope outer(*m_database);
            SubmitScope inner(*m_database);
            QVERIFY(inner.Finish());
            QCOMPARE(m_connection->statements, std::vector<CString>{u"BeginSubmit"_s});
        }
        QCOMPARE(m_connection->statements, (std::vector<CString>{u"BeginSubmit"_s, u"EndSubmit"_s}));
        m_connection->endSubmitFailure = u"disk error"_s;
        QVERIFY(!SubmitScope(*m_database).Finish());
        Db unconnected(FakeConnection::Factory(m_connection), u"/opt/q/bin/quorvane"_s);
        QVERIFY(!SubmitScope(unconnected).Finish());
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
            m_connection->openings.clear();
            Db database(FakeConnection::Factory(m_connection), executable);
            QCOMPARE(database.Connect(), !folder.isEmpty());
            QCOMPARE(database.Connect(), !folder.isEmpty());  // by then it is open already
            std::vector<CString> opened;
            if (!folder.isEmpty()) {
                opened = {u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source = %1\\Vexal\\灯具数据库.mdb;"_s.arg(
                    folder)};
            }
            QCOMPARE(m_connection->openings, opened);
        }
    }

    void ConnectionFailuresAreTold() {
        m_connection->closeFailure = u"still in use"_s;
        QTest::ignoreMessage(QtDebugMsg, u"关闭数据库连接失败!\nstill in use"_s.toUtf8().constData());
        QVERIFY(!m_database->Disconnect());
        m_connection->closeFailure.clear();
        QVERIFY(m_database->Disconnect());
        QVERIFY(!m_database->Disconnect());
        m_connection->openFailure = CString(300, u'x');
        QTest::ignoreMessage(QtDebugMsg,
                             u"连接数据库失败!\n%1"_s.arg(CString(255, u'x')).toUtf8().constData());
        QVERIFY(!m_database->Connect());
        m_connection->openFailure.clear();
        QVERIFY(m_database->Connect());
        m_database.reset();
        QCOMPARE(m_connection->closings, 2);  // an object that goes away only lets go of its connection
        QCOMPARE(m_connection.use_count(), 1L);
    }

private:
    std::shared_ptr<FakeConnection> m_connection;
    std::unique_ptr<CLightingDatabase> m_database;
};

QTEST_GUILESS_MAIN(TestLightingStatements)
#include "test_lighting_statements.moc"
