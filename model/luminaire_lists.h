// What a luminaire's texts refer to: category names and light source texts, each read from the database once
// and shared by all rows.
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

class LuminaireLists {
public:
    explicit LuminaireLists(CLightingDatabase& database) : m_database(database) {}

    // All categories, for the names in a text and for when the database does not answer.
    void SetCategories(std::vector<tagLAMPHOUSETYPE> categories) { m_categories = std::move(categories); }

    // Lets everything be read anew.
    void Forget();
    // Whether the database has answered everything since: false when a list or a text may miss something.
    bool IsWhole() const { return m_isWhole; }

    // "1,10" → "常用灯具,卤钨灯"; an ID without a category has no name in it.
    CString CategoryNames(const CString& categoryIds);
    // The other way; a name without a category is 0.
    CString CategoryIds(const CString& categoryNames);
    CString CategoryId(const CString& categoryName);
    // The names in such a text, also those that hold a ",".
    std::vector<CString> SplitCategoryNames(const CString& categoryNames) const;

    // Reads the light sources of those categories at once, before they are asked for one by one by their IDs.
    void ReadLightSources(const CString& categoryIds) { LightSources(categoryIds); }
    // The light sources of those categories, in the order of the categories.
    SharedTexts LightSources(const CString& categoryIds);

    // "3,7" → the two light sources' texts. A piece that is no light source's ID stays as it is.
    CString LightSourceTexts(const CString& ids);
    // The other way. A piece that is no light source's text stays as it is. Of light sources that read the
    // same, those among presentIds are taken first.
    CString LightSourceIds(const CString& texts, const CString& presentIds);
    // The IDs, with texts among them that are found by now as IDs too. The database may not have answered
    // when such a text was chosen.
    CString Resolved(const CString& ids);
    // The texts in such a text, also those that hold a ",".
    std::vector<CString> SplitLightSourceTexts(const CString& texts);
    // The ID of the light source of one such text; 0 when there is none.
    int LightSourceId(const CString& text);

private:
    // The texts of a category's light sources.
    const std::vector<CString>& LightSourcesOf(int categoryId);
    void ReadAllLightSources();
    CString LightSourceText(const CString& id);

    CLightingDatabase& m_database;
    std::vector<tagLAMPHOUSETYPE> m_categories;
    std::map<int, CString> m_categoryNames;
    std::map<int, std::vector<CString>> m_lightSources;  // by category
    std::map<CString, SharedTexts> m_choices;            // by categories
    std::map<int, CString> m_textById;
    std::map<CString, int> m_idByText;
    bool m_isWhole = true;
};

}  // namespace quorvane
