#include "model/luminaire_lists.h"

#include <algorithm>

#include "data/number_text.h"
#include "model/light_source_text.h"
#include "model/text_checks.h"

namespace quorvane {
namespace {

auto FindCategory(const std::vector<tagLAMPHOUSETYPE>& categories, const CString& name) {
    return std::find_if(categories.begin(), categories.end(),
                        [&name](const tagLAMPHOUSETYPE& category) { return category.LamphouseType == name; });
}

// Otherwise it is a text that was never resolved, even when it begins with digits.
bool IsId(const CString& piece) {
    return FormatInteger(ToInteger(piece)) == piece.trimmed();
}

// The pieces between the commas, except that of several in a row the longest that is known as a whole stays
// together: a name may hold a comma itself.
template <typename IsKnown>
std::vector<CString> SplitKnown(const CString& text, IsKnown isKnown) {
    const std::vector<CString> pieces = Split(text, u',');
    std::vector<CString> parts;
    for (size_t first = 0; first < pieces.size();) {
        size_t used = 1;
        CString part = pieces[first];
        CString longer = part;
        for (size_t next = first + 1; next < pieces.size(); ++next) {
            longer += u',' + pieces[next];
            if (isKnown(longer)) {
                part = longer;
                used = next + 1 - first;
            }
        }
        parts.push_back(part);
        first += used;
    }
    return parts;
}

}  // namespace

void LuminaireLists::Forget() {
    m_categoryNames.clear();
    m_lightSources.clear();
    m_choices.clear();
    m_textById.clear();
    m_idByText.clear();
    m_isWhole = true;
}

CString LuminaireLists::CategoryNames(const CString& categoryIds) {
    std::vector<CString> names;
    for (const CString& piece : Split(categoryIds, u',')) {
        const int id = ToInteger(piece);
        auto known = m_categoryNames.find(id);
        if (known == m_categoryNames.end()) {
            CString name;
            m_isWhole = m_database.GetLampTypeName(id, name) && m_isWhole;
            known = m_categoryNames.emplace(id, name).first;
        }
        if (!known->second.isEmpty()) {
            names.push_back(known->second);
        }
    }
    return Join(names);
}

CString LuminaireLists::CategoryIds(const CString& categoryNames) {
    std::vector<CString> ids;
    for (const CString& name : SplitCategoryNames(categoryNames)) {
        ids.push_back(CategoryId(name));
    }
    return Join(ids);
}

// A name that no statement can carry is still known.
CString LuminaireLists::CategoryId(const CString& categoryName) {
    int id = 0;
    if (!m_database.FindLampTypeID(categoryName, id)) {
        const auto known = FindCategory(m_categories, categoryName);
        id = known == m_categories.end() ? 0 : known->ID;
    }
    return FormatInteger(id);
}

std::vector<CString> LuminaireLists::SplitCategoryNames(const CString& categoryNames) const {
    return SplitKnown(categoryNames, [this](const CString& name) {
        return FindCategory(m_categories, name) != m_categories.end();
    });
}

const std::vector<CString>& LuminaireLists::LightSourcesOf(int categoryId) {
    const auto [place, isNew] = m_lightSources.try_emplace(categoryId);
    if (isNew) {
        std::vector<tagLAMPHOUSEINFO> lightSources;
        m_isWhole = m_database.LoadLightSourcesByType(categoryId, lightSources) && m_isWhole;
        for (const tagLAMPHOUSEINFO& lightSource : lightSources) {
            const CString text = quorvane::LightSourceText(lightSource);
            m_textById.insert_or_assign(lightSource.ID, text);
            m_idByText.try_emplace(text, lightSource.ID);
            place->second.push_back(text);
        }
    }
    return place->second;
}

SharedTexts LuminaireLists::LightSources(const CString& categoryIds) {
    SharedTexts& choices = m_choices[categoryIds];
    if (choices == nullptr) {
        std::vector<CString> texts;
        for (const CString& categoryId : Split(categoryIds, u',')) {
            const std::vector<CString>& ofOne = LightSourcesOf(ToInteger(categoryId));
            texts.insert(texts.end(), ofOne.begin(), ofOne.end());
        }
        choices = std::make_shared<const std::vector<CString>>(std::move(texts));
    }
    return choices;
}

CString LuminaireLists::LightSourceTexts(const CString& ids) {
    std::vector<CString> texts;
    for (const CString& id : Split(ids, u',')) {
        texts.push_back(LightSourceText(id));
    }
    return Join(texts);
}

CString LuminaireLists::LightSourceText(const CString& idText) {
    if (!IsId(idText)) {
        return idText;
    }
    const int id = ToInteger(idText);
    auto known = m_textById.find(id);
    if (known == m_textById.end()) {
        tagLAMPHOUSEINFO onlyId;
        onlyId.ID = id;
        tagLAMPHOUSEINFO lightSource;
        m_isWhole = m_database.LoadLightSourceByID(id, lightSource) && m_isWhole;
        const bool found = lightSource != onlyId;  // without a row only the ID is set
        known = m_textById.emplace(id, found ? quorvane::LightSourceText(lightSource) : CString()).first;
        if (found) {
            m_idByText.try_emplace(known->second, id);
        }
    }
    return known->second.isEmpty() ? idText : known->second;
}

CString LuminaireLists::LightSourceIds(const CString& texts, const CString& presentIds) {
    if (texts.isEmpty()) {
        return {};
    }
    std::vector<CString> present = Split(presentIds, u',');
    std::erase_if(present, [](const CString& id) { return !IsId(id); });
    std::vector<CString> ids;
    for (const CString& text : SplitLightSourceTexts(texts)) {
        const auto same = std::find_if(present.begin(), present.end(),
                                       [&](const CString& id) { return LightSourceText(id) == text; });
        if (same != present.end()) {
            ids.push_back(*same);
            present.erase(same);
            continue;
        }
        const int id = LightSourceId(text);
        ids.push_back(id == 0 ? text : FormatInteger(id));
    }
    return Join(ids);
}

CString LuminaireLists::Resolved(const CString& ids) {
    const std::vector<CString> pieces = Split(ids, u',');
    const bool resolved = std::all_of(pieces.begin(), pieces.end(),
                                      [](const CString& piece) { return piece.isEmpty() || IsId(piece); });
    return resolved ? ids : LightSourceIds(LightSourceTexts(ids), ids);
}

// A mixed luminaire's light sources may be of any category.
void LuminaireLists::ReadAllLightSources() {
    for (const tagLAMPHOUSETYPE& category : m_categories) {
        LightSourcesOf(category.ID);
    }
}

std::vector<CString> LuminaireLists::SplitLightSourceTexts(const CString& texts) {
    if (texts.contains(u',')) {
        ReadAllLightSources();
    }
    return SplitKnown(texts, [this](const CString& part) { return m_idByText.contains(part); });
}

// A look-up by name alone may find another model, and one without either is refused; then the light sources
// read so far know better.
int LuminaireLists::LightSourceId(const CString& text) {
    const LightSourceParts parts = SplitLightSourceText(text);
    const bool canBeFound = parts != LightSourceParts{};
    int id = 0;
    const bool answered = m_database.FindLightSourceID(parts.name, parts.model, id);
    if (id != 0 && LightSourceText(FormatInteger(id)) == text) {
        return id;
    }
    ReadAllLightSources();
    const auto known = m_idByText.find(text);
    if (known != m_idByText.end()) {
        return known->second;
    }
    m_isWhole = (answered || !canBeFound) && m_isWhole;
    return id;
}

}  // namespace quorvane
