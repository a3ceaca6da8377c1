#include "data/lighting_database.h"

#include <QLoggingCategory>
#include <utility>

#include "data/database_path.h"
#include "data/field_reader.h"
#include "data/statement_text.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

Q_LOGGING_CATEGORY(lcDatabase, "quorvane.database", QtDebugMsg)

constexpr int kUnspecifiedOptions = -1;
constexpr qsizetype kLongestTracedText = 255;

void TraceFailure(const CString& diagnostic, const ProviderError& error) {
    qCDebug(lcDatabase).noquote() << diagnostic + error.Message().left(kLongestTracedText);
}

CString ReadFactory(const FieldReader& row) {
    return row.Text(u"Factory");
}

// The statements differ in how they tell the ID and the category; head brings these two.
tagLAMPHOUSEINFO ReadLightSource(const FieldReader& row, tagLAMPHOUSEINFO head) {
    head.LamphouseModel = row.Text(u"LamphouseModel");
    head.LuminousFlux = row.Real(u"LuminousFlux");
    head.LamphousePower = row.Real(u"LamphousePower");
    head.Factory = ReadFactory(row);
    head.LamphouseName = row.Text(u"LamphouseName");
    return head;
}

tagLAMPHOUSEINFO ReadWholeLightSource(const FieldReader& row) {
    tagLAMPHOUSEINFO head;
    head.ID = row.Integer(u"ID");
    head.LamphouseType = row.Integer(u"LamphouseType");
    return ReadLightSource(row, head);
}

tagLUMINAIREINFO ReadLuminaire(const FieldReader& row) {
    return {
        .ID = row.Integer(u"ID"),
        .LamphouseTypeID = row.Text(u"LamphouseTypeID"),
        .LampName = row.Text(u"LampName"),
        .LampModel = row.Text(u"LampModel"),
        .LuminaireEfficiency = row.Real(u"LuminaireEfficiency"),
        .UtilizationFactorType = row.Integer(u"UtilizationFactorType"),
        .MaxLhAA = row.Real(u"MaxLhAA"),
        .MaxLhBB = row.Real(u"MaxLhBB"),
        .Factory = ReadFactory(row),
        .LamphouseCount = row.Text(u"LamphouseCount"),
        .BallastCount = row.Integer(u"BallastCount"),
        .BallastPower = row.Real(u"BallastPower"),
        .DefaultLamphouse = row.Text(u"DefaultLamphouse"),
        .UtilizationFactorFormat = row.Text(u"UtilizationFactorFormat"),
        .LampPhoto = row.Text(u"LampPhoto"),
    };
}

}  // namespace

CLightingDatabase::CLightingDatabase(ConnectionFactory factory, CString executablePath)
    : m_factory(std::move(factory)), m_executablePath(std::move(executablePath)) {}

bool CLightingDatabase::Connect() {
    if (m_connection != nullptr) {
        return true;
    }
    const CString path = GetDatabasePath();
    if (path.isEmpty()) {
        return false;
    }
    const CString connectionString = u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source = "_s + path + u';';
    try {
        const std::shared_ptr<Connection> connection = m_factory(connectionString);
        connection->Open(connectionString, CString(), CString(), kUnspecifiedOptions);
        m_connection = connection;
        return true;
    } catch (const ProviderError& error) {
        TraceFailure(u"连接数据库失败!\n"_s, error);
        return false;
    }
}

bool CLightingDatabase::Disconnect() {
    if (m_connection == nullptr) {
        return false;
    }
    try {
        m_connection->Close();
        m_connection.reset();
        return true;
    } catch (const ProviderError& error) {
        TraceFailure(u"关闭数据库连接失败!\n"_s, error);
        return false;
    }
}

CString CLightingDatabase::GetDatabasePath() const {
    return DatabasePath(m_executablePath);
}

CString CLightingDatabase::GetApplicationParentFolder() const {
    return ApplicationParentFolder(m_executablePath);
}

template <typename Read>
bool CLightingDatabase::Query(const Statement& statement, const Read& read) {
    if (m_connection == nullptr || !statement) {
        return false;
    }
    try {
        const std::unique_ptr<Recordset> rows = m_connection->Execute(*statement);
        read(*rows);
        return true;
    } catch (const ProviderError& error) {
        TraceFailure(statement->left(kLongestTracedText) + u'\n', error);
        return false;
    }
}

bool CLightingDatabase::Execute(const Statement& statement) {
    return Query(statement, [](const Recordset&) {});
}

