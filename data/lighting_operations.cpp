// The operations of CLightingDatabase: one statement each.

#include "data/field_reader.h"
#include "data/lighting_database.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

CString ReadFactory(const FieldReader& row) {
    return row.Text(u"Factory");
}

// head holds the ID and the category, which the statements return in different ways.
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

template <typename Element, typename ReadRow>
bool CLightingDatabase::Load(std::vector<Element>& target, QStringView statement, Arguments arguments,
                             const ReadRow& readRow) {
    if (!IsConnected()) {
        return false;
    }
    target.clear();
    return Query(statement, arguments, [&](Recordset& rows) {
        for (const FieldReader row(rows); !rows.AtEnd(); rows.MoveNext()) {
            target.push_back(readRow(row));
        }
        target.shrink_to_fit();
    });
}

template <typename ReadRow>
bool CLightingDatabase::ReadFirst(QStringView statement, Arguments arguments, const ReadRow& readRow) {
    return Query(statement, arguments, [&](const Recordset& rows) {
        if (!rows.AtEnd()) {
            readRow(FieldReader(rows));
        }
    });
}

// 光源类别

bool CLightingDatabase::LoadLampTypes(std::vector<tagLAMPHOUSETYPE>& types) {
    return Load(types, u"select ID, LamphouseType from 光源类别 order by LamphouseType", {},
                [](const FieldReader& row) {
                    return tagLAMPHOUSETYPE{.ID = row.Integer(u"ID"),
                                            .LamphouseType = row.Text(u"LamphouseType")};
                });
}

bool CLightingDatabase::GetLampTypeName(int id, CString& name) {
    if (!IsConnected()) {
        return false;
    }
    name.clear();
    return ReadFirst(u"select LamphouseType from 光源类别 where ID=%d", {id},
                     [&](const FieldReader& row) { name = row.Text(u"LamphouseType"); });
}

bool CLightingDatabase::FindLampTypeID(const CString& name, int& id) {
    if (!IsConnected()) {
        return false;
    }
    id = 0;
    return ReadFirst(u"select ID from 光源类别 where LamphouseType ='%s'", {name},
                     [&](const FieldReader& row) { id = row.Integer(u"ID"); });
}

// 光源

bool CLightingDatabase::InsertLightSource(tagLAMPHOUSEINFO& record) {
    return Insert(
        u"insert into 光源 (LamphouseType,LamphouseModel,LuminousFlux,"
        "LamphousePower,Factory,LamphouseName) values (%d,'%s',%G,%G,'%s','%s')",
        {record.LamphouseType, record.LamphouseModel, record.LuminousFlux, record.LamphousePower,
         record.Factory, record.LamphouseName},
        u"select max(ID) from 光源", record.ID);
}

bool CLightingDatabase::UpdateLightSource(const tagLAMPHOUSEINFO& record) {
    return Execute(
        u"update 光源 set LamphouseType=%d,LamphouseModel='%s',LuminousFlux=%G,"
        "LamphousePower=%G,Factory='%s',LamphouseName='%s' where ID=%d",
        {record.LamphouseType, record.LamphouseModel, record.LuminousFlux, record.LamphousePower,
         record.Factory, record.LamphouseName, record.ID});
}

bool CLightingDatabase::DeleteLightSource(int id) {
    return Execute(u"delete * from 光源 where ID=%d", {id});
}

bool CLightingDatabase::LoadAllLightSources(std::vector<tagLAMPHOUSEINFO>& records) {
    return Load(records,
                u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName"
                " from 光源 order by LamphouseType",
                {}, ReadWholeLightSource);
}

bool CLightingDatabase::LoadLightSourceFactories(std::vector<CString>& factories) {
    return Load(factories, u"select DISTINCT Factory from 光源 order by Factory", {}, ReadFactory);
}

bool CLightingDatabase::LoadLightSourcesByFactory(const CString& factory,
                                                  std::vector<tagLAMPHOUSEINFO>& records) {
    return Load(records,
                u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,"
                "LamphouseName from 光源 where Factory='%s'",
                {factory}, ReadWholeLightSource);
}

