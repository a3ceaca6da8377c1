#include "app/main_dialog.h"

#include <QAction>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QShortcut>
#include <QStyle>
#include <QTabWidget>
#include <algorithm>
#include <utility>

#include "widgets/dialog_template.h"
#include "widgets/guide_window.h"
#include "widgets/image_button.h"
#include "widgets/message_box.h"
#include "widgets/screen_place.h"
#include "widgets/wait_cursor.h"

using namespace Qt::Literals::StringLiterals;

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

const QString kTitle = u"照度计算数据库维护"_s;
const QString kTabTexts[] = {u"光源库"_s, u"灯具库"_s, u"照度要求及功率密度"_s};

enum Tab { LightSources, Luminaires, Requirements };

Tab FirstTab(const QString& selector) {
    if (selector == u"灯具管理器"_s) {
        return Luminaires;
    }
    return selector == u"照度管理器"_s ? Requirements : LightSources;
}

// setTabOrder ignores a widget that takes no focus.
QWidget* LastInTabOrder(QWidget* window) {
    QWidget* last = window->previousInFocusChain();
    while (last != window && (last->focusPolicy() == Qt::NoFocus || last->window() != window)) {
        last = last->previousInFocusChain();
    }
    return last;
}

}  // namespace

CQuorvaneDlg::CQuorvaneDlg(const MainDialogPages& pages, const QString& selector) {
    setObjectName(u"mainDialog"_s);
    setWindowTitle(kTitle);
    setWindowIcon(LoadIcon(IconId::Application));
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
    CreateControls(this, kTemplate);
    setFixedSize(DialogUnits(font()).ToPixels(kTemplateSize));
    PlaceOnScreen(this);
    DecorateButtons();

    m_tabs = DialogItem<QTabWidget>(this, kTabControl);
    m_pages[LightSources] = pages.lightSources(m_tabs);
    m_pages[Luminaires] = pages.luminaires(m_tabs);
    m_pages[Requirements] = pages.requirements(m_tabs);
    for (const Tab tab : {LightSources, Luminaires, Requirements}) {
        m_tabs->addTab(m_pages[tab], kTabTexts[tab]);
        connect(m_pages[tab], &CPage::EditsChanged, this, &CQuorvaneDlg::ShowEdits);
    }
    m_tabs->setCurrentIndex(FirstTab(selector));
    PlacePagesOnWholePixels();
    AddKeys();

    // The Tab key reaches the buttons after the page that they act on.
    QWidget* before = LastInTabOrder(this);
    for (const int id : {kSubmit, kDelete, kExit}) {
        setTabOrder(before, DialogItem(this, id));
        before = DialogItem(this, id);
    }
}

CQuorvaneDlg::~CQuorvaneDlg() = default;

// The tabs above the pages have a height of their own.
void CQuorvaneDlg::PlacePagesOnWholePixels() {
    m_tabs->ensurePolished();
    const QPoint page = m_tabs->currentWidget()->mapTo(this, QPoint());
    const int step = WholePixelStep();
    m_tabs->move(m_tabs->pos() - QPoint(page.x() % step, page.y() % step));
}

void CQuorvaneDlg::DecorateButtons() {
    auto* submit = DialogItem<QPushButton>(this, kSubmit);
    auto* erase = DialogItem<QPushButton>(this, kDelete);
    auto* leave = DialogItem<QPushButton>(this, kExit);
    static_cast<CImageButton*>(submit)->SetImage(IconId::Submit, u"提交数据"_s);
    static_cast<CImageButton*>(erase)->SetImage(IconId::Delete, u"删除数据"_s);
    static_cast<CImageButton*>(leave)->SetImage(IconId::Exit, u"退出"_s);
    connect(submit, &QPushButton::clicked, this, &CQuorvaneDlg::OnSubmit);
    connect(erase, &QPushButton::clicked, this, &CQuorvaneDlg::OnDelete);
    connect(leave, &QPushButton::clicked, this, &CQuorvaneDlg::reject);
}

