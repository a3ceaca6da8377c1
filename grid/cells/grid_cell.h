// The cell classes: every cell of the grid is an object of one of them.
//
//   CGridCellBase ─┬─ CGridCell                                         plain text (here)
//                  └─ CGridBtnCellBase ── CGridBtnCell ── CGridBtnCellCombo   (grid_btn_cell.h)
#pragma once

#include <QIcon>
#include <QPoint>
#include <QRect>
#include <vector>

#include "grid/cells/cell_attributes.h"
#include "grid/grid_types.h"

class QPainter;
class QWidget;

namespace quorvane {

// What a cell needs to know to draw itself.
struct CellLook {
    QRect rect;  // the cell without its grid lines, window coordinates
    QFont font;  // its own or the grid's
    QColor textColour;
    bool enabled = true;
    int pressedButton = -1;
    const QWidget* widget = nullptr;             // for the style; may be null
    const std::vector<QIcon>* images = nullptr;  // what the cell's image numbers mean; may be null
};

// How the user changes the text of a cell.
enum class CellEditing { None, Text, Choice };

// Attributes and drawing of a cell. A cell does not know its grid: the setters of CGridCtrl redraw what they
// change, those of the cell do not.
class CGridCellBase {
public:
    // An image is a square beside the text, with some pixels between the two.
    static constexpr int kImageSide = 16;
    static constexpr int kImageRoom = kImageSide + 4;

    virtual ~CGridCellBase() = default;

    virtual void SetText(const CString& text) { m_text = text; }
    void SetImage(int image);
    void SetSecondImage(int image);
    void SetData(qint32 data) { m_data = data; }
    void SetState(unsigned state);
    void SetFormat(unsigned format);
    // An invalid colour means the grid's.
    void SetTextColour(const QColor& colour);
    void SetBackColour(const QColor& colour);
    // No font means the grid's.
    void SetFont(const std::optional<QFont>& font);
    void SetMargin(int pixels);

    CString GetText() const { return m_text; }
    // What is shown when the mouse rests on the cell and its text does not fit.
    virtual CString GetTipText() const { return m_text; }
    int GetImage() const { return m_attributes->image; }
    int GetSecondImage() const { return m_attributes->secondImage; }
    qint32 GetData() const { return m_data; }
    unsigned GetState() const { return m_attributes->state; }
    unsigned GetFormat() const { return m_attributes->format; }
    QColor GetTextColour() const { return m_attributes->textColour; }
    QColor GetBackColour() const { return m_attributes->backColour; }
    std::optional<QFont> GetFont() const { return m_attributes->font; }
    int GetMargin() const { return m_attributes->margin; }
    const CellAttributes& Attributes() const { return *m_attributes; }

    // Sets the fields that the item's mask names.
    void Set(const GridItem& item);
    // Takes over text, data and attributes.
    void CopyFrom(const CGridCellBase& other);

    virtual CellEditing Editing() const = 0;
    // Draws everything but background, grid lines and focus frame.
    virtual void Paint(QPainter& painter, const CellLook& look) const;
    // Where the text stands in a cell of this rectangle, without margins, images and buttons.
    QRect TextRect(const QRect& cell, const QFont& font) const;
    // Pixels that the whole content needs side by side, not more than limit.
    int ContentWidth(const QFont& font, int limit) const;
    // The button at a point of a cell of this rectangle, or -1.
    virtual int BtnAt(const QRect& cell, const QFont& font, const QPoint& position) const;
    // What pressing a button does to the cell itself (a check box changes its mark); false where there is no
    // such active button.
    virtual bool PressBtn(int button);

protected:
    CGridCellBase() = default;
    CGridCellBase(const CGridCellBase&) = default;
    CGridCellBase(CGridCellBase&&) = default;
    CGridCellBase& operator=(const CGridCellBase&) = default;
    CGridCellBase& operator=(CGridCellBase&&) = default;

    // The part of the cell that its buttons leave.
    virtual QRect FreeRect(const QRect& cell, const QFont& font) const;

private:
    template <typename Value>
    void SetAttribute(Value CellAttributes::*attribute, const Value& value);
    void PaintImages(QPainter& painter, const CellLook& look) const;

    CString m_text;
    qint32 m_data = 0;
    SharedAttributes m_attributes;
};

// The plain text cell, of which tables are made by default.
class CGridCell : public CGridCellBase {
public:
    CellEditing Editing() const override { return CellEditing::Text; }
};

}  // namespace quorvane
