#include "tools/self_check.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <utility>

#include "data/lighting_database.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

// What a driver may get wrong: characters outside Chinese code pages, blanks at an end, the wildcards of
// searches.
const CString kName = u"自检 100% [直管]*_\"φ\U0001F4A1 "_s;
const CString kOther = u"自检－改后"_s;
constexpr double kSmall = 1.2E-05;
constexpr double kLarge = 1.23457E+06;  // as many digits as a statement carries
constexpr int kLargestInteger = 2147483647;

class Checker {
public:
    Checker(SelfCheckReport& report, CLightingDatabase& database) : m_report(report), m_database(database) {}

    // One line of the report. A failure is the database's, unless Right has found a wrong result.
    void Line(const CString& operation, bool isGood) {
        const bool isWrong = std::exchange(m_isWrong, false);
        m_report.failures += isGood ? 0 : 1;
        m_report.lines += (isGood ? u"正常  "_s : u"失败  "_s) + operation +
                          (isGood    ? CString()
                           : isWrong ? u"：读回的内容与写入的不同"_s
                                     : u"："_s + m_database.LastFailure().message);
    }
    bool Right(bool isRight) {
        m_isWrong = !isRight;
        return isRight;
    }

    // The records that a load gives.
    template <typename Record>
    std::vector<Record> Load(const CString& operation,
                             const std::function<bool(std::vector<Record>&)>& load) {
        std::vector<Record> records;
        Line(operation, load(records));
        return records;
    }

    // Whether a load gives the record; with its ID alone, when it is not expected at all.
    template <typename Record>
    void Expect(const CString& operation, const std::function<bool(std::vector<Record>&)>& load,
                const Record& record, bool isExpected = true) {
        std::vector<Record> records;
        const bool isDone = load(records);
        const auto found = std::find_if(records.begin(), records.end(),
                                        [&](const Record& other) { return other.ID == record.ID; });
        Line(operation, isDone && Right(isExpected ? found != records.end() && *found == record
                                                   : found == records.end()));
    }

private:
    SelfCheckReport& m_report;
    CLightingDatabase& m_database;
    bool m_isWrong = false;
};

void CheckLightSources(Checker& check, CLightingDatabase& database) {
    const auto types = check.Load<tagLAMPHOUSETYPE>(
        u"LoadLampTypes"_s, [&](auto& records) { return database.LoadLampTypes(records); });
    const tagLAMPHOUSETYPE type = types.empty() ? tagLAMPHOUSETYPE() : types.front();
    CString typeName;
    check.Line(u"GetLampTypeName"_s,
               database.GetLampTypeName(type.ID, typeName) && check.Right(typeName == type.LamphouseType));
    int id = 0;
    check.Line(u"FindLampTypeID"_s,
               database.FindLampTypeID(type.LamphouseType, id) && check.Right(id == type.ID));

    const auto loadAll = [&](auto& records) { return database.LoadAllLightSources(records); };
    const auto before = check.Load<tagLAMPHOUSEINFO>(u"LoadAllLightSources"_s, loadAll);
    tagLAMPHOUSEINFO record{0, type.ID, u"自检-型号"_s, kSmall, kLarge, kName, u"自检-名称"_s};
    check.Line(u"InsertLightSource"_s, database.InsertLightSource(record) && check.Right(record.ID > 0));
    check.Expect<tagLAMPHOUSEINFO>(u"LoadAllLightSources 读回"_s, loadAll, record);
    record = {record.ID, type.ID, kName, 2600, 28.5, kOther, u"自检-名称"_s};
    check.Line(u"UpdateLightSource"_s, database.UpdateLightSource(record));

    tagLAMPHOUSEINFO single;
    check.Line(u"LoadLightSourceByID"_s,
               database.LoadLightSourceByID(record.ID, single) && check.Right(single == record));
    check.Expect<tagLAMPHOUSEINFO>(
        u"LoadLightSourcesByType"_s,
        [&](auto& found) { return database.LoadLightSourcesByType(type.ID, found); }, record);
    check.Expect<tagLAMPHOUSEINFO>(
        u"LoadLightSourcesByTypeName"_s,
        [&](auto& found) { return database.LoadLightSourcesByTypeName(type.LamphouseType, found); }, record);
    check.Expect<tagLAMPHOUSEINFO>(
        u"LoadLightSourcesByFactory"_s,
        [&](auto& found) { return database.LoadLightSourcesByFactory(kOther, found); }, record);
    std::vector<CString> texts;
    check.Line(u"LoadLightSourceFactories"_s,
               database.LoadLightSourceFactories(texts) &&
                   check.Right(std::count(texts.begin(), texts.end(), kOther) == 1));
    check.Line(u"LoadLightSourceNamesByType"_s,
               database.LoadLightSourceNamesByType(type.ID, texts) && check.Right(!texts.empty()));
    check.Line(u"FindLightSourceID"_s,
               database.FindLightSourceID(record.LamphouseName, record.LamphouseModel, id) &&
                   check.Right(id == record.ID));
    check.Line(u"FindLightSourceTypeName"_s,
               database.FindLightSourceTypeName(record.LamphouseName, record.LamphouseModel, typeName) &&
                   check.Right(typeName == type.LamphouseType));

    check.Line(u"DeleteLightSource"_s, database.DeleteLightSource(record.ID));
    std::vector<tagLAMPHOUSEINFO> after;
    check.Line(u"LoadAllLightSources 与开始时相同"_s, loadAll(after) && check.Right(after == before));
}

