#include "editors/messages.h"

#include <QHash>
#include <QTimer>
#include <QWidget>

#include "data/text_format.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

bool Ask(QWidget* parent, const CString& caption, const CString& question) {
    return ShowMessage(parent, question, caption, MessageButtons::YesNo, MessageIcon::Question) ==
           MessageAnswer::Yes;
}

CString PhotoProblemText(PhotoProblem problem) {
    switch (problem) {
        case PhotoProblem::UnreadableSource:
            return u"所选图片不存在、不能读取、不是普通文件,或大于64MB。"_s;
        case PhotoProblem::LinkedLibrary:
            return u"图片库文件夹是一个链接,只能读取,不能写入。"_s;
        case PhotoProblem::NoTemporaryCopy:
            return u"换到其他灯具的图片不能先复制一份(图片不能读取,或临时文件夹只读、已满)。"_s;
        default:
            return u"图片库不能写入(文件夹只读、磁盘已满,或其中有同名的链接或文件夹)。"_s;
    }
}

// The heading under which a column of the file is shown, or the column's own name.
CString HeadingOf(const CString& column) {
    static const QHash<CString, CString> headings{{u"LamphouseName"_s, u"名称"_s},
                                                  {u"LamphouseModel"_s, u"光源型号"_s},
                                                  {u"Factory"_s, u"厂家"_s},
                                                  {u"LampName"_s, u"灯具名称"_s},
                                                  {u"LampModel"_s, u"灯具型号"_s},
                                                  {u"LamphouseTypeID"_s, u"灯具类别"_s},
                                                  {u"LamphouseCount"_s, u"光源个数"_s},
                                                  {u"DefaultLamphouse"_s, u"默认光源"_s},
                                                  {u"LampPhoto"_s, u"灯具图片"_s},
                                                  {u"LuminousFlux"_s, u"光通量"_s},
                                                  {u"LamphousePower"_s, u"功率"_s},
                                                  {u"LuminaireEfficiency"_s, u"灯具效率"_s},
                                                  {u"MaxLhAA"_s, u"A-A"_s},
                                                  {u"MaxLhBB"_s, u"B-B"_s},
                                                  {u"BallastCount"_s, u"镇流器数"_s},
                                                  {u"BallastPower"_s, u"镇流器功率"_s},
                                                  {u"ActualLPD"_s, u"现行功率密度"_s},
                                                  {u"ObjectiveLPD"_s, u"目标功率密度"_s},
                                                  {u"IlluminanceStandard"_s, u"照度标准值"_s},
                                                  {u"UGR"_s, u"统一眩光值"_s},
                                                  {u"Ra"_s, u"显色指数"_s},
                                                  {u"Location"_s, u"场所"_s},
                                                  {u"ReferencePlane"_s, u"参考平面"_s}};
    return headings.value(column, column);
}

// Where the value stands that could not be written, without the row where that is 0; empty where it is not
// known.
CString PlaceOf(const ProviderFailure& failure, int row) {
    const CString inRow = row == 0 ? CString() : FormatText(u"第%d行"_s, {row});
    return failure.column.isEmpty() ? CString()
                                    : inRow + FormatText(u"“%s”一列"_s, {HeadingOf(failure.column)});
}

CString ReportText(const ProviderFailure& failure, int row) {
    const CString place = PlaceOf(failure, row);
    return (place.isEmpty() ? place : place + u',') + FormatText(u"数据库报告:%s。"_s, {failure.message});
}

CString UnwritableText(const ProviderFailure& failure, int row) {
    const CString known = PlaceOf(failure, row);
    const CString place = known.isEmpty() ? u"文字"_s : known;
    switch (failure.kind) {
        case FailureKind::EmptyText:
            return place +
                   u"是空的,而数据库的这一列不允许空字符串。请填写内容(图片请选择图片),"
                   "或在Access中把该字段的“允许空字符串”改为“是”。"_s;
        case FailureKind::QuoteInText:
            return place + u"中含有单引号,不能写入。"_s;
        default:
            return place + u"中含有不能写入的字符或数值。"_s;
    }
}

