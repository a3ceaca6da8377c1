#include "tools/sample_data.h"

#include <QHash>
#include <QSet>
#include <algorithm>
#include <cmath>

#include "tools/csv_table.h"
#include "tools/luminaire_photo.h"
#include "tools/sample_error.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr int kMixedLightCategory = 5;
const QString kMixedLightName = u"混光灯"_s;
const QString kCommonName = u"常用灯具"_s;

// The utilization factor table of a luminaire with an efficiency of 100 %.
using FactorShape = std::vector<tagLUMINAIREUTILIZATIONFACTOR>;

struct LightSourceKey {
    int id = 0;
    int category = 0;
};

// Reads the files in an order in which each refers only to earlier ones.
class SampleReader {
public:
    explicit SampleReader(const QString& folder)
        : m_folder(folder.isEmpty() ? u":/quorvane/sample"_s : folder) {}

    SampleData Read();

private:
    QString File(const char* name) const { return m_folder + u'/' + QString::fromLatin1(name); }
    void ReadCategories();
    void ReadLightSources();
    void ReadShapes();
    void ReadLuminaires();
    void ReadRequirements();

    int CategoryId(const CsvRow& row, const QString& name) const;
    void ReadCategoriesOfLuminaire(CsvRow& row, tagLUMINAIREINFO& luminaire);
    void ReadLightSourcesOfLuminaire(CsvRow& row, tagLUMINAIREINFO& luminaire) const;
    void ReadFactors(CsvRow& row, tagLUMINAIREINFO& luminaire);
    void ReadPhoto(CsvRow& row, tagLUMINAIREINFO& luminaire);

    QString m_folder;
    SampleData m_data;
    QHash<QString, int> m_categoryIds;
    QHash<QString, LightSourceKey> m_lightSources;  // by "name:model", folded
    QHash<QString, FactorShape> m_shapes;           // by distribution + kind of table
    QSet<int> m_luminaireCategories;                // of the luminaire being read
};

SampleData SampleReader::Read() {
    ReadCategories();
    ReadLightSources();
    ReadShapes();
    ReadLuminaires();
    ReadRequirements();
    return std::move(m_data);
}

void SampleReader::ReadCategories() {
    const CsvTable table(File("categories.csv"), {u"编号"_s, u"光源类别"_s});
    QSet<int> ids;
    for (CsvRow row : table.Rows()) {
        tagLAMPHOUSETYPE category;
        category.ID = row.Integer();
        if (category.ID == 0 || ids.contains(category.ID)) {
            row.Fail(u"%1 is 0 or stands twice"_s.arg(category.ID));
        }
        const bool mixedId = QString::number(category.ID).contains(QString::number(kMixedLightCategory));
        category.LamphouseType = row.Text();
        // A luminaire counts as mixed light when its category IDs hold this digit anywhere.
        if (mixedId != (category.LamphouseType == kMixedLightName) ||
            (mixedId && category.ID != kMixedLightCategory)) {
            row.Fail(u"the ID of %1 is %2, and no other ID holds that digit"_s.arg(kMixedLightName)
                         .arg(kMixedLightCategory));
        }
        if (m_categoryIds.contains(category.LamphouseType)) {
            row.Fail(u"\"%1\" stands twice"_s.arg(category.LamphouseType));
        }
        ids.insert(category.ID);
        m_categoryIds.insert(category.LamphouseType, category.ID);
        m_data.Categories.push_back(category);
    }
}

int SampleReader::CategoryId(const CsvRow& row, const QString& name) const {
    const auto found = m_categoryIds.constFind(name);
    if (found == m_categoryIds.constEnd()) {
        row.Fail(u"unknown category \"%1\""_s.arg(name));
    }
    return *found;
}

