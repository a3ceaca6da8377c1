#include "grid/cells/cell_attributes.h"

#include <QHashFunctions>
#include <array>
#include <deque>
#include <unordered_map>

namespace quorvane {
namespace {

// Attributes that differ in nothing but the font share a hash, which is rare enough.
size_t HashOf(const CellAttributes& a) {
    return qHashMulti(0, a.format, a.state, a.margin, a.image, a.secondImage, a.textColour.isValid(),
                      a.textColour.rgba(), a.backColour.isValid(), a.backColour.rgba());
}

class AttributesTable {
public:
    AttributesTable() { m_values.emplace_back(); }

    const CellAttributes& At(quint32 number) const { return m_values[number]; }

    quint32 NumberOf(const CellAttributes& attributes) {
        // While a table is filled its columns take turns, so the few latest ones are looked at first.
        quint32& recent =
            m_recent[(attributes.format ^ attributes.state ^ attributes.backColour.rgba()) % kRecentCount];
        if (attributes != m_values[recent]) {
            recent = LookUp(attributes);
        }
        return recent;
    }

private:
    static constexpr unsigned kRecentCount = 16;

    quint32 LookUp(const CellAttributes& attributes) {
        const size_t hash = HashOf(attributes);
        const auto [first, last] = m_numbers.equal_range(hash);
        for (auto entry = first; entry != last; ++entry) {
            if (m_values[entry->second] == attributes) {
                return entry->second;
            }
        }
        const auto number = static_cast<quint32>(m_values.size());
        m_values.push_back(attributes);
        m_numbers.emplace(hash, number);
        return number;
    }

    std::deque<CellAttributes> m_values;
    std::unordered_multimap<size_t, quint32> m_numbers;
    std::array<quint32, kRecentCount> m_recent = {};  // numbers; 0 is always one
};

AttributesTable& Table() {
    static AttributesTable table;
    return table;
}

}  // namespace

const CellAttributes& SharedAttributes::operator*() const {
    return Table().At(m_number);
}

SharedAttributes& SharedAttributes::operator=(const CellAttributes& attributes) {
    m_number = Table().NumberOf(attributes);
    return *this;
}

}  // namespace quorvane
