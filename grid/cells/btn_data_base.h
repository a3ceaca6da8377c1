// The settings of the buttons in cells, kept once for all button cells of a grid.
#pragma once

#include <memory>
#include <set>
#include <vector>

#include "grid/grid_types.h"

namespace quorvane {

// One button of a cell.
struct BtnSetup {
    unsigned type = 0;   // BtnType
    unsigned state = 0;  // BtnState
    int position = 0;    // 0: the cell's own button, 1: at its left, 2: at its right
    int width = 0;       // pixels, 0 = automatic
    int limit = 0;       // greatest height in pixels, 0 = as high as the cell
    CString caption = {};

    bool operator==(const BtnSetup&) const = default;
};

class CBtnDataBase {
public:
    using Setups = std::shared_ptr<const std::vector<BtnSetup>>;

    // The shared copy of a cell's buttons; cells with equal buttons get the same one. It may outlive the
    // store.
    Setups Share(std::vector<BtnSetup> setups);
    // How many different sets of buttons are kept.
    int Count() const { return static_cast<int>(m_setups.size()); }

private:
    struct Before {
        bool operator()(const Setups& a, const Setups& b) const;
    };
    std::set<Setups, Before> m_setups;
};

}  // namespace quorvane