void SampleReader::ReadLightSources() {
    const CsvTable table(File("light_sources.csv"), {u"光源类别"_s, u"光源名称"_s, u"光源型号"_s,
                                                     u"光通量(lm)"_s, u"功率(W)"_s, u"厂家"_s});
    for (CsvRow row : table.Rows()) {
        tagLAMPHOUSEINFO source;
        source.ID = static_cast<int>(m_data.LightSources.size()) + 1;
        const QString category = row.Text();
        source.LamphouseType = CategoryId(row, category);
        if (category == kMixedLightName || category == kCommonName) {
            row.Fail(u"%1 holds luminaires, no light sources"_s.arg(category));
        }
        source.LamphouseName = row.Text();
        source.LamphouseModel = row.Text();
        const QString shown = source.LamphouseName + u':' + source.LamphouseModel;
        if (source.LamphouseName.contains(u':') || shown.contains(u'+')) {
            row.Fail(u"a plus sign, or a colon in the name, in \"%1\""_s.arg(shown));
        }
        // The database compares names and models without regard to case.
        if (m_lightSources.contains(shown.toCaseFolded())) {
            row.Fail(u"\"%1\" stands twice"_s.arg(shown));
        }
        source.LuminousFlux = row.Real();
        source.LamphousePower = row.Real();
        source.Factory = row.Text();
        m_lightSources.insert(shown.toCaseFolded(), {source.ID, source.LamphouseType});
        m_data.LightSources.push_back(source);
    }
}

tagLUMINAIREUTILIZATIONFACTOR ParseReflectances(const CsvTable& table, const QString& heading) {
    tagLUMINAIREUTILIZATIONFACTOR triple;
    const QStringList pieces = heading.split(u'/');
    bool valid = pieces.size() == 3;
    int* const targets[] = {&triple.Pcc, &triple.Pw, &triple.Pf};
    for (int i = 0; valid && i < 3; ++i) {
        *targets[i] = pieces[i].toInt(&valid);
        valid = valid && *targets[i] >= 0 && *targets[i] <= 100;
    }
    if (!valid) {
        throw SampleError(
            u"%1: column \"%2\" is not three reflectances like 80/50/20"_s.arg(table.File(), heading));
    }
    return triple;
}

QString ReadTableKind(CsvRow& row) {
    QString kind = row.Text();
    if (kind != u"RCR"_s && kind != u"RI"_s) {
        row.Fail(u"\"%1\" is neither RCR nor RI"_s.arg(kind));
    }
    return kind;
}

void SampleReader::ReadShapes() {
    const QStringList columns = {u"配光"_s, u"利用系数类别"_s, u"室空间比或室形指数"_s};
    const CsvTable table(File("utilization_shapes.csv"), columns, true);
    FactorShape triples;
    for (const QString& heading : table.Columns().mid(columns.size())) {
        triples.push_back(ParseReflectances(table, heading));
    }
    for (CsvRow row : table.Rows()) {
        const QString distribution = row.Text();
        FactorShape& shape = m_shapes[distribution + ReadTableKind(row)];
        const double rowValue = row.Real();
        if (std::any_of(shape.begin(), shape.end(),
                        [rowValue](const auto& factor) { return factor.RCR_RI == rowValue; })) {
            row.Fail(u"%1 stands twice"_s.arg(rowValue));
        }
        for (tagLUMINAIREUTILIZATIONFACTOR factor : triples) {
            factor.RCR_RI = rowValue;
            factor.UtilizationFactor = row.Real();
            if (factor.UtilizationFactor <= 0 || factor.UtilizationFactor >= 1.2) {
                row.Fail(u"a utilization factor lies between 0 and 1.2"_s);
            }
            shape.push_back(factor);
        }
    }
}

void SampleReader::ReadCategoriesOfLuminaire(CsvRow& row, tagLUMINAIREINFO& luminaire) {
    QStringList ids;
    m_luminaireCategories.clear();
    for (const QString& name : row.List()) {
        const int id = CategoryId(row, name);
        m_luminaireCategories.insert(id);
        ids += QString::number(id);
    }
    const QSet<int> withMixed = {kMixedLightCategory, m_categoryIds.value(kCommonName)};
    if (m_luminaireCategories.contains(kMixedLightCategory) && !withMixed.contains(m_luminaireCategories)) {
        row.Fail(u"%1 goes only with %2"_s.arg(kMixedLightName, kCommonName));
    }
    luminaire.LamphouseTypeID = ids.join(u',');
}

