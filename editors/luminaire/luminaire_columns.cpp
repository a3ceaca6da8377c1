// The columns of the page of luminaires: how they are shown and edited, and what their tips tell.
#include <algorithm>

#include "editors/luminaire/luminaire_page.h"
#include "model/light_source_categories.h"
#include "model/light_source_text.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

const CString kRoomIndex = u"RI"_s;
const CString kRoomCavityRatio = u"RCR"_s;

CellSetup FactorKindSetup(const tagLUMINAIREINFO& /*record*/) {
    static const auto kinds =
        std::make_shared<const std::vector<CString>>(std::vector<CString>{kRoomCavityRatio, kRoomIndex});
    return {.kind = CellSetup::DropDown, .choices = kinds};
}

std::function<CellSetup(const tagLUMINAIREINFO&)> ButtonSetup(const CString& caption) {
    return [caption](const tagLUMINAIREINFO&) {
        return CellSetup{.kind = CellSetup::Button, .caption = caption};
    };
}

}  // namespace

CString CQuorvaneLuminaireDlg::FactorKindText(const tagLUMINAIREINFO& luminaire) {
    return luminaire.UtilizationFactorType == 1 ? kRoomIndex : kRoomCavityRatio;
}

CString CQuorvaneLuminaireDlg::CountText(const CString& typed) {
    return typed.isEmpty() ? u"0"_s : typed;
}

std::vector<Column<tagLUMINAIREINFO>> CQuorvaneLuminaireDlg::Columns() {
    using Record = tagLUMINAIREINFO;
    const auto isMixed = [this](const Record& record) { return IsMixedLight(CategoriesOf(record)); };
    return {
        NumberColumn<Record>(0.06),
        TextColumn(u"灯具名称", u"灯具的名称", 0.2, &Record::LampName, kLeftEllipsis),
        TextColumn(u"灯具型号", u"灯具的型号", 0.15, &Record::LampModel, kLeft),
        RealColumn(u"灯具效率", u"灯具发出的光通量与灯具内全部光源光通量之比\n单位:%", 0.1,
                   &Record::LuminaireEfficiency),
        RealColumn(u"A-A",
                   u"A-A剖面(垂直于灯管)上的最大允许距高比:灯具间距与灯具到参考平面的高度之比\n无量纲", 0.06,
                   &Record::MaxLhAA),
        RealColumn(u"B-B",
                   u"B-B剖面(平行于灯管)上的最大允许距高比:灯具间距与灯具到参考平面的高度之比\n无量纲", 0.06,
                   &Record::MaxLhBB),
        {.heading = u"灯具类别",
         .help = u"灯具所属的类别,可以有几个",
         .share = 0.2,
         .format = kLeftEllipsis,
         .show = [this](const Record& record) { return m_lists.CategoryNames(record.LamphouseTypeID); },
         .take = [this](const CString& text, Record& record) { TakeCategories(text, record); },
         .accepts = [this](const CString& text) { return m_lists.AreCategories(text); },
         .setup = [](const Record&) { return CellSetup{.kind = CellSetup::Chooser, .takesTexts = true}; },
         .open = [this](CCellID cell) { OpenTypeChooser(cell); }},
        {.heading = u"默认光源",
         .help = u"灯具所用的光源;混光灯具的光源按“...”设置",
         .share = 0.2,
         .format = kLeftEllipsis,
         .show = [this](const Record& record) { return m_lists.LightSourceTexts(record.DefaultLamphouse); },
         .take = [this](const CString& text, Record& record) { TakeLightSources(text, record); },
         .accepts = [this](const CString& text) { return m_lists.AreLightSources(text); },
         .setup = [this](const Record& record) { return LightSourceSetup(record); },
         .open = [this](CCellID cell) { OpenMixedLightSources(cell.row); },
         .tip = [this](const Record& record) { return LightSourceTip(record); },
         .dependsOnRecord = true},
        {.heading = u"光源个数",
         .help = u"每套灯具的光源个数;混光灯具为各种光源的个数,以逗号隔开\n单位:个",
         .share = 0.09,
         .show = [](const Record& record) { return record.LamphouseCount; },
         .take = [](const CString& text, Record& record) { record.LamphouseCount = CountText(text); },
         .setup =
             [isMixed](const Record& record) {
                 return CellSetup{.kind = isMixed(record) ? CellSetup::ReadOnly : CellSetup::Text,
                                  .takesTexts = isMixed(record)};
             },
         .dependsOnRecord = true},
        IntegerColumn(u"镇流器数", u"每套灯具的镇流器个数\n单位:个", 0.09, &Record::BallastCount),
        RealColumn(u"镇流器功率", u"每个镇流器消耗的功率;低压卤钨灯为每个变压器消耗的功率\n单位:W", 0.11,
                   &Record::BallastPower),
        TextColumn(u"厂  家", u"灯具的厂家", 0.1, &Record::Factory),
        {.heading = u"灯具图片",
         .help = u"灯具的图片文件;提交时复制到图片库",
         .share = 0.1,
         .format = kLeftEllipsis,
         .show = [](const Record& record) { return record.LampPhoto; },
         .setup = ButtonSetup(u">>>"_s),
         .open = [this](CCellID cell) { OpenPhoto(cell.row); },
         .tip = [this](const Record& record) { return PhotoTip(record); }},
        {.heading = u"利用系数类别",
         .help = u"利用系数表按室空间比RCR还是室形系数RI排列",
         .share = 0.12,
         .show = FactorKindText,
         .take = [](const CString& text,
                    Record& record) { record.UtilizationFactorType = text == kRoomIndex ? 1 : 0; },
         .setup = FactorKindSetup},
        {.heading = u"利用系数表",
         .help = u"利用系数:落到参考平面上的光通量与灯具内全部光源光通量之比\n无量纲",
         .share = 0.11,
         .show = [](const Record&) { return CString(); },
         .setup = ButtonSetup(u"利用系数表"_s),
         .open = [this](CCellID cell) { OpenFactorTable(cell.row); },
         .holdsText = false},
    };
}