// The ID is the largest one now; nobody else is expected to insert between the two statements. After a
// failure the record keeps the ID it came with.
bool CLightingDatabase::Insert(const Statement& insert, const CString& readBack, int& id) {
    return Execute(insert) && Query(readBack, [&](const Recordset& rows) {
               if (!rows.AtEnd()) {
                   id = ToIntegerField(rows.Value(0));
               }
           });
}

template <typename Element, typename ReadRow>
bool CLightingDatabase::Load(std::vector<Element>& target, const Statement& statement,
                             const ReadRow& readRow) {
    if (m_connection == nullptr) {
        return false;
    }
    target.clear();
    return Query(statement, [&](Recordset& rows) {
        for (const FieldReader row(rows); !rows.AtEnd(); rows.MoveNext()) {
            target.push_back(readRow(row));
        }
        target.shrink_to_fit();
    });
}

template <typename ReadRow>
bool CLightingDatabase::ReadFirst(const Statement& statement, const ReadRow& readRow) {
    return Query(statement, [&](const Recordset& rows) {
        if (!rows.AtEnd()) {
            readRow(FieldReader(rows));
        }
    });
}

void CLightingDatabase::BeginSubmit() {
    if (m_openSubmits++ > 0 || m_connection == nullptr) {
        return;
    }
    try {
        m_connection->BeginSubmit();
    } catch (const ProviderError& error) {
        TraceFailure(u"BeginSubmit\n"_s, error);
    }
}

bool CLightingDatabase::EndSubmit() {
    --m_openSubmits;
    if (m_connection == nullptr) {
        return false;
    }
    if (m_openSubmits > 0) {
        return true;
    }
    try {
        m_connection->EndSubmit();
        return true;
    } catch (const ProviderError& error) {
        TraceFailure(u"EndSubmit\n"_s, error);
        return false;
    }
}

SubmitScope::SubmitScope(CLightingDatabase& database) : m_database(&database) {
    database.BeginSubmit();
}

SubmitScope::~SubmitScope() {
    Finish();
}

bool SubmitScope::Finish() {
    CLightingDatabase* database = std::exchange(m_database, nullptr);
    return database != nullptr && database->EndSubmit();
}

// 光源类别

bool CLightingDatabase::LoadLampTypes(std::vector<tagLAMPHOUSETYPE>& types) {
    return Load(types, u"select ID, LamphouseType from 光源类别 order by LamphouseType"_s,
                [](const FieldReader& row) {
                    return tagLAMPHOUSETYPE{.ID = row.Integer(u"ID"),
                                            .LamphouseType = row.Text(u"LamphouseType")};
                });
}

bool CLightingDatabase::GetLampTypeName(int id, CString& name) {
    if (m_connection == nullptr) {
        return false;
    }
    name.clear();
    return ReadFirst(FormatStatement(u"select LamphouseType from 光源类别 where ID=%d", {id}),
                     [&](const FieldReader& row) { name = row.Text(u"LamphouseType"); });
}

bool CLightingDatabase::FindLampTypeID(const CString& name, int& id) {
    if (m_connection == nullptr) {
        return false;
    }
    id = 0;
    return ReadFirst(FormatStatement(u"select ID from 光源类别 where LamphouseType ='%s'", {name}),
                     [&](const FieldReader& row) { id = row.Integer(u"ID"); });
}

// 光源

bool CLightingDatabase::InsertLightSource(tagLAMPHOUSEINFO& record) {
    return Insert(FormatStatement(u"insert into 光源 (LamphouseType,LamphouseModel,LuminousFlux,"
                                  "LamphousePower,Factory,LamphouseName) values (%d,'%s',%G,%G,'%s','%s')",
                                  {record.LamphouseType, record.LamphouseModel, record.LuminousFlux,
                                   record.LamphousePower, record.Factory, record.LamphouseName}),
                  u"select max(ID) from 光源"_s, record.ID);
}

bool CLightingDatabase::UpdateLightSource(const tagLAMPHOUSEINFO& record) {
    return Execute(
        FormatStatement(u"update 光源 set LamphouseType=%d,LamphouseModel='%s',LuminousFlux=%G,"
                        "LamphousePower=%G,Factory='%s',LamphouseName='%s' where ID=%d",
                        {record.LamphouseType, record.LamphouseModel, record.LuminousFlux,
                         record.LamphousePower, record.Factory, record.LamphouseName, record.ID}));
}

bool CLightingDatabase::DeleteLightSource(int id) {
    return Execute(FormatStatement(u"delete * from 光源 where ID=%d", {id}));
}

bool CLightingDatabase::LoadAllLightSources(std::vector<tagLAMPHOUSEINFO>& records) {
    return Load(records,
                u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName"
                " from 光源 order by LamphouseType"_s,
                ReadWholeLightSource);
}