bool CLightingDatabase::LoadLightSourceByID(int id, tagLAMPHOUSEINFO& record) {
    if (!IsConnected()) {
        return false;
    }
    record.ID = id;
    return ReadFirst(
        u"select ID,LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,"
        "Factory,LamphouseName from 光源 where ID=%d",
        {id}, [&](const FieldReader& row) { record = ReadWholeLightSource(row); });
}

bool CLightingDatabase::LoadLightSourcesByType(int categoryId, std::vector<tagLAMPHOUSEINFO>& records) {
    return Load(records,
                u"select ID, LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName "
                "\t\t\t\tfrom 光源 where LamphouseType = %d ",
                {categoryId}, [&](const FieldReader& row) {
                    tagLAMPHOUSEINFO head;
                    head.ID = row.Integer(u"ID");
                    head.LamphouseType = categoryId;
                    return ReadLightSource(row, head);
                });
}

bool CLightingDatabase::LoadLightSourcesByTypeName(const CString& categoryName,
                                                   std::vector<tagLAMPHOUSEINFO>& records) {
    return Load(records,
                u"select 光源.ID, 光源类别.ID, 光源.LamphouseType, 光源类别.LamphouseType,"
                "LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName "
                "\t\t\t\tfrom 光源,光源类别 where "
                "\t\t\t\t光源.LamphouseType =光源类别.ID and 光源类别.LamphouseType='%s' ",
                {categoryName}, [](const FieldReader& row) {
                    tagLAMPHOUSEINFO head;
                    head.ID = row.Integer(u"光源.ID");
                    head.LamphouseType = row.Integer(u"光源.LamphouseType");
                    return ReadLightSource(row, head);
                });
}

bool CLightingDatabase::LoadLightSourceNamesByType(int categoryId, std::vector<CString>& names) {
    return Load(names,
                u"select LamphouseName from 光源 where  LamphouseType = %d"
                " order by LamphouseName",
                {categoryId}, [](const FieldReader& row) { return row.Text(u"LamphouseName"); });
}

bool CLightingDatabase::FindLightSourceID(const CString& name, const CString& model, int& id) {
    if (!IsConnected() || (name.isEmpty() && model.isEmpty())) {
        return false;
    }
    id = 0;
    const auto readId = [&](const FieldReader& row) { id = row.Integer(u"ID"); };
    if (model.isEmpty()) {
        return ReadFirst(u"select ID from 光源 where \t\t\tLamphouseName ='%s' ", {name}, readId);
    }
    if (name.isEmpty()) {
        return ReadFirst(u"select ID from 光源 where \t\t\tLamphouseModel ='%s' ", {model}, readId);
    }
    return ReadFirst(
        u"select ID from 光源 where "
        "\t\t\tLamphouseName ='%s' and LamphouseModel = '%s'",
        {name, model}, readId);
}

bool CLightingDatabase::FindLightSourceTypeName(const CString& name, const CString& model,
                                                CString& typeName) {
    if (!IsConnected() || (name.isEmpty() && model.isEmpty())) {
        return false;
    }
    typeName.clear();
    const auto readName = [&](const FieldReader& row) { typeName = row.Text(u"LamphouseType"); };
    if (model.isEmpty()) {
        return ReadFirst(
            u"select 光源类别.LamphouseType from 光源,光源类别 where "
            "\t\t\t\t光源.LamphouseType = 光源类别.ID  and  光源.LamphouseName ='%s'",
            {name}, readName);
    }
    if (name.isEmpty()) {
        return ReadFirst(
            u"select 光源类别.LamphouseType from 光源,光源类别 where "
            "\t\t\t\t光源.LamphouseType = 光源类别.ID  and 光源.LamphouseModel = '%s'",
            {model}, readName);
    }
    return ReadFirst(
        u"select 光源类别.LamphouseType from 光源,光源类别 where "
        "\t\t\t\t光源.LamphouseType = 光源类别.ID  and  光源.LamphouseName ='%s'"
        " and 光源.LamphouseModel = '%s'",
        {name, model}, readName);
}

