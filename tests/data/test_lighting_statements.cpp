// What the operations ask of a connection, word for word, and what they make of its answers.

#include <QFile>
#include <QTest>
#include <map>

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
{u"InsertLightSource"_s, [](Db& db, Held& held) { return db.InsertLightSource(held.source) && held.source.ID == 17; }},
{u"UpdateLightSource"_s, [](Db& db, Held& held) { return db.UpdateLightSource(held.source); }},
{u"DeleteLightSource"_s, [](Db& db, Held&) { return db.DeleteLightSource(-9); }},
{u"InsertLuminaire"_s, [](Db& db, Held& held) { return db.InsertLuminaire(held.luminaire) && held.luminaire.ID == 17; }},
{u"UpdateLuminaire"_s, [](Db& db, Held& held) { return db.UpdateLuminaire(held.luminaire); }},
{u"DeleteLuminaire"_s, [](Db& db, Held&) { return db.DeleteLuminaire(-9); }},
{u"InsertUtilizationFactor"_s, [](Db& db, Held& held) { return db.InsertUtilizationFactor(held.factor) && held.factor.ID == 17; }},
{u"UpdateUtilizationFactor"_s, [](Db& db, Held& held) { return db.UpdateUtilizationFactor(held.factor); }},
{u"DeleteUtilizationFactor"_s, [](Db& db, Held&) { return db.DeleteUtilizationFactor(-9); }},
{u"InsertIlluminanceStandard"_s, [](Db& db, Held& held) { return db.InsertIlluminanceStandard(held.standard) && held.standard.ID == 17; }},
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

    void initTestCase() {
        QFile file(QStringLiteral(STATEMENTS_FILE));
        QVERIFY(file.open(QIODevice::ReadOnly));
        CString name;
        for (const CString& line : CString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
            if (const qsizetype start = line.indexOf(u'|'); start < 0) {
                name = line;
            } else {
                m_statements[name].push_back(line.sliced(start + 1).chopped(1).replace(u"\\t"_s, u"\t"_s));
            }
        }
        QCOMPARE(m_statements.size(), kOperations.size());
    }

    void RunsExactlyItsStatements() {
        Db unconnected(FakeConnection::Factory(m_connection), kExecutable);
        for (const auto& [name, run] : kOperations) {
            if (name.startsWith(u"Insert")) {
                m_connection->results = {{}, {{u"Expr1000"_s}, {{qint64{17}}}}};
            }
            m_connection->failures.clear();
            m_connection->statements.clear();
            Held held;
            QVERIFY2(run(*m_database, held), qPrintable(name));
            QCOMPARE(m_connection->statements, m_statements[name]);

            m_connection->failures = {u" "_s};
            m_connection->statements.clear();
            QVERIFY2(!run(*m_database, held), qPrintable(name));
            QCOMPARE(m_connection->statements.size(), std::size_t{1});
            held = Held();
            QVERIFY2(!run(unconnected, held) && held == Held(), qPrintable(name));
            QCOMPARE(unconnected.LastFailure().kind, FailureKind::NotConnected);
            QCOMPARE(m_connection->statements.size(), std::size_t{1});
        }
    }

    // A text that no statement can carry, in every place where an operation takes one, is never sent.
    void RefusesTextsThatWouldLeaveTheirQuotes() {
        for (const QString& text :
             {u"x'; delete from 光源; --"_s, u"it''s"_s, u"x\0"_s, QString(QChar(0xDC00))}) {
            for (std::size_t place = 0; place < Held().GivenTexts().size(); ++place) {
                std::size_t refused = 0;
                for (const auto& [name, run] : kOperations) {
                    Held held;
                    const auto [column, given] = held.GivenTexts()[place];
                    *given = text;
                    m_connection->statements.clear();
                    const bool result = run(*m_database, held);
                    if (m_connection->statements.empty()) {
                        QVERIFY2(!result, qPrintable(name));
                        const ProviderFailure& failure = m_database->LastFailure();
                        QVERIFY(column.isEmpty() ? !failure.column.isEmpty() : failure.column == column);
                        ++refused;
                        QCOMPARE(failure.kind == FailureKind::QuoteInText, text.contains(u'\''));
                    } else {
                        QCOMPARE(m_connection->statements[0], m_statements[name][0]);
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
                                                  {{{qint64{1} << 31}}, false, 0},
                                                  {{{-(qint64{1} << 31) - 1}}, false, 0}};
        for (const auto& [rows, result, id] : cases) {
            m_connection->results = {{}, {{u"Expr1000"_s}, rows}};
            tagLAMPHOUSEINFO source = kLightSource;
            source.ID = 0;
            m_database = std::make_unique<Db>(FakeConnection::Factory(m_connection), kExecutable);
            QVERIFY(m_database->Connect());
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
        };
        for (const auto& [executable, folder] : cases) {
            m_connection->openings.clear();
            Db database(FakeConnection::Factory(m_connection), executable);
            QVERIFY(database.Connect() && database.Connect());  // the second time it is open already
            const CString connectionString =
                u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source = %1"_s.arg(folder);
            QCOMPARE(m_connection->openings,
                     std::vector<CString>{connectionString + u"\\Vexal\\灯具数据库.mdb;"_s});
        }
        QVERIFY(!Db(FakeConnection::Factory(m_connection), u"/quorvane"_s).Connect());
        QVERIFY(!Db(FakeConnection::Factory(m_connection), u"quorvane"_s).Connect());
    }

    void ConnectionFailuresAreTold() {
        m_connection->closeFailure = u"still in use"_s;
        QTest::ignoreMessage(QtDebugMsg, u"关闭数据库连接失败!\nstill in use"_s.toUtf8().constData());
        QVERIFY(!m_database->Disconnect());
        m_connection->closeFailure.clear();
        QVERIFY(m_database->Disconnect());
        QVERIFY(!m_database->Disconnect());
        m_connection->openFailure = CString(300, u'x');
        QTest::ignoreMessage(QtWarningMsg,
                             u"连接数据库失败!\n%1"_s.arg(CString(255, u'x')).toUtf8().constData());
        QVERIFY(!m_database->Connect());
        m_connection->openFailure.clear();
        QVERIFY(m_database->Connect());
        m_database.reset();
        QCOMPARE(m_connection->closings, 2);  // an object that goes away only lets go of its connection
        QCOMPARE(m_connection.use_count(), 1L);
    }

private:
    std::map<CString, std::vector<CString>> m_statements;  // by the name of the operation
    std::shared_ptr<FakeConnection> m_connection;
    std::unique_ptr<CLightingDatabase> m_database;
};

QTEST_GUILESS_MAIN(TestLightingStatements)
#include "test_lighting_statements.moc"