// Why statements failed; row is that of the failed record, or 0.
CString CauseText(const ProviderFailure& failure, int row) {
    switch (failure.kind) {
        case FailureKind::NotConnected:
            return u"原因:没有连接数据库。"_s;
        case FailureKind::DiskFull:
            return u"原因:磁盘已满。"_s;
        case FailureKind::FileGone:
            return u"原因:数据库文件已被移走、改名或替换,或其所在的磁盘没有响应。"_s;
        case FailureKind::FileChanged:
            return u"原因:数据库文件已被其他程序改动。"_s;
        case FailureKind::Locked:
            return failure.who.isEmpty() ? u"原因:数据库文件被其他程序占用。"_s
                                         : FormatText(u"原因:数据库文件被占用:%s。"_s, {failure.who});
        case FailureKind::ReadOnly:
            return u"原因:数据库文件或其所在的文件夹只读。"_s;
        case FailureKind::Damaged:
            return u"原因:数据库文件已损坏。"_s;
        case FailureKind::OutOfMemory:
            return u"原因:内存不足。"_s;
        case FailureKind::TimeLimit:
            return u"原因:写入超时,已中断。"_s;
        case FailureKind::EmptyText:
        case FailureKind::QuoteInText:
        case FailureKind::UnwritableValue:
            return u"原因:"_s + UnwritableText(failure, row);
        default:
            return failure.message.isEmpty()
                       ? u"可能的原因:数据库文件只读或被其他程序占用,或文字中含有单引号。"_s
                       : u"原因:"_s + ReportText(failure, row);
    }
}

// The texts that are refused for that reason, each once; empty when none is.
CString NamesOf(const PasteLoss& loss, PasteLoss::Refused::Reason reason, const CString& title) {
    constexpr qsizetype kMost = 8;
    QStringList names;
    for (const PasteLoss::Refused& refused : loss.refused) {
        if (refused.reason == reason) {
            names += u"“%1”"_s.arg(refused.text);
        }
    }
    names.removeDuplicates();
    const CString rest = names.size() > kMost ? u"等%1种"_s.arg(names.size()) : CString();
    return names.isEmpty() ? CString() : title + names.mid(0, kMost).join(CString()) + rest + u'。';
}

}  // namespace

bool AskToSubmit(QWidget* parent, const CString& caption) {
    return Ask(parent, caption, u"数据已经修改是否提交?"_s);
}

DeleteAnswer AskToDelete(QWidget* parent, const CString& caption, int row, const CString& title,
                         bool offersAll) {
    const CString question = FormatText(u"确定是否删除选中数据:第%d行,%s的全部信息?"_s, {row, title});
    switch (ShowMessage(parent, question, caption,
                        offersAll ? MessageButtons::YesNoAll : MessageButtons::YesNo,
                        MessageIcon::Question)) {
        case MessageAnswer::Yes:
            return DeleteAnswer::Yes;
        case MessageAnswer::YesToAll:
            return DeleteAnswer::YesToAll;
        default:
            return DeleteAnswer::No;
    }
}

void TellReplaced(QWidget* parent, const CString& caption, const Replacement& replacement) {
    if (replacement.refused > 0) {
        ShowMessage(parent,
                    FormatText(u"已替换%d格。有%d格不能替换:第%d行“%s”一列不能填入“%s”。"_s,
                               {replacement.done, replacement.refused, replacement.row, replacement.heading,
                                replacement.text}),
                    caption);
    } else if (replacement.done == 0) {
        ShowMessage(parent, u"没有可以替换的文字。按拼音首字母找到的文字不能替换。"_s, caption);
    }
}

