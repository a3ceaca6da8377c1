#include "editors/refused_edits.h"

#include <QBoxLayout>
#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

#include "widgets/dialog_template.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr QSize kListSize(360, 160);  // dialog units

}  // namespace

void ShowRefusedEdits(QWidget* parent, const QStringList& lines) {
    QDialog dialog(parent);
    dialog.setObjectName(u"refusedEdits"_s);
    dialog.setWindowTitle(u"未能恢复的修改"_s);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(new QLabel(
        u"数据库文件中的下列内容在上次修改之后已经改变,这些修改没有恢复,需要时请重新输入:"_s, &dialog));
    auto* list = new QPlainTextEdit(lines.join(u'\n'), &dialog);
    list->setReadOnly(true);
    list->setTabChangesFocus(true);
    list->setAccessibleName(dialog.windowTitle());
    layout->addWidget(list);
    auto* close = new QPushButton(u"确定"_s, &dialog);
    close->setDefault(true);
    layout->addWidget(close, 0, Qt::AlignHCenter);
    QObject::connect(close, &QPushButton::clicked, &dialog, &QDialog::accept);
    dialog.resize(DialogUnits(dialog.font()).ToPixels(kListSize));
    close->setFocus();
    dialog.exec();
}

}  // namespace quorvane