void CheckLuminaires(Checker& check, CLightingDatabase& database) {
    const CString category = u"2147483646"_s;  // of no other luminaire
    const auto load = [&](auto& records) { return database.LoadLuminairesByType(category, records); };
    tagLUMINAIREINFO record{
        0,  category, kName,    u"自检-型号"_s, kSmall,
        1,  1.25,     1.5,      kOther,         u"1,2"_s,
        99, kLarge,   u"1,2"_s, u"a\"b"_s,      u"\\Vexal\\LuminairePhotoLib\\自检.jpg"_s};
    check.Line(u"InsertLuminaire"_s, database.InsertLuminaire(record) && check.Right(record.ID > 0));
    check.Expect<tagLUMINAIREINFO>(u"LoadLuminairesByType 读回"_s, load, record);
    record.LampName = kOther;
    record.Factory = kName;
    record.LuminaireEfficiency = 73.5;
    record.BallastCount = -1;
    check.Line(u"UpdateLuminaire"_s, database.UpdateLuminaire(record));
    check.Expect<tagLUMINAIREINFO>(u"LoadLuminairesByType 改后读回"_s, load, record);

    using Factor = tagLUMINAIREUTILIZATIONFACTOR;
    const auto loadFactors = [&](auto& records) {
        return database.LoadUtilizationFactors(record.ID, records);
    };
    Factor first{0, record.ID, 80, 50, 20, 0.6, 0.47};
    Factor second{0, record.ID, 0, 0, 0, 10, 1};
    check.Line(u"InsertUtilizationFactor"_s,
               database.InsertUtilizationFactor(first) && check.Right(first.ID > 0));
    check.Line(u"InsertUtilizationFactor"_s,
               database.InsertUtilizationFactor(second) && check.Right(second.ID > first.ID));
    check.Expect<Factor>(u"LoadUtilizationFactors 读回"_s, loadFactors, first);
    first.UtilizationFactor = 0.531;
    check.Line(u"UpdateUtilizationFactor"_s, database.UpdateUtilizationFactor(first));
    check.Expect<Factor>(u"LoadUtilizationFactors 改后读回"_s, loadFactors, first);
    check.Line(u"DeleteUtilizationFactor"_s, database.DeleteUtilizationFactor(first.ID));
    check.Expect<Factor>(u"LoadUtilizationFactors 删后"_s, loadFactors, first, false);
    check.Expect<Factor>(u"LoadUtilizationFactors 未删者"_s, loadFactors, second);
    check.Line(u"DeleteLuminaire"_s, database.DeleteLuminaire(record.ID));
    check.Expect<tagLUMINAIREINFO>(u"LoadLuminairesByType 删后"_s, load, record, false);
    check.Expect<Factor>(u"LoadUtilizationFactors 随灯具删去"_s, loadFactors, second, false);
    check.Line(u"DeleteUtilizationFactorsOfLuminaire"_s,
               database.DeleteUtilizationFactorsOfLuminaire(record.ID));
}

void CheckRequirements(Checker& check, CLightingDatabase& database) {
    const CString vocation = u"自检－行业"_s;
    const auto load = [&](auto& records) {
        return database.LoadIlluminanceStandards(vocation, kName, records);
    };
    tagILLUMINANCESTANDARD record{0,  vocation, kName, u"自检－场所"_s, u"0.75m 水平面"_s,
                                  11, kSmall,   300,   kLargestInteger, 80};
    check.Line(u"InsertIlluminanceStandard"_s,
               database.InsertIlluminanceStandard(record) && check.Right(record.ID > 0));
    check.Expect<tagILLUMINANCESTANDARD>(u"LoadIlluminanceStandards 读回"_s, load, record);
    record.Location = kOther;
    record.ObjectiveLPD = 9;
    record.UGR = 19;
    check.Line(u"UpdateIlluminanceStandard"_s, database.UpdateIlluminanceStandard(record));
    check.Expect<tagILLUMINANCESTANDARD>(u"LoadIlluminanceStandards 改后读回"_s, load, record);
    std::vector<CString> texts;
    check.Line(u"LoadVocations"_s, database.LoadVocations(texts) &&
                                       check.Right(std::count(texts.begin(), texts.end(), vocation) == 1));
    check.Line(u"LoadBuildingTypes"_s,
               database.LoadBuildingTypes(vocation, texts) && check.Right(texts == std::vector{kName}));
    check.Line(u"DeleteIlluminanceStandard"_s, database.DeleteIlluminanceStandard(record.ID));
    check.Expect<tagILLUMINANCESTANDARD>(u"LoadIlluminanceStandards 删后"_s, load, record, false);
}

}  // namespace

SelfCheckReport CheckOperations(const CString& path, const ConnectionFactory& factory) {
    const QTemporaryDir folder;
    CLightingDatabase database(factory, folder.filePath(u"bin/program"_s));
    const QString copy = folder.filePath(u"Vexal/灯具数据库.mdb"_s);
    QFile file(path);
    if (!QDir(folder.path()).mkdir(u"Vexal"_s) || !file.copy(copy)) {
        throw ProviderError(u"无法复制 %1：%2"_s.arg(path, file.errorString()));
    }
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);

    SelfCheckReport report;
    Checker check(report, database);
    check.Line(u"Connect"_s, database.Connect());
    if (report.failures == 0) {
        CheckLightSources(check, database);
        CheckLuminaires(check, database);
        CheckRequirements(check, database);
        check.Line(u"Disconnect"_s, database.Disconnect());
    }
    return report;
}

}  // namespace quorvane