// The default light source is chosen from the light sources of the categories. Those of a mixed-light
// luminaire are set, with their counts, in a dialog.
CellSetup CQuorvaneLuminaireDlg::LightSourceSetup(const tagLUMINAIREINFO& record) {
    const CString& categories = CategoriesOf(record);
    if (IsMixedLight(categories)) {
        return {.kind = CellSetup::Button, .caption = u"..."_s, .takesTexts = true};
    }
    return {.kind = CellSetup::DropDown, .choices = m_lists.LightSources(categories)};
}

// Assistive technology may enter any text.
void CQuorvaneLuminaireDlg::TakeCategories(const CString& names, tagLUMINAIREINFO& record) {
    if (m_lists.AreCategories(names)) {
        SetCategories(m_lists.SplitCategoryNames(names), record);
    }
}

// Names that were there before and still are change nothing: neither the order of the categories nor
// categories that are in the file no more.
void CQuorvaneLuminaireDlg::SetCategories(const std::vector<CString>& names, tagLUMINAIREINFO& record) {
    const std::vector<CString> before =
        m_lists.SplitCategoryNames(m_lists.CategoryNames(record.LamphouseTypeID));
    if (!std::is_permutation(names.begin(), names.end(), before.begin(), before.end())) {
        record.LamphouseTypeID = m_lists.CategoryIds(Join(names));
        record.DefaultLamphouse = m_lists.DefaultLightSource(record.LamphouseTypeID, record.DefaultLamphouse);
    }
}

void CQuorvaneLuminaireDlg::TakeLightSources(const CString& texts, tagLUMINAIREINFO& record) {
    if (texts != m_lists.LightSourceTexts(record.DefaultLamphouse)) {
        m_lists.Invalidate();  // the light sources may have changed since they were listed
        record.DefaultLamphouse = m_lists.LightSourceIds(texts, record.DefaultLamphouse);
    }
}

// ---- Tips

// A path from the file may name anything, and is not followed because the mouse has come to rest.
GridTip CQuorvaneLuminaireDlg::PhotoTip(const tagLUMINAIREINFO& record) {
    if (record.LampPhoto.isEmpty()) {
        return {};
    }
    if (!PhotoLibrary::IsOwn(record.ID, record.LampPhoto) && !m_luminaires.IsToBeCopied(record)) {
        return {.text = u"此图片不在图片库中,按“>>>”可以查看。"_s};
    }
    return m_photoTips.TipOf(m_luminaires.Photos().FilePath(record.LampPhoto));
}

// Each light source with its count.
GridTip CQuorvaneLuminaireDlg::LightSourceTip(const tagLUMINAIREINFO& record) {
    const std::vector<CString> counts = Split(record.LamphouseCount, u',');
    std::size_t number = 0;
    QStringList lines;
    for (const CString& text :
         m_lists.SplitLightSourceTexts(m_lists.LightSourceTexts(record.DefaultLamphouse))) {
        lines += number < counts.size() ? text + u" × "_s + counts[number] : text;
        ++number;
    }
    return {.text = lines.join(u'\n')};
}

}  // namespace quorvane