// 灯具

bool CLightingDatabase::InsertLuminaire(tagLUMINAIREINFO& record) {
    return Insert(
        u"insert into 灯具 (LamphouseTypeID,\t\tLampName,LampModel,LuminaireEfficiency,"
        "UtilizationFactorType,\t\tMaxLhAA,MaxLhBB,Factory,LamphouseCount,BallastCount,BallastPower,"
        "\t\tDefaultLamphouse,UtilizationFactorFormat, LampPhoto) "
        "\t\tvalues ('%s' , '%s' , '%s' , %G, %d, %G, %G, '%s' , '%s' , %d, %G, '%s', '%s', '%s')",
        {record.LamphouseTypeID, record.LampName, record.LampModel, record.LuminaireEfficiency,
         record.UtilizationFactorType, record.MaxLhAA, record.MaxLhBB, record.Factory, record.LamphouseCount,
         record.BallastCount, record.BallastPower, record.DefaultLamphouse, record.UtilizationFactorFormat,
         record.LampPhoto},
        u"select max(ID) from 灯具", record.ID);
}

bool CLightingDatabase::UpdateLuminaire(const tagLUMINAIREINFO& record) {
    return Execute(
        u"update 灯具 set \t\tLamphouseTypeID='%s',\t\tLampName='%s',\t\tLampModel='%s',"
        "\t\tLuminaireEfficiency=%G,\t\tUtilizationFactorType=%d,\t\tMaxLhAA=%G,\t\tMaxLhBB=%G,"
        "\t\tFactory='%s',\t\tLamphouseCount='%s',\t\tBallastCount=%d,\t\tBallastPower=%G,"
        "\t\tDefaultLamphouse='%s',\t\tUtilizationFactorFormat='%s', \t\tLampPhoto='%s'\t\twhere ID=%d",
        {record.LamphouseTypeID, record.LampName, record.LampModel, record.LuminaireEfficiency,
         record.UtilizationFactorType, record.MaxLhAA, record.MaxLhBB, record.Factory, record.LamphouseCount,
         record.BallastCount, record.BallastPower, record.DefaultLamphouse, record.UtilizationFactorFormat,
         record.LampPhoto, record.ID});
}

bool CLightingDatabase::DeleteLuminaire(int id) {
    if (!Execute(u"delete * from 灯具 where ID=%d", {id})) {
        return false;
    }
    DeleteUtilizationFactorsOfLuminaire(id);  // the luminaire is gone whatever becomes of these
    return true;
}

bool CLightingDatabase::LoadAllLuminaires(std::vector<tagLUMINAIREINFO>& records) {
    return Load(records,
                u"select ID,LamphouseTypeID,LampName,LampModel,LuminaireEfficiency,UtilizationFactorType,"
                "MaxLhAA,MaxLhBB,Factory,LamphouseCount,BallastCount,DefaultLamphouse,"
                "UtilizationFactorFormat, LampPhoto from 灯具",
                {}, ReadLuminaire);
}

bool CLightingDatabase::LoadLuminairesByType(const CString& categoryText,
                                             std::vector<tagLUMINAIREINFO>& records) {
    return Load(records,
                u"select ID,LamphouseTypeID,LampName,LampModel,LuminaireEfficiency,"
                "UtilizationFactorType,MaxLhAA,MaxLhBB,Factory,LamphouseCount,BallastCount,"
                "BallastPower,DefaultLamphouse,UtilizationFactorFormat, LampPhoto from 灯具 "
                "where LamphouseTypeID like '%%%s%%'",
                {categoryText}, ReadLuminaire);
}

// 利用系数

bool CLightingDatabase::InsertUtilizationFactor(tagLUMINAIREUTILIZATIONFACTOR& record) {
    return Insert(
        u"insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) "
        "values (%d,%d,%d,%d,%G,%G)",
        {record.LuminaireID, record.Pcc, record.Pw, record.Pf, record.RCR_RI, record.UtilizationFactor},
        u"select max(ID) from 利用系数", record.ID);
}

