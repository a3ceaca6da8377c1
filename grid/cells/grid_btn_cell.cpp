#include "grid/cells/grid_btn_cell.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionButton>
#include <QWidget>
#include <algorithm>

namespace quorvane {
namespace {

constexpr unsigned kKindBits = 255;  // of a button's state; the rest says how it is at the moment

bool IsPushButton(const BtnSetup& setup) {
    return setup.type == BtnType::Button && (setup.state & BtnState::PushButton) != 0;
}

bool IsCheckBox(const BtnSetup& setup) {
    return setup.type == BtnType::Button && (setup.state & kKindBits) == BtnState::CheckBox;
}

int WidthOf(const BtnSetup& setup, const QFont& font, int cellHeight) {
    if (setup.width > 0) {
        return setup.width;
    }
    constexpr int kWidestArrow = 18;
    const int box = std::min(cellHeight, kWidestArrow);
    const QFontMetrics metrics(font);
    if (IsPushButton(setup)) {
        return metrics.horizontalAdvance(setup.caption) + metrics.averageCharWidth() * 2;
    }
    return setup.caption.isEmpty() ? box : box + metrics.horizontalAdvance(setup.caption);
}

QRect LimitHeight(const QRect& rect, int limit) {
    if (limit <= 0 || rect.height() <= limit) {
        return rect;
    }
    return {rect.left(), rect.top() + (rect.height() - limit) / 2, rect.width(), limit};
}

void DrawBtn(QPainter& painter, const BtnSetup& setup, const QRect& rect, const CellLook& look,
             bool pressed) {
    const QStyle* style = look.widget != nullptr ? look.widget->style() : QApplication::style();
    QStyleOptionButton option;
    if (look.widget != nullptr) {
        option.initFrom(look.widget);
    }
    option.rect = rect;
    option.text = setup.caption;
    option.fontMetrics = QFontMetrics(look.font);
    option.state = QStyle::State_Raised;
    option.state.setFlag(QStyle::State_Enabled, look.enabled && (setup.state & BtnState::Inactive) == 0);
    if (pressed || (setup.state & BtnState::Pushed) != 0) {
        option.state.setFlag(QStyle::State_Raised, false);
        option.state |= QStyle::State_Sunken;
    }
    painter.setFont(look.font);
    if (IsPushButton(setup)) {
        style->drawControl(QStyle::CE_PushButton, &option, &painter, look.widget);
    } else if (IsCheckBox(setup)) {
        option.state |= (setup.state & BtnState::Checked) != 0 ? QStyle::State_On : QStyle::State_Off;
        style->drawControl(QStyle::CE_CheckBox, &option, &painter, look.widget);
    } else {
        style->drawPrimitive(QStyle::PE_PanelButtonTool, &option, &painter, look.widget);
        const int side = std::min(rect.width(), rect.height()) / 2;
        option.rect = QRect(0, 0, side, side);
        option.rect.moveCenter(rect.center());
        style->drawPrimitive(QStyle::PE_IndicatorArrowDown, &option, &painter, look.widget);
    }
}

}  // namespace

void CGridBtnCellBase::SetBtnDataBase(CBtnDataBase* dataBase) {
    m_dataBase = dataBase;
    if (m_setups != nullptr) {
        StoreBtns(*m_setups);
    }
}

void CGridBtnCellBase::StoreBtns(std::vector<BtnSetup> setups) {
    m_setups = m_dataBase != nullptr ? m_dataBase->Share(std::move(setups))
                                     : std::make_shared<const std::vector<BtnSetup>>(std::move(setups));
}

bool CGridBtnCellBase::SetupBtns(int index, unsigned type, unsigned state, int position, int width, int limit,
                                 const CString& caption) {
    if (index < 0 || index >= MaxBtns || position < 0 || position > 2 || (position == 0 && index != 0)) {
        return false;
    }
    std::vector<BtnSetup> setups = m_setups != nullptr ? *m_setups : std::vector<BtnSetup>();
    const std::size_t place = static_cast<std::size_t>(index);
    if (place >= setups.size()) {
        // Buttons that were skipped stand at the right until they are set up.
        setups.resize(place + 1, BtnSetup{BtnType::Button, BtnState::PushButton, 2, 0, 0, {}});
    }
    setups[place] = {type, state, position, width, limit, caption};
    StoreBtns(std::move(setups));
    return true;
}

int CGridBtnCellBase::GetBtnCount() const {
    return m_setups != nullptr ? static_cast<int>(m_setups->size()) : 0;
}

BtnSetup CGridBtnCellBase::GetBtn(int index) const {
    return index >= 0 && index < GetBtnCount() ? (*m_setups)[static_cast<std::size_t>(index)] : BtnSetup{};
}

std::vector<QRect> CGridBtnCellBase::BtnRects(const QRect& cell, const QFont& font) const {
    std::vector<QRect> rects;
    QRect left = cell;
    for (int i = 0; i < GetBtnCount(); ++i) {
        const BtnSetup& setup = (*m_setups)[static_cast<std::size_t>(i)];
        QRect rect = left;
        if (setup.position != 0 || setup.width > 0 || !GetText().isEmpty()) {
            rect.setWidth(std::min(left.width(), WidthOf(setup, font, cell.height())));
        }
        if (setup.position == 1) {
            left.setLeft(rect.right() + 1);
        } else {
            rect.moveRight(left.right());
            left.setRight(rect.left() - 1);
        }
        rects.push_back(LimitHeight(rect, setup.limit));
    }
    rects.push_back(left);
    return rects;
}

QRect CGridBtnCellBase::FreeRect(const QRect& cell, const QFont& font) const {
    return BtnRects(cell, font).back();
}

void CGridBtnCellBase::Paint(QPainter& painter, const CellLook& look) const {
    CGridCellBase::Paint(painter, look);
    const std::vector<QRect> rects = BtnRects(look.rect, look.font);
    for (int i = 0; i < GetBtnCount(); ++i) {
        const std::size_t place = static_cast<std::size_t>(i);
        DrawBtn(painter, (*m_setups)[place], rects[place], look, look.pressedButton == i);
    }
}

int CGridBtnCellBase::BtnAt(const QRect& cell, const QFont& font, const QPoint& position) const {
    const std::vector<QRect> rects = BtnRects(cell, font);
    for (int i = 0; i < GetBtnCount(); ++i) {
        const bool active = (GetBtn(i).state & BtnState::Inactive) == 0;
        if (active && rects[static_cast<std::size_t>(i)].contains(position)) {
            return i;
        }
    }
    return -1;
}

bool CGridBtnCellBase::PressBtn(int button) {
    if (button < 0 || button >= GetBtnCount() || (GetBtn(button).state & BtnState::Inactive) != 0) {
        return false;
    }
    if (IsCheckBox(GetBtn(button))) {
        std::vector<BtnSetup> setups = *m_setups;
        setups[static_cast<std::size_t>(button)].state ^= BtnState::Checked;
        StoreBtns(std::move(setups));
    }
    return true;
}

CellEditing CGridBtnCell::Editing() const {
    return GetBtnCount() > 0 && GetBtn(0).position == 0 ? CellEditing::None : CellEditing::Text;
}

CGridBtnCellCombo::CGridBtnCellCombo() {
    static const auto arrow = std::make_shared<const std::vector<BtnSetup>>(
        1, BtnSetup{BtnType::Scroll, BtnState::ComboBox, 2, 0, 0, {}});
    m_setups = arrow;
}

void CGridBtnCellCombo::SetChoices(std::shared_ptr<const std::vector<CString>> choices) {
    m_choices = std::move(choices);
    const std::vector<CString>& texts = Choices();
    if (std::find(texts.begin(), texts.end(), GetText()) == texts.end()) {
        SetText(texts.empty() ? CString() : texts.front());
    }
}

const std::vector<CString>& CGridBtnCellCombo::Choices() const {
    static const std::vector<CString> none;
    return m_choices != nullptr ? *m_choices : none;
}

}  // namespace quorvane
