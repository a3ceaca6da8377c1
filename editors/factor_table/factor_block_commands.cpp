#include "editors/factor_table/factor_block_commands.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>

#include "editors/factor_table/factor_table_grid.h"
#include "grid/output/separated_text.h"
#include "widgets/message_box.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

bool AskToTake(QWidget* parent, const FactorTableEditing::Missing& missing, const FactorBlock& block,
               const CString& rowLabel) {
    if (missing.headings + missing.rows + block.lostTexts == 0) {
        return true;
    }
    CString text;
    if (missing.headings + missing.rows > 0) {
        text = u"将新增%1个列表头和%2个%3。\n"_s.arg(missing.headings).arg(missing.rows).arg(rowLabel);
    }
    if (block.lostTexts > 0) {
        text += u"有%1格不是可填的数,不会粘贴。\n"_s.arg(block.lostTexts);
    }
    return ShowMessage(parent, text + u"是否粘贴?"_s, parent->windowTitle(), MessageButtons::YesNo,
                       MessageIcon::Question) == MessageAnswer::Yes;
}

}  // namespace

void AddBlockCommands(FactorTableGrid& grid, FactorTableEditing& editing, const CString& rowLabel,
                      const std::function<void()>& show) {
    auto* copy = new QAction(u"复制整个表和表头"_s, &grid);
    copy->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_C);
    QObject::connect(copy, &QAction::triggered, &grid, [&editing, rowLabel] {
        QGuiApplication::clipboard()->setText(WriteTabText(WriteFactorBlock(editing.Table(), rowLabel)));
    });
    grid.AddMenuAction(GridMenuGroup::Clipboard, copy);

    grid.SetTableTaker([&grid, &editing, rowLabel, show](const TextTable& texts) {
        const std::optional<FactorBlock> block = ReadFactorBlock(texts);
        if (block && AskToTake(grid.window(), editing.MissingFor(*block), *block, rowLabel)) {
            {
                const StepScope step(editing, {});
                const int taken = editing.TakeBlock(*block);
                editing.RenameStep(u"粘贴 %1 格"_s.arg(taken));
            }
            show();
        }
        return block.has_value();
    });
}

}  // namespace quorvane