bool CLightingDatabase::UpdateUtilizationFactor(const tagLUMINAIREUTILIZATIONFACTOR& record) {
    return Execute(
        u"update 利用系数 set LuminaireID=%d,Pcc=%d,Pw=%d,Pf=%d,RCR_RI=%G,"
        "UtilizationFactor=%G where ID=%d",
        {record.LuminaireID, record.Pcc, record.Pw, record.Pf, record.RCR_RI, record.UtilizationFactor,
         record.ID});
}

bool CLightingDatabase::DeleteUtilizationFactor(int id) {
    return Execute(u"delete * from 利用系数 where ID=%d", {id});
}

bool CLightingDatabase::DeleteUtilizationFactorsOfLuminaire(int luminaireId) {
    return Execute(u"delete * from 利用系数 where LuminaireID=%d", {luminaireId});
}

bool CLightingDatabase::LoadUtilizationFactors(int luminaireId,
                                               std::vector<tagLUMINAIREUTILIZATIONFACTOR>& records) {
    return Load(records, u"select ID,Pcc,Pw,Pf,RCR_RI, UtilizationFactor from 利用系数 where LuminaireID=%d",
                {luminaireId}, [&](const FieldReader& row) {
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
        u"insert into 照度要求及功率密度 (Vocation,BuildingType,Location,ReferencePlane,"
        "ActualLPD,ObjectiveLPD,IlluminanceStandard,UGR,Ra) "
        "\t\tvalues ('%s','%s','%s','%s',%G,%G,%d,%d,%d)",
        {record.Vocation, record.BuildingType, record.Location, record.ReferencePlane, record.ActualLPD,
         record.ObjectiveLPD, record.IlluminanceStandard, record.UGR, record.Ra},
        u"select max(ID) from 照度要求及功率密度", record.ID);
}

bool CLightingDatabase::UpdateIlluminanceStandard(const tagILLUMINANCESTANDARD& record) {
    return Execute(
        u"update 照度要求及功率密度 set Vocation='%s',BuildingType='%s',Location='%s',"
        "\t\t\t\t\t ReferencePlane='%s',ActualLPD=%G,ObjectiveLPD=%G,"
        "IlluminanceStandard=%d,UGR=%d,Ra=%d where ID=%d",
        {record.Vocation, record.BuildingType, record.Location, record.ReferencePlane, record.ActualLPD,
         record.ObjectiveLPD, record.IlluminanceStandard, record.UGR, record.Ra, record.ID});
}

bool CLightingDatabase::DeleteIlluminanceStandard(int id) {
    return Execute(u"delete * from 照度要求及功率密度 where ID=%d", {id});
}

bool CLightingDatabase::LoadVocations(std::vector<CString>& vocations) {
    return Load(vocations, u"select DISTINCT Vocation from 照度要求及功率密度 order by Vocation", {},
                [](const FieldReader& row) { return row.Text(u"Vocation"); });
}

bool CLightingDatabase::LoadBuildingTypes(const CString& vocation, std::vector<CString>& buildingTypes) {
    return Load(buildingTypes,
                u"select DISTINCT BuildingType from 照度要求及功率密度 Where Vocation='%s' "
                "\t\t\t\t\t order by BuildingType",
                {vocation}, [](const FieldReader& row) { return row.Text(u"BuildingType"); });
}

bool CLightingDatabase::LoadIlluminanceStandards(const CString& vocation, const CString& buildingType,
                                                 std::vector<tagILLUMINANCESTANDARD>& records) {
    return Load(records,
                u"select ID,Location,ReferencePlane,ActualLPD,ObjectiveLPD,"
                "IlluminanceStandard,UGR,Ra from 照度要求及功率密度 "
                "\t\twhere Vocation='%s' and BuildingType='%s'",
                {vocation, buildingType}, [&](const FieldReader& row) {
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
