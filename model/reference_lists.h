// ReferenceLists: the light source categories and the light sources that other records refer to, by ID and by
// text. The one cache of them; all pages share it.
//
// A light source is shown as its name, ":" and its model. Lists of IDs and of texts are joined by ",".
#pragma once

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "data/lighting_database.h"

namespace quorvane {

// Texts that the cells of many rows share.
using SharedTexts = std::shared_ptr<const std::vector<CString>>;

class ReferenceLists {
public:
    explicit ReferenceLists(CLightingDatabase& database) : m_database(database) {}

    // Clears everything but Categories(). To be called when light sources may have changed, in this program
    // or in another one.
    void Invalidate();
    // False when the database has failed to answer since the last Invalidate: a list or a text may be
    // incomplete.
    bool IsComplete() const { return m_isComplete; }

    // All categories, in the database's order. Loaded by the first call, and again by each further call until
    // they could be loaded completely.
    const std::vector<tagLAMPHOUSETYPE>& Categories();
    bool HasAllCategories() const { return m_hasAllCategories; }
    // The names of the categories to which light sources may belong, in the same order.
    std::vector<CString> LightSourceCategoryNames();

    // The name of a category, or an empty text when there is none.
    CString CategoryName(int id);
    // The ID of the category with that name, or 0. When the database does not answer, Categories() decides.
    int CategoryId(const CString& name);
    // "1,10" → "常用灯具,卤钨灯". An ID without a category is left out.
    CString CategoryNames(const CString& categoryIds);
    // "常用灯具,卤钨灯" → "1,10". A name without a category is 0.
    CString CategoryIds(const CString& categoryNames);
    // Whether these are names of categories that a luminaire may have together.
    bool AreCategories(const CString& categoryNames);
    // The names in such a text. A name may hold a "," itself.
    std::vector<CString> SplitCategoryNames(const CString& categoryNames);

    // The texts of the light sources of those categories, in the order of the categories.
    SharedTexts LightSources(const CString& categoryIds);
    // The texts of the light sources of the category with that name.
    SharedTexts LightSourcesOfCategory(const CString& categoryName);

    // "3,7" → the texts of the two light sources. A piece that is no light source's ID stays as it is.
    CString LightSourceTexts(const CString& ids);
    // The other way. A piece that is no light source's text stays as it is. Among light sources with the same
    // text, those in presentIds are preferred.
    CString LightSourceIds(const CString& texts, const CString& presentIds);
    // The IDs, where pieces that are texts are replaced by their IDs if these are known by now. Such a text
    // is left by LightSourceIds when the database did not answer.
    CString ResolvedLightSourceIds(const CString& ids);
    // Whether each of these texts is a light source's.
    bool AreLightSources(const CString& texts);
    // The texts in such a text. A light source's text may hold a "," itself.
    std::vector<CString> SplitLightSourceTexts(const CString& texts);
    // The ID of the light source with that text, or 0.
    int LightSourceId(const CString& text);
    // The default light source of a luminaire whose categories have just been set: the present one (an ID)
    // if it is among the light sources of the categories, otherwise the first of these, or none. A
    // mixed-light luminaire keeps its light sources, and an incomplete list takes none away.
    CString DefaultLightSource(const CString& categoryIds, const CString& present);

private:
    const tagLAMPHOUSETYPE* LoadedCategory(const CString& name);
    // The texts of the light sources of one category.
    const std::vector<CString>& LightSourcesOf(int categoryId);
    std::vector<CString> Remember(const std::vector<tagLAMPHOUSEINFO>& lightSources);
    void LoadAllLightSources();
    CString LightSourceText(const CString& id);

    CLightingDatabase& m_database;
    std::vector<tagLAMPHOUSETYPE> m_categories;
    bool m_hasAllCategories = false;
    std::map<int, CString> m_categoryNames;
    std::map<CString, int> m_categoryIds;
    std::map<int, std::vector<CString>> m_lightSources;      // by category
    std::map<CString, SharedTexts> m_choicesByIds;           // by category IDs
    std::map<CString, SharedTexts> m_choicesByCategoryName;  // complete ones only
    std::map<int, CString> m_textById;                       // an empty text: there is no such light source
    std::map<CString, int> m_idByText;
    std::map<int, CString> m_formerTexts;  // shown while the database does not answer
    bool m_isComplete = true;
};

}  // namespace quorvane
