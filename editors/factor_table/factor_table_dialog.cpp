#include "editors/factor_table/factor_table_dialog.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <functional>
#include <memory>
#include <optional>

#include "data/lighting_database.h"
#include "data/number_text.h"
#include "editors/factor_table/factor_block_commands.h"
#include "editors/factor_table/factor_table_grid.h"
#include "editors/grid_output.h"
#include "editors/messages.h"
#include "editors/view/foot_bar.h"
#include "editors/view/grey_commands.h"
#include "editors/view/grid_finder.h"
#include "widgets/dialog_template.h"
#include "widgets/guide_window.h"
#include "widgets/image_button.h"
#include "widgets/message_box.h"
#include "widgets/screen_place.h"
#include "widgets/submit_progress.h"
#include "widgets/wait_cursor.h"

using namespace Qt::Literals::StringLiterals;

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

CString RowLabel(const CString& kindText) {
    return kindText == u"RI"_s ? u"室形系数RI"_s : u"室空间比RCR"_s;
}

}  // namespace

CCoefficientTableDlg::CCoefficientTableDlg(CLightingDatabase& database, int luminaireId, const CString& title,
                                           const CString& kindText, QWidget* parent)
    : QDialog(parent),
      m_rowLabel(RowLabel(kindText)),
      m_editing(database, [this](const CString& text) { ShowMessage(MessageParent(), text); }) {
    setObjectName(u"factorTableDialog"_s);
    setWindowFlags((windowFlags() | Qt::WindowMaximizeButtonHint) & ~Qt::WindowContextHelpButtonHint);
    setSizeGripEnabled(true);
    setWindowTitle(title + u" 利用系数表"_s);
    CreateContents();
    LayOut();
    DecorateButtons();
    if (m_editing.Load(luminaireId)) {
        ShowTable();
    } else {
        ForbidEditing();
    }
    connect(m_tree, &FactorTableTree::LabelEdited, this, &CCoefficientTableDlg::OnLabelEdited);
    connect(m_tree, &FactorTableTree::CommandChosen, this, &CCoefficientTableDlg::OnCommand);
    m_grid->SetPasteQuestion(
        [this](const PasteLoss& loss) { return AskToPaste(MessageParent(), {}, loss, false); });
    connect(m_grid, &CGridCtrl::EndLabelEdit, this, &CCoefficientTableDlg::OnFactorEdited);
    AddFinding();
    AddUndo();
    AddView();
    AddBlockCommands(*m_grid, m_editing, m_rowLabel, [this] { ShowTable(); });
    AddOutputCommands(*m_grid, [this] { return windowTitle(); });
    AddGuideKey(*this);
}

CCoefficientTableDlg::~CCoefficientTableDlg() = default;

// ---- Contents

void CCoefficientTableDlg::CreateContents() {
    CreateControls(this, kTemplate,
                   [this](int /*id*/, QWidget* dialog) { return new FactorTableTree(m_rowLabel, dialog); });
    m_tree = DialogItem<FactorTableTree>(this, kTree);
    m_tree->setAccessibleName(u"列表头和"_s + m_rowLabel);
    auto grid = std::make_unique<FactorTableGrid>(m_rowLabel);
    grid->Create(DialogItem(this, kGridFrame)->geometry(), this, kGrid);
    m_grid = grid.release();  // the dialog owns it now
    m_grid->setAccessibleName(u"利用系数表"_s);
    setTabOrder(m_tree, m_grid);
}

// The template gives the sizes at opening. When the dialog is made larger, tree and grid grow in proportion.
void CCoefficientTableDlg::LayOut() {
    const DialogUnits units(font());
    const QSize margin = units.ToPixels(kMargin);
    const QSize spacing = units.ToPixels(kSpacing);
    auto* table = new WholePixelRow;
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
    PlaceOnScreen(this);
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
    connect(decorate(kSubmit, IconId::Submit, u"提交数据"_s), &QPushButton::clicked, this,
            &CCoefficientTableDlg::OnSubmit);
    connect(decorate(kClear, IconId::Delete, u"清空全部数据"_s), &QPushButton::clicked, this,
            &CCoefficientTableDlg::OnClear);
    connect(decorate(kOk, IconId::Ok, u"退出"_s), &QPushButton::clicked, this, &CCoefficientTableDlg::accept);
}

// A factor that could not be read would count as missing, and a submit would write it a second time.
void CCoefficientTableDlg::ForbidEditing() {
    ShowMessage(MessageParent(), u"利用系数未能全部读取,不能编辑。"_s, windowTitle());
    m_tree->setEnabled(false);
    m_grid->setEnabled(false);
    DialogItem(this, kSubmit)->setEnabled(false);
    DialogItem(this, kClear)->setEnabled(false);
}

