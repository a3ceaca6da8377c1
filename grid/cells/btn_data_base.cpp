#include "grid/cells/btn_data_base.h"

#include <algorithm>
#include <tuple>

namespace quorvane {
namespace {

bool ComesBefore(const BtnSetup& a, const BtnSetup& b) {
    return std::tie(a.type, a.state, a.position, a.width, a.limit, a.caption) <
           std::tie(b.type, b.state, b.position, b.width, b.limit, b.caption);
}

}  // namespace

bool CBtnDataBase::Before::operator()(const Setups& a, const Setups& b) const {
    return std::lexicographical_compare(a->begin(), a->end(), b->begin(), b->end(), ComesBefore);
}

CBtnDataBase::Setups CBtnDataBase::Share(std::vector<BtnSetup> setups) {
    return *m_setups.insert(std::make_shared<const std::vector<BtnSetup>>(std::move(setups))).first;
}

}  // namespace quorvane