bool CLightingDatabase::LoadLightSourceFactories(std::vector<CString>& factories) {
    return Load(factories, u"select DISTINCT Factory from 光源 order by Factory"_s, ReadFactory);
}

bool CLightingDatabase::LoadLightSourcesByFactory(const CString& factory,
                                                  std::vector<tagLAMPHOUSEINFO>& records) {
    return Load(records,
                FormatStatement(u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,"
                                "LamphouseName from 光源 where Factory='%s'",
                                {factory}),
                ReadWholeLightSource);
}

bool CLightingDatabase::LoadLightSourceByID(int id, tagLAMPHOUSEINFO& record) {
    if (m_connection == nullptr) {
        return false;
    }
    record.ID = id;
    return ReadFirst(FormatStatement(u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,"
                                     "Factory,LamphouseName from 光源 where ID=%d",
                                     {id}),
                     [&](const FieldReader& row) { record = ReadWholeLightSource(row); });
}

bool CLightingDatabase::LoadLightSourcesByType(int categoryId, std::vector<tagLAMPHOUSEINFO>& records) {
    return Load(
        records,
        FormatStatement(u"select ID, LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName "
                        "\t\t\t\tfrom 光源 where LamphouseType = %d ",
                        {categoryId}),
        [&](const FieldReader& row) {
            tagLAMPHOUSEINFO head;
            head.ID = row.Integer(u"ID");
            head.LamphouseType = categoryId;
            return ReadLightSource(row, head);
        });
}

bool CLightingDatabase::LoadLightSourcesByTypeName(const CString& categoryName,
                                                   std::vector<tagLAMPHOUSEINFO>& records) {
    return Load(records,
                FormatStatement(u"select 光源.ID, 光源类别.ID, 光源.LamphouseType, 光源类别.LamphouseType,"
                                "LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName "
                                "\t\t\t\tfrom 光源,光源类别 where "
                                "\t\t\t\t光源.LamphouseType =光源类别.ID and 光源类别.LamphouseType='%s' ",
                                {categoryName}),
                [](const FieldReader& row) {
                    tagLAMPHOUSEINFO head;
                    head.ID = row.Integer(u"光源.ID");
                    head.LamphouseType = row.Integer(u"光源.LamphouseType");
                    return ReadLightSource(row, head);
                });
}

bool CLightingDatabase::LoadLightSourceNamesByType(int categoryId, std::vector<CString>& names) {
    return Load(names,
                FormatStatement(u"select LamphouseName from 光源 where  LamphouseType = %d"
                                " order by LamphouseName",
                                {categoryId}),
                [](const FieldReader& row) { return row.Text(u"LamphouseName"); });
}

bool CLightingDatabase::FindLightSourceID(const CString& name, const CString& model, int& id) {
    if (m_connection == nullptr || (name.isEmpty() && model.isEmpty())) {
        return false;
    }
    id = 0;
    Statement statement;
    if (model.isEmpty()) {
        statement = FormatStatement(u"select ID from 光源 where \t\t\tLamphouseName ='%s' ", {name});
    } else if (name.isEmpty()) {
        statement = FormatStatement(u"select ID from 光源 where \t\t\tLamphouseModel ='%s' ", {model});
    } else {
        statement = FormatStatement(
            u"select ID from 光源 where "
            "\t\t\tLamphouseName ='%s' and LamphouseModel = '%s'",
            {name, model});
    }
    return ReadFirst(statement, [&](const FieldReader& row) { id = row.Integer(u"ID"); });
}

bool CLightingDatabase::FindLightSourceTypeName(const CString& name, const CString& model,
                                                CString& typeName) {
    if (m_connection == nullptr || (name.isEmpty() && model.isEmpty())) {
        return false;
    }
    typeName.clear();
    CString pattern =
        u"select 光源类别.LamphouseType from 光源,光源类别 where "
        "\t\t\t\t光源.LamphouseType = 光源类别.ID "_s;
    std::vector<TextArgument> arguments;
    if (!name.isEmpty()) {
        pattern += u" and  光源.LamphouseName ='%s'";
        arguments.emplace_back(name);
    }
    if (!model.isEmpty()) {
        pattern += u" and 光源.LamphouseModel = '%s'";
        arguments.emplace_back(model);
    }
    return ReadFirst(FormatStatement(pattern, arguments),
                     [&](const FieldReader& row) { typeName = row.Text(u"LamphouseType"); });
}

// 灯具