void SampleReader::ReadLightSourcesOfLuminaire(CsvRow& row, tagLUMINAIREINFO& luminaire) const {
    const bool mixed = m_luminaireCategories.contains(kMixedLightCategory);
    QStringList ids;
    for (const QString& shown : row.List()) {
        const auto found = m_lightSources.constFind(shown.toCaseFolded());
        if (found == m_lightSources.constEnd()) {
            row.Fail(u"unknown light source \"%1\""_s.arg(shown));
        }
        if (!mixed && !m_luminaireCategories.contains(found->category)) {
            row.Fail(u"\"%1\" is of none of the categories that the luminaire takes"_s.arg(shown));
        }
        ids += QString::number(found->id);
    }
    if (!mixed && ids.size() > 1) {
        row.Fail(u"only %1 has several default light sources"_s.arg(kMixedLightName));
    }
    luminaire.DefaultLamphouse = ids.join(u',');

    const QStringList counts = row.List();
    for (const QString& count : counts) {
        bool ok = false;
        if (count.toInt(&ok) <= 0 || !ok) {
            row.Fail(u"\"%1\" is not a count of 1 or more"_s.arg(count));
        }
    }
    if (counts.size() != ids.size()) {
        row.Fail(u"one count for each default light source is needed"_s);
    }
    luminaire.LamphouseCount = counts.join(u',');
}

void SampleReader::ReadFactors(CsvRow& row, tagLUMINAIREINFO& luminaire) {
    const QString kind = ReadTableKind(row);
    luminaire.UtilizationFactorType = kind == u"RI"_s ? 1 : 0;
    const QString distribution = row.OptionalText();
    if (distribution.isEmpty()) {
        return;  // a luminaire for streets lights no room
    }
    const auto shape = m_shapes.constFind(distribution + kind);
    if (shape == m_shapes.constEnd()) {
        row.Fail(u"no table %2 of \"%1\" in utilization_shapes.csv"_s.arg(distribution, kind));
    }
    for (tagLUMINAIREUTILIZATIONFACTOR factor : *shape) {
        factor.LuminaireID = luminaire.ID;
        factor.UtilizationFactor =
            std::round(factor.UtilizationFactor * luminaire.LuminaireEfficiency) / 100.0;
        m_data.Factors.push_back(factor);
    }
}

void SampleReader::ReadPhoto(CsvRow& row, tagLUMINAIREINFO& luminaire) {
    const QString text = row.OptionalText();
    if (text.isEmpty()) {
        return;
    }
    const qsizetype dot = text.lastIndexOf(u'.');
    SamplePhoto photo{luminaire.ID, text.left(dot), dot < 0 ? QString() : text.mid(dot)};
    if (photo.Extension != u".jpg"_s && photo.Extension != u".bmp"_s) {
        row.Fail(u"\"%1\" ends neither in .jpg nor in .bmp"_s.arg(text));
    }
    if (!LuminaireDrawings().contains(photo.Drawing)) {
        row.Fail(
            u"unknown drawing \"%1\"; there are %2"_s.arg(photo.Drawing, LuminaireDrawings().join(u"、"_s)));
    }
    luminaire.LampPhoto = u"\\Vexal\\LuminairePhotoLib\\%1%2"_s.arg(luminaire.ID).arg(photo.Extension);
    m_data.Photos.push_back(photo);
}

void SampleReader::ReadLuminaires() {
    const CsvTable table(File("luminaires.csv"),
                         {u"灯具名称"_s, u"灯具型号"_s, u"光源类别"_s, u"灯具效率(%)"_s, u"A-A"_s, u"B-B"_s,
                          u"默认光源"_s, u"光源个数"_s, u"镇流器数"_s, u"镇流器功率(W)"_s, u"厂家"_s,
                          u"利用系数类别"_s, u"配光"_s, u"图片"_s});
    for (CsvRow row : table.Rows()) {
        tagLUMINAIREINFO luminaire;
        luminaire.ID = static_cast<int>(m_data.Luminaires.size()) + 1;
        luminaire.LampName = row.Text();
        luminaire.LampModel = row.Text();
        ReadCategoriesOfLuminaire(row, luminaire);
        luminaire.LuminaireEfficiency = row.Real();
        if (luminaire.LuminaireEfficiency <= 0 || luminaire.LuminaireEfficiency > 100) {
            row.Fail(u"an efficiency lies above 0 and at most at 100 %"_s);
        }
        luminaire.MaxLhAA = row.Real();
        luminaire.MaxLhBB = row.Real();
        ReadLightSourcesOfLuminaire(row, luminaire);
        luminaire.BallastCount = row.Integer();
        luminaire.BallastPower = row.Real();
        luminaire.Factory = row.Text();
        ReadFactors(row, luminaire);
        ReadPhoto(row, luminaire);
        m_data.Luminaires.push_back(luminaire);
    }
}