void CCoefficientTableDlg::ShowTable() {
    m_tree->Show(m_editing);
    m_grid->Show(m_editing.Table());
}

// ---- Headings and row values

void CCoefficientTableDlg::OnCommand(FactorTableTree::Command command) {
    switch (command) {
        case FactorTableTree::Command::NewHeading:
            m_tree->AddNew(Branch::Headings);
            break;
        case FactorTableTree::Command::NewRow:
            m_tree->AddNew(Branch::Rows);
            break;
        case FactorTableTree::Command::DeleteHeading:
            DeleteEntry(Branch::Headings, u"确定是否删除该列数据?"_s);
            break;
        case FactorTableTree::Command::DeleteRow:
            DeleteEntry(Branch::Rows, u"确定是否删除该行数据?"_s);
            break;
    }
}

void CCoefficientTableDlg::DeleteEntry(Branch branch, const CString& question) {
    const int index = FactorTableTree::IndexOf(m_tree->currentItem());
    if (Ask(question)) {
        const StepScope step(m_editing, StepName(u"删除"_s, branch));
        m_editing.Delete(branch, index);
        ShowAfterOperation(branch);
    }
}

void CCoefficientTableDlg::OnLabelEdited(QTreeWidgetItem* item, const CString& text, bool isTyped) {
    const Branch branch = m_tree->BranchOf(item);
    const int index = FactorTableTree::IndexOf(item);
    bool isTaken = false;
    {
        const StepScope step(m_editing, StepName(index < 0 ? u"新建"_s : u"修改"_s, branch));
        isTaken = m_editing.TakeLabel(branch, index, text, isTyped);
    }
    if (isTaken) {
        ShowAfterOperation(branch);
        return;
    }
    TellError(branch == Branch::Headings ? u"输入列表头内容不正确."_s
                                         : u"输入"_s + m_rowLabel + u"内容不正确."_s);
    m_tree->EditLabel(item);
}

void CCoefficientTableDlg::ShowAfterOperation(Branch branch) {
    m_tree->Show(m_editing);
    if (IsModified()) {
        m_tree->ExpandBranch(branch);
        m_grid->Show(m_editing.Table());
    }
}

// ---- Factors

void CCoefficientTableDlg::OnFactorEdited(int row, int column) {
    const StepScope step(m_editing, u"输入 利用系数"_s);
    const CString entered = m_grid->GetItemText(row, column);
    // Clearing many cells must not refuse each of them.
    const CString text = m_isManyEntered && entered.isEmpty() ? FormatInteger(0) : entered;
    const bool isUntouched = !m_grid->IsEditTyped();
    const std::optional<CString> shown = m_editing.TakeFactor(row, column, text, isUntouched);
    if (!isUntouched) {
        m_grid->SetItemText(row, column, shown.value_or(FormatInteger(0)));
    }
    if (!shown) {
        RefuseFactor();
    }
}

void CCoefficientTableDlg::RefuseFactor() {
    m_isFactorRefused = true;
    TellError(u"输入数据不正确."_s);
    // When a press on a button ended the edit, the message box has taken the release of that button.
    for (const int id : {kSubmit, kClear, kOk}) {
        auto* button = DialogItem<QPushButton>(this, id);
        QMetaObject::invokeMethod(
            button, [button] { button->setDown(false); }, Qt::QueuedConnection);
    }
}

// ---- Submitting and leaving

void CCoefficientTableDlg::OnSubmit() {
    if (EndEditing()) {
        Submit();
    }
}

void CCoefficientTableDlg::OnClear() {
    if (EndEditing() && Ask(u"确定是否清空全部数据?"_s)) {
        const StepScope step(m_editing, u"清空数据"_s);
        m_editing.Clear();
        m_grid->Show(m_editing.Table());
    }
}

// ---- Finding

void CCoefficientTableDlg::AddFinding() {
    const auto matches = [this](CCellID cell, const TextMatcher& matcher) {
        return matcher.Matches(m_grid->GetItemText(cell.row, cell.col));
    };
    m_finder = new GridFinder(*m_grid, *new GridFoot(*m_grid),
                              {.find =
                                   [this, matches](const TextMatcher& matcher) {
                                       std::vector<CCellID> found;
                                       for (int row = FactorTableGrid::kFirstRow; row < m_grid->GetRowCount();
                                            ++row) {
                                           for (int column = FactorTableGrid::kFirstColumn;
                                                column < m_grid->GetColumnCount(); ++column) {
                                               if (matches({row, column}, matcher)) {
                                                   found.push_back({row, column});
                                               }
                                           }
                                       }
                                       return found;
                                   },
                               .matches = matches});
    AddGreyReplacing(*m_grid, u"利用系数逐格修改,此表不提供替换"_s);
    AddGreyArranging(*m_grid, u"列总是按反射比、行总是按%1排列"_s.arg(m_rowLabel));
}

