// How GridController begins, continues and ends the edit of a cell.
#include <QScrollBar>
#include <memory>
#include <optional>

#include "grid/cells/grid_btn_cell.h"
#include "grid/grid_controller.h"

namespace quorvane {

bool GridController::BeginEdit(CCellID cell, InPlaceEdit::Start start, const QEvent* typed) {
    bool opened = false;
    // Between the steps others are told, who may do anything.
    const auto mayOpen = [=, this] { return !m_edit.IsOn() && m_core.EditingOf(cell) != CellEditing::None; };
    if (m_core.EditingOf(cell) == CellEditing::None) {
        return false;
    }
    Perform([this] { EndEdit(); },
            [=, this] {
                if (mayOpen() && m_core.Focus() != cell) {
                    SetFocusCell(cell);
                }
            },
            [=, this, &opened] {
                if (mayOpen() && m_core.Focus() == cell) {
                    opened = true;
                    OpenAt(cell, start, typed);
                }
            });
    return opened;
}

void GridController::OpenAt(CCellID cell, InPlaceEdit::Start start, const QEvent* typed) {
    EnsureVisible(cell);
    if (m_core.EditingOf(cell) == CellEditing::Choice) {
        DropDown(cell);
        return;
    }
    m_edit.Begin(cell, start);
    if (typed != nullptr) {
        const std::unique_ptr<QEvent> copy(typed->clone());
        QCoreApplication::sendEvent(m_edit.Editor(), copy.get());
    }
}

bool GridController::Compose(const QInputMethodEvent& event) {
    if (m_edit.DropsComposition()) {
        return true;
    }
    const bool types = !event.preeditString().isEmpty() || !event.commitString().isEmpty();
    const CCellID cell = m_core.Focus();
    if (!m_edit.IsOn() && (!types || !m_grid.hasFocus() || m_core.EditingOf(cell) != CellEditing::Text ||
                           !BeginEdit(cell, InPlaceEdit::Start::Composing))) {
        return false;
    }
    m_edit.Compose(event);
    return true;
}

bool GridController::PassToEditor(const QKeyEvent& event) {
    if (!m_edit.IsComposing()) {
        return false;
    }
    const QPointer<QLineEdit> editor = m_edit.Editor();
    m_edit.TakeKeyboard();
    const std::unique_ptr<QKeyEvent> copy(event.clone());
    QCoreApplication::sendEvent(editor, copy.get());
    return true;
}

void GridController::DropDown(CCellID cell) {
    const auto* combo = dynamic_cast<const CGridBtnCellCombo*>(m_core.Cell(cell));
    if (combo == nullptr) {
        return;
    }
    CloseList();
    m_choices = new ComboList(combo->Choices(), combo->GetText(), &m_grid);
    m_choices->setAccessibleName(m_core.ColumnHeadingText(cell.col));
    QObject::connect(m_choices, &ComboList::Chosen, &m_grid, [this, cell](const CString& text) {
        m_choices.clear();
        TakeText(cell, text);
    });
    const QRect rect = m_core.CellRect(cell) & m_grid.viewport()->rect();
    m_choices->DropFrom(QRect(m_grid.viewport()->mapToGlobal(rect.topLeft()), rect.size()));
}

void GridController::EndEdit() {
    Perform([this] {
        const CCellID cell = m_edit.Cell();
        const bool isTyped = m_edit.IsTyped();
        if (const std::optional<CString> text = m_edit.Close()) {
            TakeText(cell, *text, isTyped || *text != m_core.Text(cell));
        }
    });
}

void GridController::TakeText(CCellID cell, const CString& text, bool isTyped) {
    Perform([&] {
        if (m_core.SetText(cell, text)) {
            m_notices.emplace_back([=, this] {
                m_isEditTyped = isTyped;
                Q_EMIT m_grid.EndLabelEdit(cell.row, cell.col);
            });
        }
    });
}

void GridController::TakeFiles(CCellID cell, const QStringList& paths) {
    Perform([this] { EndEdit(); },
            [=, this] {
                m_notices.emplace_back([=, this] { Q_EMIT m_grid.FilesDropped(cell.row, cell.col, paths); });
            });
}

void GridController::EndEditAndMove(GridMove move, NextCell next) {
    const CCellID edited = m_edit.Cell();
    Perform([this] { EndEdit(); },
            [=, this] {
                // Whoever was told of the edit may have inserted or removed rows, which moves the focus with
                // its cell; or have refilled the grid, which clears it.
                const CCellID from = m_core.Focus().IsValid() ? m_core.Focus() : edited;
                if (!m_edit.IsOn() && m_core.Layout().Holds(from)) {
                    const CCellID target = next(m_core, from, move);
                    SetFocusCell(target.IsValid() ? target : from);
                }
            });
}

}  // namespace quorvane