bool CLightingDatabase::InsertLuminaire(tagLUMINAIREINFO& record) {
    return Insert(
        FormatStatement(
            u"insert into 灯具 (LamphouseTypeID,\t\tLampName,LampModel,LuminaireEfficiency,"
            "UtilizationFactorType,\t\tMaxLhAA,MaxLhBB,Factory,LamphouseCount,BallastCount,BallastPower,"
            "\t\tDefaultLamphouse,UtilizationFactorFormat, LampPhoto) "
            "\t\tvalues ('%s' , '%s' , '%s' , %G, %d, %G, %G, '%s' , '%s' , %d, %G, '%s', '%s', '%s')",
            {record.LamphouseTypeID, record.LampName, record.LampModel, record.LuminaireEfficiency,
             record.UtilizationFactorType, record.MaxLhAA, record.MaxLhBB, record.Factory,
             record.LamphouseCount, record.BallastCount, record.BallastPower, record.DefaultLamphouse,
             record.UtilizationFactorFormat, record.LampPhoto}),
        u"select max(ID) from 灯具"_s, record.ID);
}

bool CLightingDatabase::UpdateLuminaire(const tagLUMINAIREINFO& record) {
    return Execute(FormatStatement(
        u"update 灯具 set \t\tLamphouseTypeID='%s',\t\tLampName='%s',\t\tLampModel='%s',"
        "\t\tLuminaireEfficiency=%G,\t\tUtilizationFactorType=%d,\t\tMaxLhAA=%G,\t\tMaxLhBB=%G,"
        "\t\tFactory='%s',\t\tLamphouseCount='%s',\t\tBallastCount=%d,\t\tBallastPower=%G,"
        "\t\tDefaultLamphouse='%s',\t\tUtilizationFactorFormat='%s', \t\tLampPhoto='%s'\t\twhere ID=%d",
        {record.LamphouseTypeID, record.LampName, record.LampModel, record.LuminaireEfficiency,
         record.UtilizationFactorType, record.MaxLhAA, record.MaxLhBB, record.Factory, record.LamphouseCount,
         record.BallastCount, record.BallastPower, record.DefaultLamphouse, record.UtilizationFactorFormat,
         record.LampPhoto, record.ID}));
}

bool CLightingDatabase::DeleteLuminaire(int id) {
    if (!Execute(FormatStatement(u"delete * from 灯具 where ID=%d", {id}))) {
        return false;
    }
    DeleteUtilizationFactorsOfLuminaire(id);  // the luminaire is gone whatever becomes of these
    return true;
}

bool CLightingDatabase::LoadAllLuminaires(std::vector<tagLUMINAIREINFO>& records) {
    return Load(records,
                u"select ID,LamphouseTypeID,LampName,LampModel,LuminaireEfficiency,UtilizationFactorType,"
                "MaxLhAA,MaxLhBB,Factory,LamphouseCount,BallastCount,DefaultLamphouse,"
                "UtilizationFactorFormat, LampPhoto from 灯具"_s,
                ReadLuminaire);
}

bool CLightingDatabase::LoadLuminairesByType(const CString& categoryText,
                                             std::vector<tagLUMINAIREINFO>& records) {
    return Load(records,
                FormatStatement(u"select ID,LamphouseTypeID,LampName,LampModel,LuminaireEfficiency,"
                                "UtilizationFactorType,MaxLhAA,MaxLhBB,Factory,LamphouseCount,BallastCount,"
                                "BallastPower,DefaultLamphouse,UtilizationFactorFormat, LampPhoto from 灯具 "
                                "where LamphouseTypeID like '%%%s%%'",
                                {categoryText}),
                ReadLuminaire);
}

// 利用系数

bool CLightingDatabase::InsertUtilizationFactor(tagLUMINAIREUTILIZATIONFACTOR& record) {
    return Insert(FormatStatement(u"insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) "
                                  "values (%d,%d,%d,%d,%G,%G)",
                                  {record.LuminaireID, record.Pcc, record.Pw, record.Pf, record.RCR_RI,
                                   record.UtilizationFactor}),
                  u"select max(ID) from 利用系数"_s, record.ID);
}

bool CLightingDatabase::UpdateUtilizationFactor(const tagLUMINAIREUTILIZATIONFACTOR& record) {
    return Execute(
        FormatStatement(u"update 利用系数 set LuminaireID=%d,Pcc=%d,Pw=%d,Pf=%d,RCR_RI=%G,"
                        "UtilizationFactor=%G where ID=%d",
                        {record.LuminaireID, record.Pcc, record.Pw, record.Pf, record.RCR_RI,
                         record.UtilizationFactor, record.ID}));
}

bool CLightingDatabase::DeleteUtilizationFactor(int id) {
    return Execute(FormatStatement(u"delete * from 利用系数 where ID=%d", {id}));
}

