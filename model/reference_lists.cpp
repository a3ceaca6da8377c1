#include "model/reference_lists.h"

#include <algorithm>

#include "data/number_text.h"
#include "model/light_source_categories.h"
#include "model/light_source_text.h"
#include "model/text_checks.h"

namespace quorvane {
namespace {

// A piece that is not an ID is the text of a light source that was not found, even when it begins with
// digits.
bool IsId(const CString& piece) {
    return FormatInteger(ToInteger(piece)) == piece.trimmed();
}

// Splits at the commas, but keeps the longest run of pieces together that is a known text: a name may hold a
// comma itself.
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

void ReferenceLists::Invalidate() {
    m_categoryNames.clear();
    m_categoryIds.clear();
    m_lightSources.clear();
    m_choicesByIds.clear();
    m_choicesByCategoryName.clear();
    for (auto& [id, text] : m_textById) {
        if (!text.isEmpty()) {
            m_formerTexts.insert_or_assign(id, std::move(text));
        }
    }
    m_textById.clear();
    m_idByText.clear();
    m_isComplete = true;
}

// ---- Categories

const std::vector<tagLAMPHOUSETYPE>& ReferenceLists::Categories() {
    if (!m_hasAllCategories) {
        m_hasAllCategories = m_database.LoadLampTypes(m_categories);
    }
    return m_categories;
}

std::vector<CString> ReferenceLists::LightSourceCategoryNames() {
    std::vector<CString> names;
    for (const tagLAMPHOUSETYPE& category : Categories()) {
        if (HoldsLightSources(category.LamphouseType)) {
            names.push_back(category.LamphouseType);
        }
    }
    return names;
}

const tagLAMPHOUSETYPE* ReferenceLists::LoadedCategory(const CString& name) {
    const auto found = std::ranges::find(m_categories, name, &tagLAMPHOUSETYPE::LamphouseType);
    return found == m_categories.end() ? nullptr : &*found;
}

CString ReferenceLists::CategoryName(int id) {
    const auto known = m_categoryNames.find(id);
    if (known != m_categoryNames.end()) {
        return known->second;
    }
    CString name;
    if (!m_database.GetLampTypeName(id, name)) {
        const auto loaded = std::ranges::find(m_categories, id, &tagLAMPHOUSETYPE::ID);
        m_isComplete = loaded != m_categories.end() && m_isComplete;
        name = loaded == m_categories.end() ? CString() : loaded->LamphouseType;
    }
    return m_categoryNames.emplace(id, name).first->second;
}

// Some names can be in no statement, but are known all the same.
int ReferenceLists::CategoryId(const CString& name) {
    const auto known = m_categoryIds.find(name);
    if (known != m_categoryIds.end()) {
        return known->second;
    }
    int id = 0;
    if (!m_database.FindLampTypeID(name, id)) {
        const tagLAMPHOUSETYPE* loaded = LoadedCategory(name);
        id = loaded == nullptr ? 0 : loaded->ID;
    }
    return m_categoryIds.emplace(name, id).first->second;
}

CString ReferenceLists::CategoryNames(const CString& categoryIds) {
    std::vector<CString> names;
    for (const CString& id : Split(categoryIds, u',')) {
        const CString name = CategoryName(ToInteger(id));
        if (!name.isEmpty()) {
            names.push_back(name);
        }
    }
    return Join(names);
}

CString ReferenceLists::CategoryIds(const CString& categoryNames) {
    std::vector<CString> ids;
    for (const CString& name : SplitCategoryNames(categoryNames)) {
        ids.push_back(FormatInteger(CategoryId(name)));
    }
    return Join(ids);
}

bool ReferenceLists::AreCategories(const CString& categoryNames) {
    const std::vector<CString> names = SplitCategoryNames(categoryNames);
    const bool isMixed = std::ranges::find(names, kMixedLight) != names.end();
    return !names.empty() && std::ranges::all_of(names, [&](const CString& name) {
        return CategoryId(name) != 0 && !(isMixed && HoldsLightSources(name));
    });
}

std::vector<CString> ReferenceLists::SplitCategoryNames(const CString& categoryNames) {
    return SplitKnown(categoryNames, [this](const CString& name) { return LoadedCategory(name) != nullptr; });
}

// ---- Light sources

std::vector<CString> ReferenceLists::Remember(const std::vector<tagLAMPHOUSEINFO>& lightSources) {
    std::vector<CString> texts;
    texts.reserve(lightSources.size());
    for (const tagLAMPHOUSEINFO& lightSource : lightSources) {
        const CString text = quorvane::LightSourceText(lightSource);
        m_textById.insert_or_assign(lightSource.ID, text);
        m_idByText.try_emplace(text, lightSource.ID);
        texts.push_back(text);
    }
    return texts;
}

const std::vector<CString>& ReferenceLists::LightSourcesOf(int categoryId) {
    const auto [place, isNew] = m_lightSources.try_emplace(categoryId);
    if (isNew) {
        std::vector<tagLAMPHOUSEINFO> lightSources;
        m_isComplete = m_database.LoadLightSourcesByType(categoryId, lightSources) && m_isComplete;
        place->second = Remember(lightSources);
    }
    return place->second;
}

SharedTexts ReferenceLists::LightSources(const CString& categoryIds) {
    SharedTexts& choices = m_choicesByIds[categoryIds];
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

SharedTexts ReferenceLists::LightSourcesOfCategory(const CString& categoryName) {
    const auto known = m_choicesByCategoryName.find(categoryName);
    if (known != m_choicesByCategoryName.end()) {
        return known->second;
    }
    std::vector<tagLAMPHOUSEINFO> lightSources;
    const bool complete = m_database.LoadLightSourcesByTypeName(categoryName, lightSources);
    auto choices = std::make_shared<const std::vector<CString>>(Remember(lightSources));
    if (complete) {
        m_choicesByCategoryName.emplace(categoryName, choices);
    }
    m_isComplete = complete && m_isComplete;
    return choices;
}

CString ReferenceLists::LightSourceTexts(const CString& ids) {
    std::vector<CString> texts;
    for (const CString& id : Split(ids, u',')) {
        texts.push_back(LightSourceText(id));
    }
    return Join(texts);
}

CString ReferenceLists::LightSourceText(const CString& idText) {
    if (!IsId(idText)) {
        return idText;
    }
    const int id = ToInteger(idText);
    auto known = m_textById.find(id);
    if (known == m_textById.end()) {
        tagLAMPHOUSEINFO onlyId;
        onlyId.ID = id;
        tagLAMPHOUSEINFO lightSource;
        const bool answered = m_database.LoadLightSourceByID(id, lightSource);
        m_isComplete = answered && m_isComplete;
        if (lightSource != onlyId) {  // without a row only the ID is set
            Remember({lightSource});
        }
        const auto former = answered ? m_formerTexts.end() : m_formerTexts.find(id);
        known = m_textById.try_emplace(id, former == m_formerTexts.end() ? CString() : former->second).first;
    }
    return known->second.isEmpty() ? idText : known->second;
}

CString ReferenceLists::LightSourceIds(const CString& texts, const CString& presentIds) {
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

CString ReferenceLists::ResolvedLightSourceIds(const CString& ids) {
    const std::vector<CString> pieces = Split(ids, u',');
    const bool resolved = std::all_of(pieces.begin(), pieces.end(),
                                      [](const CString& piece) { return piece.isEmpty() || IsId(piece); });
    return resolved ? ids : LightSourceIds(LightSourceTexts(ids), ids);
}

// A mixed-light luminaire may have light sources of any category.
void ReferenceLists::LoadAllLightSources() {
    for (const tagLAMPHOUSETYPE& category : Categories()) {
        LightSourcesOf(category.ID);
    }
}

std::vector<CString> ReferenceLists::SplitLightSourceTexts(const CString& texts) {
    if (texts.contains(u',')) {
        LoadAllLightSources();
    }
    return SplitKnown(texts, [this](const CString& part) { return m_idByText.contains(part); });
}

bool ReferenceLists::AreLightSources(const CString& texts) {
    return std::ranges::all_of(SplitLightSourceTexts(texts),
                               [this](const CString& text) { return LightSourceId(text) != 0; });
}

// The statement may find another light source (it searches by name alone when the model is empty), and with
// neither name nor model it is not run. The light sources loaded so far then decide.
int ReferenceLists::LightSourceId(const CString& text) {
    const LightSourceParts parts = SplitLightSourceText(text);
    const bool canBeSearched = parts != LightSourceParts{};
    int id = 0;
    const bool answered = m_database.FindLightSourceID(parts.name, parts.model, id);
    if (id != 0 && LightSourceText(FormatInteger(id)) == text) {
        return id;
    }
    LoadAllLightSources();
    const auto known = m_idByText.find(text);
    if (known != m_idByText.end()) {
        return known->second;
    }
    m_isComplete = (answered || !canBeSearched) && m_isComplete;
    return id;
}

CString ReferenceLists::DefaultLightSource(const CString& categoryIds, const CString& present) {
    if (IsMixedLight(categoryIds)) {
        return present;
    }
    const SharedTexts offered = LightSources(categoryIds);
    const CString text = LightSourceTexts(present);
    if (std::ranges::find(*offered, text) != offered->end() || (!m_isComplete && !text.isEmpty())) {
        return present;
    }
    return offered->empty() ? CString() : LightSourceIds(offered->front(), present);
}

}  // namespace quorvane
