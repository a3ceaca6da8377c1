#include "app/main_dialog.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QTabWidget>
#include <algorithm>

#include "widgets/dialog_template.h"
#include "widgets/image_button.h"
#include "widgets/message_box.h"
#include "widgets/wait_cursor.h"

namespace quorvane {
namespace {

constexpr int kTabControl = 1027;
constexpr int kSubmit = 1003;
constexpr int kDelete = 1002;
constexpr int kExit = 1000;

const DialogControl kTemplate[] = {
    {kTabControl, ControlKind::TabControl, u"", {0, 0, 470, 253}},
    {kSubmit, ControlKind::PushButton, u"提交", {89, 260, 44, 16}},
    {kDelete, ControlKind::PushButton, u"删除", {218, 260, 44, 16}},
    {kExit, ControlKind::PushButton, u"退出", {352, 260, 44, 16}},
};
constexpr QSize kTemplateSize(470, 280);

enum Tab { LightSources, Luminaires, Requirements };

Tab FirstTab(const QString& selector) {
    if (selector == QStringLiteral("灯具管理器")) {
        return Luminaires;
    }
    return selector == QStringLiteral("照度管理器") ? Requirements : LightSources;
}

// A tab order that names a widget which takes no focus would be ignored.
QWidget* LastByTab(QWidget* window) {
    QWidget* last = window->previousInFocusChain();
    while (last != window && (last->focusPolicy() == Qt::NoFocus || last->window() != window)) {
        last = last->previousInFocusChain();
    }
    return last;
}

}  // namespace

CQuorvaneDlg::CQuorvaneDlg(const MainDialogPages& pages, const QString& selector) {
    setObjectName(QStringLiteral("mainDialog"));
    setWindowTitle(QStringLiteral("照度计算数据库维护"));
    setWindowIcon(LoadIcon(IconId::Application));
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
    CreateControls(this, kTemplate);
    setFixedSize(DialogUnits(font()).ToPixels(kTemplateSize));
    DecorateButtons();

    m_tabs = DialogItem<QTabWidget>(this, kTabControl);
    m_pages[LightSources] = pages.lightSources(m_tabs);
    m_pages[Luminaires] = pages.luminaires(m_tabs);
    m_pages[Requirements] = pages.requirements(m_tabs);
    m_tabs->addTab(m_pages[LightSources], QStringLiteral("光源库"));
    m_tabs->addTab(m_pages[Luminaires], QStringLiteral("灯具库"));
    m_tabs->addTab(m_pages[Requirements], QStringLiteral("照度要求及功率密度"));
    m_tabs->setCurrentIndex(FirstTab(selector));

    // By the Tab key the buttons come after the page that they act on.
    QWidget* before = LastByTab(this);
    for (const int id : {kSubmit, kDelete, kExit}) {
        setTabOrder(before, DialogItem(this, id));
        before = DialogItem(this, id);
    }
}

CQuorvaneDlg::~CQuorvaneDlg() = default;

void CQuorvaneDlg::DecorateButtons() {
    auto* submit = DialogItem<QPushButton>(this, kSubmit);
    auto* erase = DialogItem<QPushButton>(this, kDelete);
    auto* leave = DialogItem<QPushButton>(this, kExit);
    static_cast<CImageButton*>(submit)->SetImage(IconId::Submit, QStringLiteral("提交数据"));
    static_cast<CImageButton*>(erase)->SetImage(IconId::Delete, QStringLiteral("删除数据"));
    static_cast<CImageButton*>(leave)->SetImage(IconId::Exit, QStringLiteral("退出"));
    connect(submit, &QPushButton::clicked, this, &CQuorvaneDlg::SubmitPage);
    connect(erase, &QPushButton::clicked, this, &CQuorvaneDlg::DeleteRows);
    connect(leave, &QPushButton::clicked, this, &CQuorvaneDlg::reject);
}

CPage& CQuorvaneDlg::CurrentPage() const {
    return *m_pages[static_cast<size_t>(m_tabs->currentIndex())];
}

void CQuorvaneDlg::SubmitPage() {
    CPage& page = CurrentPage();
    page.EndEditing();
    const WaitCursor waiting;
    page.Submit();
    page.Refresh();
}

void CQuorvaneDlg::DeleteRows() {
    CPage& page = CurrentPage();
    page.EndEditing();
    page.DeleteSelected();
}

// The question that protects unsubmitted edits. False when the window is to stay.
bool CQuorvaneDlg::MayLeave() {
    CurrentPage().EndEditing();
    if (std::none_of(m_pages.begin(), m_pages.end(), [](const CPage* page) { return page->IsModified(); })) {
        return true;
    }
    const MessageAnswer answer =
        ShowMessage(this, QStringLiteral("数据未提交,是否提交?"), QStringLiteral("照度计算数据库维护"),
                    MessageButtons::YesNoCancel, MessageIcon::Exclamation);
    if (answer == MessageAnswer::Yes) {
        const WaitCursor waiting;
        for (const Tab tab : {Luminaires, LightSources, Requirements}) {
            m_pages[tab]->Submit();
        }
    }
    return answer != MessageAnswer::Cancel;
}

void CQuorvaneDlg::reject() {
    close();
}

void CQuorvaneDlg::closeEvent(QCloseEvent* event) {
    if (!MayLeave()) {
        event->ignore();
        return;
    }
    event->accept();
    done(QDialog::Rejected);
}

// The window is left by Exit or its close box alone: no key reaches the dialog's standard commands.
void CQuorvaneDlg::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Escape:
        case Qt::Key_Enter:
        case Qt::Key_Return:
            event->accept();
            break;
        default:
            QDialog::keyPressEvent(event);
    }
}

// A minimised window shows the program's icon in its middle.
void CQuorvaneDlg::paintEvent(QPaintEvent* event) {
    if (!isMinimized()) {
        QDialog::paintEvent(event);
        return;
    }
    const int size = style()->pixelMetric(QStyle::PM_LargeIconSize, nullptr, this);
    QPainter painter(this);
    windowIcon().paint(&painter, (width() - size + 1) / 2, (height() - size + 1) / 2, size, size);
}

}  // namespace quorvane