bool CLightingDatabase::DeleteUtilizationFactorsOfLuminaire(int luminaireId) {
    return Execute(FormatStatement(u"delete * from 利用系数 where LuminaireID=%d", {luminaireId}));
}

bool CLightingDatabase::LoadUtilizationFactors(int luminaireId,
                                               std::vector<tagLUMINAIREUTILIZATIONFACTOR>& records) {
    return Load(
        records,
        FormatStatement(u"select ID,Pcc,Pw,Pf,RCR_RI, UtilizationFactor from 利用系数 where LuminaireID=%d",
                        {luminaireId}),
        [&](const FieldReader& row) {
            return tagLUMINAIREUTILIZATIONFACTOR{
                .ID = row.Integer(u"ID"),
                .LuminaireID = luminaireId,
                .Pcc = row.Integer(u"Pcc"),
                .Pw = row.Integer(u"Pw"),
                .Pf = row.Integer(u"Pf"),
                .RCR_RI = row.Real(u"RCR_RI"),
                .UtilizationFactor = row.Real(u"UtilizationFactor"),
            };
        });
}

// 照度要求及功率密度

bool CLightingDatabase::InsertIlluminanceStandard(tagILLUMINANCESTANDARD& record) {
    return Insert(
        FormatStatement(
            u"insert into 照度要求及功率密度 (Vocation,BuildingType,Location,ReferencePlane,"
            "ActualLPD,ObjectiveLPD,IlluminanceStandard,UGR,Ra) "
            "\t\tvalues ('%s','%s','%s','%s',%G,%G,%d,%d,%d)",
            {record.Vocation, record.BuildingType, record.Location, record.ReferencePlane, record.ActualLPD,
             record.ObjectiveLPD, record.IlluminanceStandard, record.UGR, record.Ra}),
        u"select max(ID) from 照度要求及功率密度"_s, record.ID);
}

bool CLightingDatabase::UpdateIlluminanceStandard(const tagILLUMINANCESTANDARD& record) {
    return Execute(FormatStatement(
        u"update 照度要求及功率密度 set Vocation='%s',BuildingType='%s',Location='%s',"
        "\t\t\t\t\t ReferencePlane='%s',ActualLPD=%G,ObjectiveLPD=%G,"
        "IlluminanceStandard=%d,UGR=%d,Ra=%d where ID=%d",
        {record.Vocation, record.BuildingType, record.Location, record.ReferencePlane, record.ActualLPD,
         record.ObjectiveLPD, record.IlluminanceStandard, record.UGR, record.Ra, record.ID}));
}

bool CLightingDatabase::DeleteIlluminanceStandard(int id) {
    return Execute(FormatStatement(u"delete * from 照度要求及功率密度 where ID=%d", {id}));
}

bool CLightingDatabase::LoadVocations(std::vector<CString>& vocations) {
    return Load(vocations, u"select DISTINCT Vocation from 照度要求及功率密度 order by Vocation"_s,
                [](const FieldReader& row) { return row.Text(u"Vocation"); });
}

bool CLightingDatabase::LoadBuildingTypes(const CString& vocation, std::vector<CString>& buildingTypes) {
    return Load(buildingTypes,
                FormatStatement(u"select DISTINCT BuildingType from 照度要求及功率密度 Where Vocation='%s' "
                                "\t\t\t\t\t order by BuildingType",
                                {vocation}),
                [](const FieldReader& row) { return row.Text(u"BuildingType"); });
}

bool CLightingDatabase::LoadIlluminanceStandards(const CString& vocation, const CString& buildingType,
                                                 std::vector<tagILLUMINANCESTANDARD>& records) {
    return Load(records,
                FormatStatement(u"select ID,Location,ReferencePlane,ActualLPD,ObjectiveLPD,"
                                "IlluminanceStandard,UGR,Ra from 照度要求及功率密度 "
                                "\t\twhere Vocation='%s' and BuildingType='%s'",
                                {vocation, buildingType}),
                [&](const FieldReader& row) {
                    return tagILLUMINANCESTANDARD{
                        .ID = row.Integer(u"ID"),
                        .Vocation = vocation,
                        .BuildingType = buildingType,
                        .Location = row.Text(u"Location"),
                        .ReferencePlane = row.Text(u"ReferencePlane"),
                        .ActualLPD = row.Real(u"ActualLPD"),
                        .ObjectiveLPD = row.Real(u"ObjectiveLPD"),
                        .IlluminanceStandard = row.Integer(u"IlluminanceStandard"),
                        .UGR = row.Integer(u"UGR"),
                        .Ra = row.Integer(u"Ra"),
                    };
                });
}

}  // namespace quorvane
