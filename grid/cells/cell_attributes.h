// The attributes that many cells have in common, kept once and shared by number.
#pragma once

#include <QColor>
#include <QFont>
#include <optional>

#include "grid/grid_types.h"

namespace quorvane {

struct CellAttributes {
    static constexpr unsigned DefaultFormat = CellFormat::Left | CellFormat::VCentre |
                                              CellFormat::SingleLine | CellFormat::NoPrefix |
                                              CellFormat::EndEllipsis;
    static constexpr int DefaultMargin = 4;

    unsigned format = DefaultFormat;
    unsigned state = 0;
    int margin = DefaultMargin;  // pixels left and right of the text
    int image = -1;              // at the left of the text; index into the grid's images, -1 = none
    int secondImage = -1;        // at the right of it
    QColor textColour = {};      // invalid: the grid's
    QColor backColour = {};
    std::optional<QFont> font = {};

    bool operator==(const CellAttributes&) const = default;
};

// A cell's reference to its attributes: four bytes, so that a plain cell costs little more than its text. The
// values live as long as the program, which has a handful of different ones. Only the thread of the user
// interface may use them.
class SharedAttributes {
public:
    const CellAttributes& operator*() const;
    const CellAttributes* operator->() const { return &**this; }
    SharedAttributes& operator=(const CellAttributes& attributes);

private:
    quint32 m_number = 0;  // 0: the default attributes
};

}  // namespace quorvane
