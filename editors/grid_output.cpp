#include "editors/grid_output.h"

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QRegularExpression>

#include "grid/grid_core.h"
#include "grid/grid_ctrl.h"
#include "grid/grid_painter.h"
#include "grid/output/grid_import.h"
#include "grid/output/grid_printing.h"
#include "grid/output/grid_text_file.h"
#include "widgets/message_box.h"
#include "widgets/wait_cursor.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

const CString kCsvFilter = u"CSV 文件 (*.csv)"_s;

// Carries out the commands of one grid, whose child it is.
class GridOutput : public QObject {
public:
    GridOutput(CGridCtrl& grid, std::function<CString()> title, std::function<CString()> whyNoImport)
        : QObject(&grid), m_grid(grid), m_title(std::move(title)), m_whyNoImport(std::move(whyNoImport)) {
        Add(u"打印…"_s, QKeySequence::Print, &GridOutput::Print);
        Add(u"打印预览…"_s, {}, &GridOutput::Preview);
        Add(u"导出 PDF…"_s, {}, &GridOutput::ExportPdf);
        Add(u"导出 CSV…"_s, {}, &GridOutput::ExportCsv);
        QAction* import = Add(u"导入 CSV…"_s, {}, &GridOutput::ImportCsv);
        connect(&grid, &CGridCtrl::MenuAboutToShow, this, [this, import] {
            const CString obstacle = m_whyNoImport ? m_whyNoImport() : CString();
            import->setEnabled(obstacle.isEmpty());
            import->setToolTip(obstacle);
        });
    }

private:
    QAction* Add(const CString& text, const QKeySequence& key, void (GridOutput::*run)()) {
        auto* action = new QAction(text, this);
        action->setShortcut(key);
        connect(action, &QAction::triggered, this, run);
        m_grid.AddMenuAction(GridMenuGroup::Output, action);
        return action;
    }

    // ---- Paper

    void Prepare(QPrinter& printer) const {
        printer.setDocName(m_title());
        printer.setPageSize(QPageSize(QPageSize::A4));
        printer.setPageOrientation(IsWiderThanPage(m_grid.Core(), m_grid.logicalDpiX(), printer)
                                       ? QPageLayout::Landscape
                                       : QPageLayout::Portrait);
    }
    bool PrintOn(QPrinter& printer) const {
        const WaitCursor waiting;
        // Paper is light, whatever the windows are.
        const GridLooks looks{.palette = QPalette(QColor(239, 239, 239)), .background = Qt::white};
        return PrintGrid(m_grid.Core(), looks, m_grid.logicalDpiX(), printer);
    }
    void Print() {
        QPrinter printer(QPrinter::HighResolution);
        Prepare(printer);
        QPrintDialog dialog(&printer, &m_grid);
        dialog.setObjectName(u"printDialog"_s);
        dialog.setOption(QAbstractPrintDialog::PrintPageRange);
        if (dialog.exec() == QDialog::Accepted && !PrintOn(printer)) {
            Tell(u"打印没有完成。"_s);
        }
    }
    void Preview() {
        QPrinter printer(QPrinter::HighResolution);
        Prepare(printer);
        QPrintPreviewDialog dialog(&printer, &m_grid);
        dialog.setObjectName(u"printPreview"_s);
        connect(&dialog, &QPrintPreviewDialog::paintRequested, this,
                [this](QPrinter* preview) { PrintOn(*preview); });
        dialog.exec();
    }
    void ExportPdf() {
        const CString path = AskForPath(QFileDialog::AcceptSave, u"PDF 文件 (*.pdf)"_s, u"pdf"_s);
        if (path.isEmpty()) {
            return;
        }
        QPrinter printer(QPrinter::HighResolution);
        Prepare(printer);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(path);
        if (!PrintOn(printer)) {
            Tell(SaveFailure());
        }
    }

    // ---- Text files

    void ExportCsv() {
        const int formulas = CountFormulas(m_grid.Core());
        const CString question =
            u"有%1格的文字以=、+、-或@开头,电子表格程序打开文件时可能把它们当作公式。\n是否仍然原样导出?"_s;
        if (formulas > 0 && !Ask(question.arg(formulas))) {
            return;
        }
        const CString path = AskForPath(QFileDialog::AcceptSave, kCsvFilter, u"csv"_s);
        if (!path.isEmpty() && !SaveGridText(m_grid.Core(), path)) {
            Tell(SaveFailure());
        }
    }
    void ImportCsv() {
        const CString path = AskForPath(QFileDialog::AcceptOpen, kCsvFilter, u"csv"_s);
        if (path.isEmpty()) {
            return;
        }
        const std::optional<TextTable> table = LoadTextTable(path);
        if (!table) {
            Tell(LoadFailure());
            return;
        }
        const GridImport import = ImportOf(m_grid.Core(), *table);
        if (import.columns == 0) {
            Tell(LoadFailure() + u"\n文件中没有与本表标题相同的列。"_s);
        } else if (import.changedCells + import.newRows == 0) {
            Tell(u"文件的内容与表中相同,没有可以导入的。"_s);
        } else if (Ask(QuestionOf(import))) {
            m_grid.EnterTexts(u"导入"_s, import.entries);
        }
    }
    static CString QuestionOf(const GridImport& import) {
        CString question = u"将修改%1格,追加%2行。"_s.arg(import.changedCells).arg(import.newRows);
        if (import.lostTexts > 0) {
            question += u"\n另有%1格不能填入(没有相应的行或列、不可修改或不是可填的内容),不会导入。"_s.arg(
                import.lostTexts);
        }
        return question + u"\n是否导入?"_s;
    }

    // ---- Questions

    // Empty when the user has chosen no file.
    CString AskForPath(QFileDialog::AcceptMode mode, const CString& filter, const CString& suffix) {
        QFileDialog dialog(&m_grid);
        dialog.setObjectName(u"fileDialog"_s);
        dialog.setAcceptMode(mode);
        dialog.setFileMode(mode == QFileDialog::AcceptSave ? QFileDialog::AnyFile
                                                           : QFileDialog::ExistingFile);
        dialog.setNameFilters({filter, u"所有文件 (*)"_s});
        dialog.setDefaultSuffix(suffix);
        if (mode == QFileDialog::AcceptSave) {
            dialog.selectFile(ProposedName() + u'.' + suffix);
        }
        return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : CString();
    }
    // The title may come from the database, and must not name another folder.
    CString ProposedName() const {
        static const QRegularExpression noNames(u"[^\\w\\-()（） ]"_s,
                                                QRegularExpression::UseUnicodePropertiesOption);
        constexpr qsizetype longest = 60;
        return m_title().replace(noNames, u"_"_s).left(longest).trimmed();
    }
    void Tell(const CString& text) { ShowMessage(&m_grid, text, m_title()); }
    bool Ask(const CString& question) {
        return ShowMessage(&m_grid, question, m_title(), MessageButtons::YesNo, MessageIcon::Question) ==
               MessageAnswer::Yes;
    }

    CGridCtrl& m_grid;
    std::function<CString()> m_title;
    std::function<CString()> m_whyNoImport;
};

}  // namespace

void AddOutputCommands(CGridCtrl& grid, const std::function<CString()>& title,
                       const std::function<CString()>& whyNoImport) {
    new GridOutput(grid, title, whyNoImport);
}

}  // namespace quorvane