void SampleReader::ReadRequirements() {
    const CsvTable table(File("requirements.csv"),
                         {u"行业"_s, u"建筑类型"_s, u"场所"_s, u"参考平面"_s, u"现行功率密度"_s,
                          u"目标功率密度"_s, u"照度标准值"_s, u"统一眩光值"_s, u"显色指数"_s},
                         true);  // the further columns say how far a row was checked
    for (CsvRow row : table.Rows()) {
        tagILLUMINANCESTANDARD requirement;
        requirement.ID = static_cast<int>(m_data.Requirements.size()) + 1;
        requirement.Vocation = row.Text();
        requirement.BuildingType = row.Text();
        requirement.Location = row.Text();
        requirement.ReferencePlane = row.Text();
        requirement.ActualLPD = row.Real();
        requirement.ObjectiveLPD = row.Real();
        requirement.IlluminanceStandard = row.Integer();
        requirement.UGR = row.Integer();
        requirement.Ra = row.Integer();
        m_data.Requirements.push_back(requirement);
    }
}

QString Numbered(const QString& text, int number) {
    return u"%1-%2"_s.arg(text).arg(number, 6, 10, QLatin1Char('0'));
}

// Appends copies of the records until there are `count`. Each copy gets the next ID, and that number at the
// end of one of its texts.
template <typename Record>
void Multiply(std::vector<Record>& records, CString Record::*numbered, int count) {
    const std::size_t base = records.size();
    while (base > 0 && records.size() < static_cast<std::size_t>(count)) {
        Record copy = records[records.size() % base];
        copy.ID = static_cast<int>(records.size()) + 1;
        copy.*numbered = Numbered(copy.*numbered, copy.ID);
        records.push_back(copy);
    }
}

void MultiplyLuminaires(SampleData& data, int count) {
    const auto base = static_cast<int>(data.Luminaires.size());
    Multiply(data.Luminaires, &tagLUMINAIREINFO::LampModel, count);
    std::vector<FactorShape> tables(static_cast<std::size_t>(base));
    for (const tagLUMINAIREUTILIZATIONFACTOR& factor : data.Factors) {
        tables[static_cast<std::size_t>(factor.LuminaireID - 1)].push_back(factor);
    }
    for (auto i = static_cast<std::size_t>(base); i < data.Luminaires.size(); ++i) {
        tagLUMINAIREINFO& luminaire = data.Luminaires[i];
        luminaire.LampPhoto.clear();
        if (luminaire.ID > kMostEnlargedTables) {
            continue;
        }
        for (tagLUMINAIREUTILIZATIONFACTOR factor : tables[i % tables.size()]) {
            factor.LuminaireID = luminaire.ID;
            data.Factors.push_back(factor);
        }
    }
}

}  // namespace

SampleData ReadSampleData(const QString& folder) {
    return SampleReader(folder).Read();
}

void EnlargeSampleData(SampleData& data, int lightSources) {
    const auto present = static_cast<int>(data.LightSources.size());
    if (lightSources < present || lightSources > kMostLightSources) {
        throw SampleError(
            u"the number of light sources must lie from %1 to %2"_s.arg(present).arg(kMostLightSources));
    }
    Multiply(data.LightSources, &tagLAMPHOUSEINFO::LamphouseModel, lightSources);
    MultiplyLuminaires(data, lightSources / 25);
    Multiply(data.Requirements, &tagILLUMINANCESTANDARD::Location, lightSources / 2);
}

}  // namespace quorvane