bool AskToPaste(QWidget* parent, const CString& caption, const PasteLoss& loss, bool rowsCome) {
    int lost = loss.beyondColumns + (rowsCome ? 0 : loss.belowRows);
    for (const PasteLoss::Refused& refused : loss.refused) {
        lost += rowsCome || refused.cell.row <= loss.lastRow ? 1 : 0;
    }
    if (lost == 0) {
        return true;
    }
    CString text = FormatText(
        loss.isDrop ? u"拖动了%d个单元格的内容,其中%d个超出表格或不能填入所在的单元格,不会改动。"_s
                    : u"剪贴板中有%d个单元格的内容,其中%d个超出表格或不能填入所在的单元格,不会粘贴。"_s,
        {loss.texts, lost});
    text += NamesOf(loss, PasteLoss::Refused::NoChoice, u"\n不是可选的内容:"_s);
    text += NamesOf(loss, PasteLoss::Refused::NoSuchValue, u"\n不是数值:"_s);
    if (lost == loss.texts) {
        ShowMessage(parent, text, caption);
        return false;
    }
    return Ask(parent, caption, text + (loss.isDrop ? u"\n是否填入其余内容?"_s : u"\n是否粘贴其余内容?"_s));
}

void TellIncompleteLoad(QWidget* parent, const CString& caption, const ProviderFailure& failure) {
    CString text = u"数据未能全部读取,显示的内容不完整。"_s;
    if (failure.kind == FailureKind::QuoteInText) {
        text += u"\n所选名称中含有单引号,不能按它读取。"_s;
    }
    ShowMessage(parent, text, caption);
}

void TellIncompleteLoadSoon(QWidget* parent, const CString& caption) {
    QTimer::singleShot(0, parent, [parent, caption] { TellIncompleteLoad(parent, caption); });
}

void TellFailures(QWidget* parent, const CString& caption, const SubmitFailures& failures) {
    if (failures.None()) {
        if (failures.unread > 0) {
            ShowMessage(parent,
                        FormatText(u"数据已经提交,但有%d条未能重新读取核对。\n"_s, {failures.unread}) +
                            CauseText(failures.whyUnread, 0),
                        caption);
        }
        return;
    }
    CString text;
    if (failures.writes > 0) {
        text += FormatText(u"有%d条数据未能写入数据库。\n"_s, {failures.writes});
    }
    if (failures.deletes > 0) {
        text += FormatText(u"有%d条数据未能从数据库删除。\n"_s, {failures.deletes});
    }
    if (failures.photos > 0) {
        text += FormatText(u"其中%d个灯具的图片未能存入图片库:%s\n"_s,
                           {failures.photos, PhotoProblemText(failures.photoProblem)});
    }
    if (failures.different > 0) {
        text += FormatText(u"有%d条数据提交后与数据库文件中的不同,行号已标红,鼠标停在行号上可见说明。\n"_s,
                           {failures.different});
    }
    if (failures.writes + failures.deletes > failures.photos) {
        text += CauseText(failures.cause, failures.row);
    }
    text += u"请排除后再次提交。"_s;
    ShowMessage(parent, text, caption);
}

void TellNotOnDisk(QWidget* parent, const CString& caption, const ProviderFailure& failure) {
    ShowMessage(parent, u"数据已经写入,但磁盘报告错误,断电后可能丢失。\n"_s + CauseText(failure, 0), caption);
}

CString UnwrittenTip(Unwritten why, const WriteFailure& failure) {
    switch (why) {
        case Unwritten::No:
            return {};
        case Unwritten::Failed:
            return u"这一行上次提交时未能写入或删除。\n"_s +
                   (failure.photo == PhotoProblem::None
                        ? CauseText(failure.cause, 0)
                        : u"原因:图片未能存入图片库。"_s + PhotoProblemText(failure.photo));
        case Unwritten::Missing:
            return u"数据库文件中没有这一行,可能已被其他程序删除。请删除这一行;如需保留,先在“追加”行重新输入。"_s;
        case Unwritten::Different:
            return u"数据库文件中的这一行与显示的不同:提交时被其他程序改动,或有内容不能按原样保存。"_s;
        case Unwritten::PartDifferent:
            return u"数据库文件中的利用系数与粘贴的不同:提交时被其他程序改动,或有内容不能按原样保存。再次提交会重新写入。"_s;
    }
    return {};
}

CString StoredValueTip(const CString& stored) {
    return u"文件中的值: "_s + (stored.isEmpty() ? u"(空)"_s : stored);
}

CString JoinLines(const QStringList& lines) {
    QStringList filled = lines;
    filled.removeAll(CString());
    return filled.join(u'\n');
}

}  // namespace quorvane
