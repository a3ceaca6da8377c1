#include "editors/factor_table/factor_table_dialog.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <memory>
#include <optional>

#include "data/number_text.h"
#include "editors/factor_table/factor_table_grid.h"
#include "editors/messages.h"
#include "model/text_checks.h"
#include "widgets/dialog_template.h"
#include "widgets/image_button.h"
#include "widgets/message_box.h"
#include "widgets/wait_cursor.h"

namespace quorvane {
namespace {

constexpr int kTree = 1018;
constexpr int kGridFrame = 1016;
constexpr int kSubmit = 3;
constexpr int kClear = 1023;
constexpr int kOk = 1;
constexpr int kNote = -1;
constexpr int kGrid = 1009;

const DialogControl kTemplate[] = {
    {kTree, ControlKind::Custom, u"", {7, 7, 112, 228}},
    {kGridFrame, ControlKind::Frame, u"", {125, 7, 354, 228}},
    {kNote,
     ControlKind::Label,
     u"列表头按有效顶棚反射比，墙反射比，地面反射比顺序输入值，以逗号隔开。",
     {7, 241, 472, 10}},
    {kSubmit, ControlKind::PushButton, u"提交", {301, 259, 50, 16}},
    {kClear, ControlKind::PushButton, u"清空数据", {357, 259, 66, 16}},
    {kOk, ControlKind::PushButton, u"确定", {429, 259, 50, 16}},
};
constexpr QSize kTemplateSize(486, 282);
constexpr QSize kMargin(7, 7);
constexpr QSize kSpacing(6, 6);

constexpr int kLargestReflectance = 100;  // %

CString RowLabel(const CString& kindText) {
    return kindText == QStringLiteral("RI") ? QStringLiteral("室形系数RI") : QStringLiteral("室空间比RCR");
}

std::optional<tagColHeading> ParseHeading(const CString& text) {
    const std::vector<CString> pieces = Split(text, u',');
    std::vector<int> values;
    for (const CString& piece : pieces) {
        const int value = CheckInteger(piece).value_or(-1);
        if (value >= 0 && value <= kLargestReflectance) {
            values.push_back(value);
        }
    }
    if (pieces.size() != 3 || values.size() != pieces.size()) {
        return std::nullopt;
    }
    return tagColHeading{values[0], values[1], values[2]};
}

}  // namespace

CCoefficientTableDlg::CCoefficientTableDlg(CLightingDatabase& database, int luminaireId, const CString& title,
                                           const CString& kindText, QWidget* parent)
    : QDialog(parent),
      m_rowLabel(RowLabel(kindText)),
      m_table(database, [this](const CString& text) { ShowMessage(MessageParent(), text); }) {
    setObjectName(QStringLiteral("factorTableDialog"));
    setWindowFlags((windowFlags() | Qt::WindowMaximizeButtonHint) & ~Qt::WindowContextHelpButtonHint);
    setSizeGripEnabled(true);
    setWindowTitle(title + QStringLiteral(" 利用系数表"));
    CreateContents();
    LayOut();
    DecorateButtons();
    m_table.Load(luminaireId);
    if (m_table.IsWhole()) {
        ShowTable();
    } else {
        ForbidEditing();
    }
    connect(m_tree, &FactorTableTree::LabelEdited, this, &CCoefficientTableDlg::TakeLabel);
    connect(m_tree, &FactorTableTree::CommandChosen, this, &CCoefficientTableDlg::RunCommand);
    connect(m_grid, &CGridCtrl::EndLabelEdit, this, &CCoefficientTableDlg::TakeFactor);
}

CCoefficientTableDlg::~CCoefficientTableDlg() = default;

// ---- Contents

void CCoefficientTableDlg::CreateContents() {
    CreateControls(this, kTemplate,
                   [this](int /*id*/, QWidget* dialog) { return new FactorTableTree(m_rowLabel, dialog); });
    m_tree = DialogItem<FactorTableTree>(this, kTree);
    m_tree->setAccessibleName(QStringLiteral("列表头和") + m_rowLabel);
    auto grid = std::make_unique<FactorTableGrid>(m_rowLabel);
    grid->Create(DialogItem(this, kGridFrame)->geometry(), this, kGrid);
    m_grid = grid.release();  // the dialog owns it now
    m_grid->setAccessibleName(QStringLiteral("利用系数表"));
    setTabOrder(m_tree, m_grid);
}

// The template's places are those of the dialog as it opens; when it is made larger, tree and grid grow in
// proportion.
void CCoefficientTableDlg::LayOut() {
    const DialogUnits units(font());
    const QSize margin = units.ToPixels(kMargin);
    const QSize spacing = units.ToPixels(kSpacing);
    auto* table = new QHBoxLayout;
    table->setSpacing(spacing.width());
    table->addWidget(m_tree, m_tree->width());
    table->addWidget(m_grid, m_grid->width());
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(margin.width(), margin.height(), margin.width(), margin.height());
    all->setSpacing(spacing.height());
    all->addLayout(table, 1);
    auto* note = DialogItem<QLabel>(this, kNote);
    note->setWordWrap(true);
    all->addWidget(note);
    all->addLayout(LayOutButtons());
    const QSize size = units.ToPixels(kTemplateSize);
    setMinimumSize(size / 2);
    resize(size);
}

QLayout* CCoefficientTableDlg::LayOutButtons() {
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(DialogUnits(font()).ToPixels(kSpacing).width());
    buttons->addStretch();
    for (const int id : {kSubmit, kClear, kOk}) {
        QWidget* button = DialogItem(this, id);
        button->setMinimumSize(button->size());
        buttons->addWidget(button);
    }
    return buttons;
}

void CCoefficientTableDlg::DecorateButtons() {
    const auto decorate = [this](int id, IconId icon, const CString& toolTip) {
        auto* button = static_cast<CImageButton*>(DialogItem(this, id));
        button->SetImage(icon, toolTip);
        return button;
    };
    connect(decorate(kSubmit, IconId::Submit, QStringLiteral("提交数据")), &QPushButton::clicked, this,
            &CCoefficientTableDlg::SubmitPressed);
    connect(decorate(kClear, IconId::Delete, QStringLiteral("清空全部数据")), &QPushButton::clicked, this,
            &CCoefficientTableDlg::ClearPressed);
    connect(decorate(kOk, IconId::Ok, QStringLiteral("退出")), &QPushButton::clicked, this,
            &CCoefficientTableDlg::accept);
}

void CCoefficientTableDlg::ShowTable() {
    m_tree->Show(m_table);
    m_grid->Show(m_table);
}

// In a table of which a part could not be read, that part would be taken for missing and be written once
// more.
void CCoefficientTableDlg::ForbidEditing() {
    ShowMessage(MessageParent(), QStringLiteral("利用系数未能全部读出,不能编辑。"), windowTitle());
    m_tree->setEnabled(false);
    m_grid->setEnabled(false);
    DialogItem(this, kSubmit)->setEnabled(false);
    DialogItem(this, kClear)->setEnabled(false);
}

// ---- Headings and row values

void CCoefficientTableDlg::RunCommand(FactorTableTree::Command command) {
    switch (command) {
        case FactorTableTree::Command::NewHeading:
            m_tree->AddNew(Branch::Headings);
            break;
        case FactorTableTree::Command::NewRow:
            m_tree->AddNew(Branch::Rows);
            break;
        case FactorTableTree::Command::DeleteHeading:
            DeleteEntry(Branch::Headings);
            break;
        case FactorTableTree::Command::DeleteRow:
            DeleteEntry(Branch::Rows);
            break;
    }
}

void CCoefficientTableDlg::DeleteEntry(Branch branch) {
    const QTreeWidgetItem* item = m_tree->currentItem();
    const int index = FactorTableTree::IndexOf(item);
    if (branch == Branch::Headings) {
        if (Ask(QStringLiteral("确定是否删除该列数据?"))) {
            Accept(m_table.DeleteHeading(index), branch);
        }
    } else if (Ask(QStringLiteral("确定是否删除该行数据?"))) {
        Accept(m_table.DeleteRow(index), branch);
    }
}

// A label that was left as it is changes nothing: a row value may have more decimals than its label, and a
// heading from the file may be none that could be typed.
void CCoefficientTableDlg::TakeLabel(QTreeWidgetItem* item, const CString& text) {
    const Branch branch = m_tree->BranchOf(item);
    const int index = FactorTableTree::IndexOf(item);
    if (index >= 0 && text == item->text(0)) {
        Accept(false, branch);
        return;
    }
    if (branch == Branch::Headings && !TakeHeading(index, text)) {
        TellError(QStringLiteral("输入列表头内容不正确."));
        m_tree->EditLabel(item);
    } else if (branch == Branch::Rows && !TakeRowValue(index, text)) {
        TellError(QStringLiteral("输入") + m_rowLabel + QStringLiteral("内容不正确."));
        m_tree->EditLabel(item);
    }
}

bool CCoefficientTableDlg::TakeHeading(int index, const CString& text) {
    const std::optional<tagColHeading> heading = ParseHeading(text);
    if (heading) {
        const auto [Pcc, Pw, Pf] = *heading;
        Accept(index < 0 ? m_table.AddHeading(Pcc, Pw, Pf) : m_table.ModifyHeading(index, Pcc, Pw, Pf),
               Branch::Headings);
    }
    return heading.has_value();
}

bool CCoefficientTableDlg::TakeRowValue(int index, const CString& text) {
    const std::optional<double> value = CheckReal(text);
    if (value) {
        // As the file will keep it: two rows that are one there must not be two here.
        const double kept = FormatReal(*value).toDouble();
        Accept(index < 0 ? m_table.AddRow(kept) : m_table.ModifyRow(index, kept), Branch::Rows);
    }
    return value.has_value();
}

void CCoefficientTableDlg::Accept(bool changed, Branch branch) {
    m_modified = m_modified || changed;
    m_tree->Show(m_table);
    if (m_modified) {
        m_tree->ExpandBranch(branch);
        m_grid->Show(m_table);
    }
}

// ---- Factors

void CCoefficientTableDlg::TakeFactor(int row, int column) {
    const double present = m_table.GetFactor(row, column);
    const bool isUntouched = m_grid->IsUntouched(row, column, present);
    const std::optional<double> typed = CheckReal(m_grid->GetItemText(row, column));
    if (!typed && !isUntouched) {
        m_grid->SetItemText(row, column, FormatInteger(0));
        m_grid->SetTyped(row, column);
        RefuseFactor();
        return;
    }
    m_modified = true;
    if (isUntouched) {
        return;  // the factor may have more decimals than its cell shows
    }
    m_table.SetFactor(row, column, *typed);
    m_grid->SetTyped(row, column);
    // The file keeps six significant digits; a number with more is shown as it will be kept.
    const CString stored = FormatReal(*typed);
    if (stored.toDouble() != *typed) {
        m_grid->SetItemText(row, column, stored);
    }
}

void CCoefficientTableDlg::RefuseFactor() {
    m_isFactorRefused = true;
    TellError(QStringLiteral("输入数据不正确."));
    // When the edit ended by a press on a button, the message has taken the release.
    for (const int id : {kSubmit, kClear, kOk}) {
        auto* button = DialogItem<QPushButton>(this, id);
        QMetaObject::invokeMethod(
            button, [button] { button->setDown(false); }, Qt::QueuedConnection);
    }
}

// ---- Submitting and leaving

void CCoefficientTableDlg::SubmitPressed() {
    if (EndEditing()) {
        Submit();
        m_grid->Show(m_table);
    }
}

void CCoefficientTableDlg::ClearPressed() {
    if (EndEditing() && Ask(QStringLiteral("确定是否清空全部数据?"))) {
        m_table.ClearFactors();
        m_grid->Show(m_table);
        m_modified = true;
    }
}

// Takes in what is still being typed. False when it was refused and the user has to look at it first.
bool CCoefficientTableDlg::EndEditing() {
    m_isFactorRefused = false;
    m_grid->EndEdit();
    m_tree->EndEdit();
    return !m_isFactorRefused && !m_tree->IsEditing();
}

void CCoefficientTableDlg::Submit() {
    {
        m_tree->repaint();
        const WaitCursor waiting;
        m_table.Submit();
    }
    const int unwritten = m_table.UnwrittenCount();
    m_modified = unwritten > 0;
    if (unwritten > 0) {
        ShowMessage(this,
                    UnwrittenText(unwritten) + QStringLiteral("可能的原因:数据库文件只读或被其他程序占用。"),
                    windowTitle());
    }
}

void CCoefficientTableDlg::accept() {
    if (!EndEditing()) {
        return;
    }
    if (m_modified && ShowMessage(this, QStringLiteral("数据已经修改是否提交?"), windowTitle(),
                                  MessageButtons::YesNo, MessageIcon::Exclamation) == MessageAnswer::Yes) {
        Submit();
    }
    QDialog::accept();
}

void CCoefficientTableDlg::reject() {
    close();
}

void CCoefficientTableDlg::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (!EndEditing()) {
        return;
    }
    if (m_modified) {
        const MessageAnswer answer = ShowMessage(this, QStringLiteral("数据已经修改是否提交?"), windowTitle(),
                                                 MessageButtons::YesNoCancel, MessageIcon::Exclamation);
        if (answer == MessageAnswer::Cancel) {
            return;
        }
        if (answer == MessageAnswer::Yes) {
            Submit();
        }
    }
    event->accept();
    done(Rejected);
}

// Enter belongs to the grid and the labels; it never leaves the dialog.
void CCoefficientTableDlg::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
    } else {
        QDialog::keyPressEvent(event);
    }
}

// Messages about what was loaded come before there is a dialog to stand over.
QWidget* CCoefficientTableDlg::MessageParent() {
    return isVisible() ? this : parentWidget();
}

bool CCoefficientTableDlg::Ask(const CString& question) {
    return ShowMessage(this, question, windowTitle(), MessageButtons::YesNo, MessageIcon::Question) ==
           MessageAnswer::Yes;
}

void CCoefficientTableDlg::TellError(const CString& text) {
    ShowMessage(this, text, QStringLiteral("错误"));
}

}  // namespace quorvane
