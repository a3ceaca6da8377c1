// A grid in an active window, for tests that send it real events.
#pragma once

#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include "grid/grid_ctrl.h"

namespace quorvane {

// A window with a grid of `rows` x `columns`, one fixed row, and a line edit below it to move the focus to.
// Every cell reads "row,column". The grid is reached like something pointed to; what the user does stands
// here.
struct ShownGrid {
    QWidget window;
    CGridCtrl* grid = nullptr;
    QLineEdit* other = nullptr;

    ShownGrid(int rows, int columns, int fixedRows = 1, int fixedColumns = 0) {
        auto* layout = new QVBoxLayout(&window);
        auto owned = std::make_unique<CGridCtrl>(rows, columns, fixedRows, fixedColumns);
        grid = owned.get();
        layout->addWidget(owned.release());
        other = new QLineEdit(&window);
        layout->addWidget(other);
        for (int cell = 0; cell < rows * columns; ++cell) {
            grid->SetItemText(cell / columns, cell % columns,
                              QStringLiteral("%1,%2").arg(cell / columns).arg(cell % columns));
        }
        window.resize(500, 300);
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window)) {
            qFatal("the window was not activated");
        }
        grid->setFocus();
    }

    CGridCtrl* operator->() const { return grid; }
    CGridCtrl* get() const { return grid; }
    QLineEdit* Editor() const { return grid->findChild<QLineEdit*>(QStringLiteral("gridInPlaceEdit")); }
    QPoint Middle(int row, int column) const { return grid->CellRect(row, column).center(); }
    void Click(int row, int column, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifiers, Middle(row, column));
    }
    void DoubleClick(int row, int column) const {
        Click(row, column);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, Middle(row, column));
    }
    void Drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, from);
        QTest::mouseMove(grid->viewport(), to);
        QTest::mouseRelease(grid->viewport(), Qt::LeftButton, modifiers, to);
    }
    // The texts of the cells, joined by blanks.
    QString Texts(const CCellRange& range) const {
        QStringList texts;
        for (int row = range.minRow; row <= range.maxRow; ++row) {
            for (int column = range.minCol; column <= range.maxCol; ++column) {
                texts << grid->GetItemText(row, column);
            }
        }
        return texts.join(u' ');
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(grid, key, modifiers);
    }

    void MakeCombo(int row, int column, std::vector<CString> choices) const {
        grid->SetCellType<CGridBtnCellCombo>(row, column);
        dynamic_cast<CGridBtnCellCombo&>(*grid->Cell(row, column))
            .SetChoices(std::make_shared<const std::vector<CString>>(std::move(choices)));
    }
    void MakeButton(int row, int column, unsigned state, const CString& caption) const {
        grid->SetCellType<CGridBtnCell>(row, column);
        grid->SetItemText(row, column, {});
        dynamic_cast<CGridBtnCell&>(*grid->Cell(row, column))
            .SetupBtns(0, BtnType::Button, state, 0, 0, 0, caption);
    }
};

}  // namespace quorvane