// The texts of the buttons show no keys. The context menus of the grids do, and the guide has a list of all.
void CQuorvaneDlg::AddKeys() {
    AddCommand(u"提交"_s, QKeySequence::Save, &CQuorvaneDlg::OnSubmit);
    AddCommand(u"重新读取"_s, QKeySequence::Refresh, &CQuorvaneDlg::OnReload);
    for (const auto& [id, key] : {std::pair{kSubmit, Qt::Key_S}, {kDelete, Qt::Key_D}, {kExit, Qt::Key_X}}) {
        auto* button = DialogItem<QPushButton>(this, id);
        button->setShortcut(Qt::ALT | key);
        button->setAccessibleDescription(button->toolTip() + u' ' + button->shortcut().toString());
    }
    for (const auto& [key, step] : {std::pair{Qt::Key_PageUp, -1}, {Qt::Key_PageDown, 1}}) {
        auto* shortcut = new QShortcut(Qt::CTRL | key, this);
        connect(shortcut, &QShortcut::activated, this, [this, step = step] { ShowTab(step); });
    }
    AddGuideKey(*this);
}

// Works in the whole window.
void CQuorvaneDlg::AddCommand(const QString& text, const QKeySequence& key, void (CQuorvaneDlg::*run)()) {
    auto* command = new QAction(text, this);
    command->setShortcut(key);
    command->setAutoRepeat(false);
    connect(command, &QAction::triggered, this, run);
    addAction(command);
    for (CPage* page : m_pages) {
        page->AddCommand(*command);
    }
}

void CQuorvaneDlg::ShowTab(int step) {
    CurrentPage().EndEditing();
    m_tabs->setCurrentIndex((m_tabs->currentIndex() + step + m_tabs->count()) % m_tabs->count());
}

CPage& CQuorvaneDlg::CurrentPage() const {
    return *m_pages[static_cast<size_t>(m_tabs->currentIndex())];
}

// A page that holds edits carries "*", and so does the window then.
void CQuorvaneDlg::ShowEdits() {
    QString mark;
    for (const Tab tab : {LightSources, Luminaires, Requirements}) {
        const CPage& page = *m_pages[tab];
        const bool hasEdits = page.IsModified() || page.EditCount() > 0;
        QString tip = hasEdits ? u"%1行未提交"_s.arg(page.EditCount()) : QString();
        if (page.RemovedCount() > 0) {
            tip += u",其中%1行已删除"_s.arg(page.RemovedCount());
        }
        m_tabs->setTabText(tab, hasEdits ? kTabTexts[tab] + u'*' : kTabTexts[tab]);
        m_tabs->setTabToolTip(tab, tip);
        mark = hasEdits ? u"*"_s : mark;
    }
    setWindowTitle(kTitle + mark);
}

void CQuorvaneDlg::OnSubmit() {
    CPage& page = CurrentPage();
    page.EndEditing();
    const WaitCursor waiting;
    page.Submit();
    page.Refresh();
}

void CQuorvaneDlg::OnDelete() {
    CPage& page = CurrentPage();
    page.EndEditing();
    page.DeleteSelected();
}

void CQuorvaneDlg::OnReload() {
    CurrentPage().Reload();
}

// Asks about unsubmitted edits. False when the window must stay open.
bool CQuorvaneDlg::AskBeforeClosing() {
    CurrentPage().EndEditing();
    if (std::none_of(m_pages.begin(), m_pages.end(), [](const CPage* page) { return page->IsModified(); })) {
        return true;
    }
    const MessageAnswer answer = ShowMessage(this, u"数据未提交,是否提交?"_s, kTitle,
                                             MessageButtons::YesNoCancel, MessageIcon::Exclamation);
    return answer == MessageAnswer::Yes ? SubmitAll() : answer == MessageAnswer::No;
}

// False when something could not be written. The first page that holds such records is then shown with them.
bool CQuorvaneDlg::SubmitAll() {
    const WaitCursor waiting;
    bool isWritten = true;
    for (const Tab tab : {Luminaires, LightSources, Requirements}) {
        m_pages[tab]->Submit();
        if (!m_pages[tab]->IsModified()) {
            continue;
        }
        m_pages[tab]->Refresh();
        if (std::exchange(isWritten, false)) {
            m_tabs->setCurrentIndex(tab);
        }
    }
    return isWritten;
}

void CQuorvaneDlg::reject() {
    close();
}

void CQuorvaneDlg::closeEvent(QCloseEvent* event) {
    if (!AskBeforeClosing()) {
        event->ignore();
        return;
    }
    event->accept();
    done(QDialog::Rejected);
}

// Only Exit and the close box close the window. No key reaches the standard commands of a dialog.
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

// A minimised window shows the program's icon in its centre.
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
