#include "editors/grid_page.h"

#include <QTimer>

#include "data/text_format.h"
#include "widgets/message_box.h"

namespace quorvane {

GridPage::GridPage(const CString& caption, QWidget* parent) : CPage(parent), m_caption(caption) {}

GridPage::~GridPage() = default;

void GridPage::EndEditing() {
    if (m_grid != nullptr) {
        m_grid->EndEdit();
    }
}

bool GridPage::CreateGrid(int gridId, const QRect& rect, std::span<const GridColumn> columns,
                          SharesOf width) {
    m_grid = quorvane::CreateGrid(this, gridId, rect, columns, width);
    if (m_grid == nullptr) {
        return false;
    }
    m_grid->setAccessibleName(m_caption);
    connect(m_grid, &CGridCtrl::EndLabelEdit, this, &GridPage::CellEdited);
    return true;
}

bool GridPage::AskToSubmit() {
    return ShowMessage(this, QStringLiteral("数据已经修改是否提交?"), m_caption, MessageButtons::YesNo,
                       MessageIcon::Question) == MessageAnswer::Yes;
}

void GridPage::TellIncompleteLoadSoon() {
    QTimer::singleShot(0, this, [this] { TellIncompleteLoad(); });
}

void GridPage::TellFailures(const SubmitFailures& failures) {
    CString text;
    if (failures.writes > 0) {
        text += UnwrittenText(failures.writes);
    }
    if (failures.deletes > 0) {
        text += FormatText(QStringLiteral("有%d条数据未能从数据库删除。\n"), {failures.deletes});
    }
    text += QStringLiteral("可能的原因:数据库文件只读或被其他程序占用,或文字中含有单引号。");
    ShowMessage(this, text, m_caption);
}

}  // namespace quorvane
