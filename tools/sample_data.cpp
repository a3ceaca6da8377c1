#include "tools/sample_data.h"

#include <QHash>
#include <QSet>
#include <algorithm>
#include <cmath>

#include "tools/csv_table.h"
#include "tools/luminaire_photo.h"
#include "tools/sample_error.h"

namespace quorvane {
namespace {

constexpr int kMixedLightCategory = 5;
const QString kMixedLightName = QStringLiteral("混光灯");
const QString kCommonName = QStringLiteral("常用灯具");

// A utilization factor table of a luminaire of 100 % efficiency.
using FactorShape = std::vector<tagLUMINAIREUTILIZATIONFACTOR>;

struct LightSourceKey {
    int id = 0;
    int category = 0;
};

// Reads the files one after the other; each later one may name what an earlier one holds.
class SampleReader {
public:
    explicit SampleReader(const QString& folder)
        : m_folder(folder.isEmpty() ? QStringLiteral(":/quorvane/sample") : folder) {}

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
    const CsvTable table(File("categories.csv"), {QStringLiteral("编号"), QStringLiteral("光源类别")});
    QSet<int> ids;
    for (CsvRow row : table.Rows()) {
        tagLAMPHOUSETYPE category;
        category.ID = row.Integer();
        if (category.ID == 0 || ids.contains(category.ID)) {
            row.Fail(QStringLiteral("%1 is 0 or stands twice").arg(category.ID));
        }
        const bool mixedId = QString::number(category.ID).contains(QString::number(kMixedLightCategory));
        category.LamphouseType = row.Text();
        // A luminaire counts as mixed light when the digit stands anywhere among its category IDs.
        if (mixedId != (category.LamphouseType == kMixedLightName) ||
            (mixedId && category.ID != kMixedLightCategory)) {
            row.Fail(QStringLiteral("the ID of %1 is %2, and no other ID holds that digit")
                         .arg(kMixedLightName)
                         .arg(kMixedLightCategory));
        }
        if (m_categoryIds.contains(category.LamphouseType) || category.LamphouseType.contains(u',')) {
            row.Fail(QStringLiteral("\"%1\" stands twice or holds a comma").arg(category.LamphouseType));
        }
        ids.insert(category.ID);
        m_categoryIds.insert(category.LamphouseType, category.ID);
        m_data.Categories.push_back(category);
    }
}

int SampleReader::CategoryId(const CsvRow& row, const QString& name) const {
    const auto found = m_categoryIds.constFind(name);
    if (found == m_categoryIds.constEnd()) {
        row.Fail(QStringLiteral("unknown category \"%1\"").arg(name));
    }
    return *found;
}

void SampleReader::ReadLightSources() {
    const CsvTable table(File("light_sources.csv"),
                         {QStringLiteral("光源类别"), QStringLiteral("光源名称"), QStringLiteral("光源型号"),
                          QStringLiteral("光通量(lm)"), QStringLiteral("功率(W)"), QStringLiteral("厂家")});
    for (CsvRow row : table.Rows()) {
        tagLAMPHOUSEINFO source;
        source.ID = static_cast<int>(m_data.LightSources.size()) + 1;
        const QString category = row.Text();
        source.LamphouseType = CategoryId(row, category);
        if (category == kMixedLightName || category == kCommonName) {
            row.Fail(QStringLiteral("%1 holds luminaires, no light sources").arg(category));
        }
        source.LamphouseName = row.Text();
        source.LamphouseModel = row.Text();
        const QString shown = source.LamphouseName + u':' + source.LamphouseModel;
        if (source.LamphouseName.contains(u':') || shown.contains(u',') || shown.contains(u'+')) {
            row.Fail(QStringLiteral("a comma, a plus sign, or a colon in the name, in \"%1\"").arg(shown));
        }
        // The database finds a light source by name and model without regard to case.
        if (m_lightSources.contains(shown.toCaseFolded())) {
            row.Fail(QStringLiteral("\"%1\" stands twice").arg(shown));
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
        throw SampleError(QStringLiteral("%1: column \"%2\" is not three reflectances like 80/50/20")
                              .arg(table.File(), heading));
    }
    return triple;
}

QString ReadTableKind(CsvRow& row) {
    QString kind = row.Text();
    if (kind != QStringLiteral("RCR") && kind != QStringLiteral("RI")) {
        row.Fail(QStringLiteral("\"%1\" is neither RCR nor RI").arg(kind));
    }
    return kind;
}

void SampleReader::ReadShapes() {
    const QStringList columns = {QStringLiteral("配光"), QStringLiteral("利用系数类别"),
                                 QStringLiteral("室空间比或室形指数")};
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
            row.Fail(QStringLiteral("%1 stands twice").arg(rowValue));
        }
        for (tagLUMINAIREUTILIZATIONFACTOR factor : triples) {
            factor.RCR_RI = rowValue;
            factor.UtilizationFactor = row.Real();
            if (factor.UtilizationFactor <= 0 || factor.UtilizationFactor >= 1.2) {
                row.Fail(QStringLiteral("a utilization factor lies between 0 and 1.2"));
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
        row.Fail(QStringLiteral("%1 goes only with %2").arg(kMixedLightName, kCommonName));
    }
    luminaire.LamphouseTypeID = ids.join(u',');
}

void SampleReader::ReadLightSourcesOfLuminaire(CsvRow& row, tagLUMINAIREINFO& luminaire) const {
    const bool mixed = m_luminaireCategories.contains(kMixedLightCategory);
    QStringList ids;
    for (const QString& shown : row.List()) {
        const auto found = m_lightSources.constFind(shown.toCaseFolded());
        if (found == m_lightSources.constEnd()) {
            row.Fail(QStringLiteral("unknown light source \"%1\"").arg(shown));
        }
        if (!mixed && !m_luminaireCategories.contains(found->category)) {
            row.Fail(
                QStringLiteral("\"%1\" is of none of the categories that the luminaire takes").arg(shown));
        }
        ids += QString::number(found->id);
    }
    if (!mixed && ids.size() > 1) {
        row.Fail(QStringLiteral("only %1 has several default light sources").arg(kMixedLightName));
    }
    luminaire.DefaultLamphouse = ids.join(u',');

    const QStringList counts = row.List();
    for (const QString& count : counts) {
        bool ok = false;
        if (count.toInt(&ok) <= 0 || !ok) {
            row.Fail(QStringLiteral("\"%1\" is not a count of 1 or more").arg(count));
        }
    }
    if (counts.size() != ids.size()) {
        row.Fail(QStringLiteral("one count for each default light source is needed"));
    }
    luminaire.LamphouseCount = counts.join(u',');
}

void SampleReader::ReadFactors(CsvRow& row, tagLUMINAIREINFO& luminaire) {
    const QString kind = ReadTableKind(row);
    luminaire.UtilizationFactorType = kind == QStringLiteral("RI") ? 1 : 0;
    const QString distribution = row.OptionalText();
    if (distribution.isEmpty()) {
        return;  // a luminaire for streets lights no room
    }
    const auto shape = m_shapes.constFind(distribution + kind);
    if (shape == m_shapes.constEnd()) {
        row.Fail(QStringLiteral("no table %2 of \"%1\" in utilization_shapes.csv").arg(distribution, kind));
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
    if (photo.Extension != QStringLiteral(".jpg") && photo.Extension != QStringLiteral(".bmp")) {
        row.Fail(QStringLiteral("\"%1\" ends neither in .jpg nor in .bmp").arg(text));
    }
    if (!LuminaireDrawings().contains(photo.Drawing)) {
        row.Fail(QStringLiteral("unknown drawing \"%1\"; there are %2")
                     .arg(photo.Drawing, LuminaireDrawings().join(QStringLiteral("、"))));
    }
    luminaire.LampPhoto =
        QStringLiteral("\\Vexal\\LuminairePhotoLib\\%1%2").arg(luminaire.ID).arg(photo.Extension);
    m_data.Photos.push_back(photo);
}

void SampleReader::ReadLuminaires() {
    const CsvTable table(File("luminaires.csv"),
                         {QStringLiteral("灯具名称"), QStringLiteral("灯具型号"), QStringLiteral("光源类别"),
                          QStringLiteral("灯具效率(%)"), QStringLiteral("A-A"), QStringLiteral("B-B"),
                          QStringLiteral("默认光源"), QStringLiteral("光源个数"), QStringLiteral("镇流器数"),
                          QStringLiteral("镇流器功率(W)"), QStringLiteral("厂家"),
                          QStringLiteral("利用系数类别"), QStringLiteral("配光"), QStringLiteral("图片")});
    for (CsvRow row : table.Rows()) {
        tagLUMINAIREINFO luminaire;
        luminaire.ID = static_cast<int>(m_data.Luminaires.size()) + 1;
        luminaire.LampName = row.Text();
        luminaire.LampModel = row.Text();
        ReadCategoriesOfLuminaire(row, luminaire);
        luminaire.LuminaireEfficiency = row.Real();
        if (luminaire.LuminaireEfficiency <= 0 || luminaire.LuminaireEfficiency > 100) {
            row.Fail(QStringLiteral("an efficiency lies above 0 and at most at 100 %"));
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
    const CsvTable table(
        File("requirements.csv"),
        {QStringLiteral("行业"), QStringLiteral("建筑类型"), QStringLiteral("场所"),
         QStringLiteral("参考平面"), QStringLiteral("现行功率密度"), QStringLiteral("目标功率密度"),
         QStringLiteral("照度标准值"), QStringLiteral("统一眩光值"), QStringLiteral("显色指数")},
        true);  // what follows says how far a row was checked
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
    return QStringLiteral("%1-%2").arg(text).arg(number, 6, 10, QLatin1Char('0'));
}

// Appends copies of the records in turn, each with the next ID and a number behind one of its texts, until
// there are that many.
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
        throw SampleError(QStringLiteral("the number of light sources must lie from %1 to %2")
                              .arg(present)
                              .arg(kMostLightSources));
    }
    Multiply(data.LightSources, &tagLAMPHOUSEINFO::LamphouseModel, lightSources);
    MultiplyLuminaires(data, lightSources / 25);
    Multiply(data.Requirements, &tagILLUMINANCESTANDARD::Location, lightSources / 2);
}

}  // namespace quorvane
