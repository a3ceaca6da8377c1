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

// Every kind of output an operation may have, holding something to begin with.
struct Out {
    int id = 42;
    CString text = u"kept"_s;
    tagLAMPHOUSEINFO source = kLightSource;
    std::vector<CString> texts{u"kept"_s};
    std::vector<tagLAMPHOUSETYPE> types{{42, u"kept"_s}};
    std::vector<tagLAMPHOUSEINFO> sources{kLightSource};
    std::vector<tagLUMINAIREINFO> luminaires{kLuminaire};
    std::vector<tagLUMINAIREUTILIZATIONFACTOR> factors{kFactor};
    std::vector<tagILLUMINANCESTANDARD> standards{kStandard};
    bool operator==(const Out&) const = default;
};

using Db = CLightingDatabase;
struct Case {
    bool (*run)(Db& db, Out& out);
    std::vector<CString> statements;  // an insertion also asks for the new row's ID
};

// clang-format off
const std::vector<Case> kCases{
{[](Db& db, Out& /*out*/) { auto record = kLightSource; return db.InsertLightSource(record) && record.ID == 17; },
 {u"insert into 光源 (LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName) v"
   "alues (7,'TL5 28W/840',2600,28.5,'晨光照明','直管荧光灯')"_s}},
{[](Db& db, Out& /*out*/) { return db.UpdateLightSource(kLightSource); },
 {u"update 光源 set LamphouseType=7,LamphouseModel='TL5 28W/840',LuminousFlux=2600,LamphousePower=28.5,"
   "Factory='晨光照明',LamphouseName='直管荧光灯' where ID=3"_s}},
{[](Db& db, Out& /*out*/) { return db.DeleteLightSource(-9); }, {u"delete * from 光源 where ID=-9"_s}},
{[](Db& db, Out& /*out*/) { auto record = kLuminaire; return db.InsertLuminaire(record) && record.ID == 17; },
 {u"insert into 灯具 (LamphouseTypeID,\t\tLampName,LampModel,LuminaireEfficiency,UtilizationFactorType,"
   "\t\tMaxLhAA,MaxLhBB,Factory,LamphouseCount,BallastCount,BallastPower,\t\tDefaultLamphouse,Utilization"
   "FactorFormat, LampPhoto) \t\tvalues ('1,5' , '格栅灯' , 'GS-236' , 1.2E-05, 1, 1.25, 1.23457E+06, '华"
   "灯' , '2,1' , 3, 72.5, '11,12', 'F', '\\Vexal\\LuminairePhotoLib\\4.jpg')"_s}},
{[](Db& db, Out& /*out*/) { return db.UpdateLuminaire(kLuminaire); },
 {u"update 灯具 set \t\tLamphouseTypeID='1,5',\t\tLampName='格栅灯',\t\tLampModel='GS-236',\t\tLuminair"
   "eEfficiency=1.2E-05,\t\tUtilizationFactorType=1,\t\tMaxLhAA=1.25,\t\tMaxLhBB=1.23457E+06,\t\tFactory="
   "'华灯',\t\tLamphouseCount='2,1',\t\tBallastCount=3,\t\tBallastPower=72.5,\t\tDefaultLamphouse='11,12'"
   ",\t\tUtilizationFactorFormat='F', \t\tLampPhoto='\\Vexal\\LuminairePhotoLib\\4.jpg'\t\twhere ID=4"_s}},
{[](Db& db, Out& /*out*/) { return db.DeleteLuminaire(-9); },
 {u"delete * from 灯具 where ID=-9"_s,
  u"delete * from 利用系数 where LuminaireID=-9"_s}},
{[](Db& db, Out& /*out*/) { auto record = kFactor; return db.InsertUtilizationFactor(record) && record.ID == 17; },
 {u"insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) values (4,70,50,20,0.6,0.47)"_s}},
{[](Db& db, Out& /*out*/) { return db.UpdateUtilizationFactor(kFactor); },
 {u"update 利用系数 set LuminaireID=4,Pcc=70,Pw=50,Pf=20,RCR_RI=0.6,UtilizationFactor=0.47 where ID=5"_s}},
{[](Db& db, Out& /*out*/) { return db.DeleteUtilizationFactor(-9); },
 {u"delete * from 利用系数 where ID=-9"_s}},
{[](Db& db, Out& /*out*/) { auto record = kStandard; return db.InsertIlluminanceStandard(record) && record.ID == 17; },
 {u"insert into 照度要求及功率密度 (Vocation,BuildingType,Location,ReferencePlane,ActualLPD,ObjectiveLP"
   "D,IlluminanceStandard,UGR,Ra) \t\tvalues ('住宅','起居室','客厅','0.75m水平面',7,6,300,19,80)"_s}},
{[](Db& db, Out& /*out*/) { return db.UpdateIlluminanceStandard(kStandard); },
 {u"update 照度要求及功率密度 set Vocation='住宅',BuildingType='起居室',Location='客厅',\t\t\t\t\t Refe"
   "rencePlane='0.75m水平面',ActualLPD=7,ObjectiveLPD=6,IlluminanceStandard=300,UGR=19,Ra=80 where ID=6"_s}},
{[](Db& db, Out& /*out*/) { return db.DeleteIlluminanceStandard(-9); },
 {u"delete * from 照度要求及功率密度 where ID=-9"_s}},
{[](Db& db, Out& /*out*/) { return db.DeleteUtilizationFactorsOfLuminaire(8); },
 {u"delete * from 利用系数 where LuminaireID=8"_s}},
{[](Db& db, Out& out) { return db.LoadLampTypes(out.types); },
 {u"select ID, LamphouseType from 光源类别 order by LamphouseType"_s}},
{[](Db& db, Out& out) { return db.GetLampTypeName(2, out.text); },
 {u"select LamphouseType from 光源类别 where ID=2"_s}},
{[](Db& db, Out& out) { return db.FindLampTypeID(u"混光灯"_s, out.id); },
 {u"select ID from 光源类别 where LamphouseType ='混光灯'"_s}},
{[](Db& db, Out& out) { return db.LoadAllLightSources(out.sources); },
 {u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName from 光源 "
   "order by LamphouseType"_s}},
{[](Db& db, Out& out) { return db.LoadLightSourceFactories(out.texts); },
 {u"select DISTINCT Factory from 光源 order by Factory"_s}},
{[](Db& db, Out& out) { return db.LoadLightSourcesByFactory(u"晨光"_s, out.sources); },
 {u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName from 光源 "
   "where Factory='晨光'"_s}},
{[](Db& db, Out& out) { return db.LoadLightSourceByID(3, out.source); },
 {u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName from 光源 "
   "where ID=3"_s}},
{[](Db& db, Out& out) { return db.LoadLightSourcesByType(7, out.sources); },
 {u"select ID, LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName \t\t\t\tfrom 光源 where"
   " LamphouseType = 7 "_s}},
{[](Db& db, Out& out) { return db.LoadLightSourcesByTypeName(u"%s%%"_s, out.sources); },
 {u"select 光源.ID, 光源类别.ID, 光源.LamphouseType, 光源类别.LamphouseType,LamphouseModel,LuminousFlux"
   ",LamphousePower,Factory,LamphouseName \t\t\t\tfrom 光源,光源类别 where \t\t\t\t光源.LamphouseType =光"
   "源类别.ID and 光源类别.LamphouseType='%s%%' "_s}},
{[](Db& db, Out& out) { return db.LoadLightSourceNamesByType(7, out.texts); },
 {u"select LamphouseName from 光源 where  LamphouseType = 7 order by LamphouseName"_s}},
{[](Db& db, Out& out) { return db.FindLightSourceID(u"N"_s, u"M"_s, out.id); },
 {u"select ID from 光源 where \t\t\tLamphouseName ='N' and LamphouseModel = 'M'"_s}},
{[](Db& db, Out& out) { return db.FindLightSourceID(u"N"_s, u""_s, out.id); },
 {u"select ID from 光源 where \t\t\tLamphouseName ='N' "_s}},
{[](Db& db, Out& out) { return db.FindLightSourceID(u""_s, u"M"_s, out.id); },
 {u"select ID from 光源 where \t\t\tLamphouseModel ='M' "_s}},
{[](Db& db, Out& out) { return db.FindLightSourceTypeName(u"N"_s, u"M"_s, out.text); },
 {u"select 光源类别.LamphouseType from 光源,光源类别 where \t\t\t\t光源.LamphouseType = 光源类别.ID  an"
   "d  光源.LamphouseName ='N' and 光源.LamphouseModel = 'M'"_s}},
{[](Db& db, Out& out) { return db.FindLightSourceTypeName(u"N"_s, u""_s, out.text); },
 {u"select 光源类别.LamphouseType from 光源,光源类别 where \t\t\t\t光源.LamphouseType = 光源类别.ID  an"
   "d  光源.LamphouseName ='N'"_s}},
{[](Db& db, Out& out) { return db.FindLightSourceTypeName(u""_s, u"M"_s, out.text); },
 {u"select 光源类别.LamphouseType from 光源,光源类别 where \t\t\t\t光源.LamphouseType = 光源类别.ID  an"
   "d 光源.LamphouseModel = 'M'"_s}},
{[](Db& db, Out& out) { return db.LoadAllLuminaires(out.luminaires); },
 {u"select ID,LamphouseTypeID,LampName,LampModel,LuminaireEfficiency,UtilizationFactorType,MaxLhAA,MaxL"
   "hBB,Factory,LamphouseCount,BallastCount,DefaultLamphouse,UtilizationFactorFormat, LampPhoto from 灯具"_s}},
{[](Db& db, Out& out) { return db.LoadLuminairesByType(u"5"_s, out.luminaires); },
 {u"select ID,LamphouseTypeID,LampName,LampModel,LuminaireEfficiency,UtilizationFactorType,MaxLhAA,MaxL"
   "hBB,Factory,LamphouseCount,BallastCount,BallastPower,DefaultLamphouse,UtilizationFactorFormat, LampPh"
   "oto from 灯具 where LamphouseTypeID like '%5%'"_s}},
{[](Db& db, Out& out) { return db.LoadUtilizationFactors(4, out.factors); },
 {u"select ID,Pcc,Pw,Pf,RCR_RI, UtilizationFactor from 利用系数 where LuminaireID=4"_s}},
{[](Db& db, Out& out) { return db.LoadVocations(out.texts); },
 {u"select DISTINCT Vocation from 照度要求及功率密度 order by Vocation"_s}},
{[](Db& db, Out& out) { return db.LoadBuildingTypes(u"住宅"_s, out.texts); },
 {u"select DISTINCT BuildingType from 照度要求及功率密度 Where Vocation='住宅' \t\t\t\t\t order by Buil"
   "dingType"_s}},
{[](Db& db, Out& out) { return db.LoadIlluminanceStandards(u"住宅"_s, u"起居室"_s, out.standards); },
 {u"select ID,Location,ReferencePlane,ActualLPD,ObjectiveLPD,IlluminanceStandard,UGR,Ra from 照度要求及"
   "功率密度 \t\twhere Vocation='住宅' and BuildingType='起居室'"_s}},
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
            Out out;
            QVERIFY2(test.run(*m_database, out), qPrintable(statements[0]));
            QCOMPARE(m_connection->statements, statements);

            m_connection->failures = {u" "_s};
            m_connection->statements.clear();
            QVERIFY2(!test.run(*m_database, out), qPrintable(statements[0]));
            QCOMPARE(m_connection->statements.size(), std::size_t{1});
            out = Out();
            QVERIFY2(!test.run(unconnected, out) && out == Out(), qPrintable(statements[0]));
            QCOMPARE(m_connection->statements.size(), std::size_t{1});
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

    void Connects() {
        QVERIFY(m_database->Connect());  // it is open already
        QCOMPARE(m_connection->openings,
                 std::vector<CString>{u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source = "
                                      "C:\\Lighting\\Vexal\\灯具数据库.mdb;"_s});
        CLightingDatabase other(FakeConnection::Factory(m_connection), kExecutable);
        m_connection->openFailure = CString(300, u'x');
        QTest::ignoreMessage(QtDebugMsg,
                             u"连接数据库失败!\n%1"_s.arg(CString(255, u'x')).toUtf8().constData());
        QVERIFY(!other.Connect());
        m_connection->openFailure.clear();
        QVERIFY(other.Connect());
    }

    void Disconnects() {
        m_connection->closeFailure = u"still in use"_s;
        QTest::ignoreMessage(QtDebugMsg, u"关闭数据库连接失败!\nstill in use"_s.toUtf8().constData());
        QVERIFY(!m_database->Disconnect());
        m_connection->closeFailure.clear();
        QVERIFY(m_database->Disconnect());
        QVERIFY(!m_database->Disconnect());
        QCOMPARE(m_connection->closings, 2);

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