// ---- Undo and redo

void CCoefficientTableDlg::AddUndo() {
    m_undo.Add(*m_grid, {.undoName = [this] { return m_editing.UndoName(); },
                         .redoName = [this] { return m_editing.RedoName(); },
                         .undo = [this] { ShowUndone(m_editing.Undo()); },
                         .redo = [this] { ShowUndone(m_editing.Redo()); }});
    m_grid->SetEditing(m_editing);
    connect(m_grid, &CGridCtrl::StepBegan, this, [this] {
        m_isManyEntered = true;
        m_editing.BeginStep({});
    });
    connect(m_grid, &CGridCtrl::StepEnded, this, [this](const CString& name, int cells) {
        m_isManyEntered = false;
        m_editing.RenameStep(u"%1 %2 格"_s.arg(name).arg(cells));
        m_editing.EndStep();
    });
    m_editing.SetListener([this] {
        m_undo.Update();
        m_view.Update();
        m_finder->NoteChange();
        m_grid->Refresh();  // for the marks
        Q_EMIT EditsChanged();
    });
}

bool CCoefficientTableDlg::MakeEditsAgain(const FactorTableEditing::Kept& kept) {
    const bool isMade = m_grid->isEnabled() && m_editing.MakeAgain(kept, u"恢复上次的修改"_s);
    if (isMade) {
        ShowTable();
    }
    return isMade;
}

void CCoefficientTableDlg::ShowUndone(FactorTableEditing::Place place) {
    ShowTable();
    if (place) {
        m_grid->SetFocusCell({place->first, place->second});
    }
}

CString CCoefficientTableDlg::StepName(const CString& action, Branch branch) const {
    return action + (branch == Branch::Headings ? u"列表头"_s : m_rowLabel);
}

// ---- View

void CCoefficientTableDlg::AddView() {
    m_view.AddCommands(*m_grid, m_editing.Table(), m_rowLabel, [this] { m_grid->Show(m_editing.Table()); });
    connect(m_tree, &FactorTableTree::EntryChosen, this, [this](Branch branch, int index) {
        if (branch == Branch::Headings) {
            m_grid->ShowHeading(index);
        } else {
            m_grid->ShowRow(index);
        }
    });
}

// Ends open edits in grid and tree. False when a text was refused, so that the user can correct it first.
bool CCoefficientTableDlg::EndEditing() {
    m_isFactorRefused = false;
    m_grid->EndEdit();
    m_tree->EndEdit();
    return !m_isFactorRefused && !m_tree->IsEditing();
}

// False when something could not be written; its rows are marked then, and the dialog stays modified.
bool CCoefficientTableDlg::Submit() {
    m_tree->repaint();
    SubmitFailures failures;
    {
        const WaitCursor waiting;
        SubmitProgress progress(this, u"正在提交数据……"_s);
        failures = m_editing.Submit(std::ref(progress));
    }
    TellFailures(this, windowTitle(), failures);
    m_grid->Show(m_editing.Table());
    return failures.None();
}

void CCoefficientTableDlg::accept() {
    if (!EndEditing()) {
        return;
    }
    if (IsModified() &&
        ShowMessage(this, u"数据已经修改是否提交?"_s, windowTitle(), MessageButtons::YesNo,
                    MessageIcon::Exclamation) == MessageAnswer::Yes &&
        !Submit()) {
        return;
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
    if (IsModified()) {
        const MessageAnswer answer = ShowMessage(this, u"数据已经修改是否提交?"_s, windowTitle(),
                                                 MessageButtons::YesNoCancel, MessageIcon::Exclamation);
        if (answer == MessageAnswer::Cancel || (answer == MessageAnswer::Yes && !Submit())) {
            return;
        }
    }
    event->accept();
    done(Rejected);
}

// Enter belongs to the grid and the labels. It never closes the dialog. The tree has the keyboard first, and
// a whole table is often pasted at once.
void CCoefficientTableDlg::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
    } else if (event->matches(QKeySequence::Paste) && m_tree->hasFocus()) {
        m_grid->setFocus();
        QCoreApplication::sendEvent(m_grid, event);
    } else {
        QDialog::keyPressEvent(event);
    }
}

// Messages about the load come before the dialog is shown.
QWidget* CCoefficientTableDlg::MessageParent() {
    return isVisible() ? this : parentWidget();
}

bool CCoefficientTableDlg::Ask(const CString& question) {
    return ShowMessage(this, question, windowTitle(), MessageButtons::YesNo, MessageIcon::Question) ==
           MessageAnswer::Yes;
}

void CCoefficientTableDlg::TellError(const CString& text) {
    ShowMessage(this, text, u"错误"_s);
}

}  // namespace quorvane
