#include "widgets/submit_progress.h"

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

constexpr int kShowAfterMs = 500;
constexpr int kRepaintMs = 50;
constexpr int kBarWidth = 320;

bool IsInput(QEvent::Type type) {
    switch (type) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::ShortcutOverride:
        case QEvent::Shortcut:
        case QEvent::InputMethod:
        case QEvent::ContextMenu:
        case QEvent::Close:
            return true;
        default:
            return false;
    }
}

// The disabled colours of the bar are its enabled ones: it is the one thing in the window that is alive.
void KeepColoursWhenDisabled(QWidget* widget) {
    QPalette palette = widget->palette();
    for (int role = 0; role < QPalette::NColorRoles; ++role) {
        const auto colour = static_cast<QPalette::ColorRole>(role);
        palette.setBrush(QPalette::Disabled, colour, palette.brush(QPalette::Active, colour));
    }
    widget->setPalette(palette);
}

}  // namespace

// While it lives, the program handles no input and no timer, and the window is disabled, so that assistive
// programs, whose requests are no input events, cannot press its buttons either.
class SubmitProgress::InputBlock : public QObject {
public:
    explicit InputBlock(QWidget* window)
        : m_window(window),
          m_focus(window->focusWidget()),
          m_modalWidget(QApplication::activeModalWidget()),
          m_wasEnabled(window->isEnabled()) {
        window->setEnabled(false);
        QCoreApplication::instance()->installEventFilter(this);
    }
    ~InputBlock() override {
        QCoreApplication::instance()->removeEventFilter(this);
        if (m_window != nullptr && m_wasEnabled) {
            m_window->setEnabled(true);
        }
        if (m_focus != nullptr) {
            m_focus->setFocus();
        }
    }
    Q_DISABLE_COPY_MOVE(InputBlock)

    // A timer that was refused fires again. The timers of windows drive their repainting. A dialog that came
    // up during the submit gets its input, or nobody could ever close it.
    bool eventFilter(QObject* receiver, QEvent* event) override {
        if (QApplication::activeModalWidget() != m_modalWidget) {
            return false;
        }
        return event->type() == QEvent::Timer ? !receiver->isWindowType() : IsInput(event->type());
    }

private:
    QPointer<QWidget> m_window;
    QPointer<QWidget> m_focus;
    QPointer<QWidget> m_modalWidget;
    bool m_wasEnabled;
};

SubmitProgress::SubmitProgress(QWidget* parent, QString text)
    : m_window(parent->window()), m_text(std::move(text)) {
    m_sinceStart.start();
}

SubmitProgress::~SubmitProgress() {
    if (m_block == nullptr) {
        return;
    }
    QGuiApplication::sync();  // delivers the input that the window system still holds, so that it is dropped
    m_block.reset();
    delete m_panel;
}

void SubmitProgress::operator()(int done, int total) {
    if (m_window == nullptr || !m_sinceStart.hasExpired(kShowAfterMs) ||
        (m_block != nullptr && !m_sinceRepaint.hasExpired(kRepaintMs))) {
        return;
    }
    if (m_block == nullptr) {
        Show();
    }
    m_bar->setMaximum(total);
    m_bar->setValue(done);
    QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
    m_sinceRepaint.start();
}

void SubmitProgress::Show() {
    m_block = std::make_unique<InputBlock>(m_window);
    auto* panel = new QFrame(m_window);
    panel->setObjectName(u"submitProgress"_s);
    panel->setFrameStyle(QFrame::Panel | QFrame::Raised);
    panel->setAutoFillBackground(true);
    KeepColoursWhenDisabled(panel);
    auto* layout = new QVBoxLayout(panel);
    layout->addWidget(new QLabel(m_text, panel));
    m_bar = new QProgressBar(panel);
    m_bar->setFormat(u"%v / %m"_s);
    m_bar->setMinimumWidth(kBarWidth);
    layout->addWidget(m_bar);
    panel->adjustSize();
    panel->move(m_window->rect().center() - panel->rect().center());
    panel->raise();
    panel->show();
    m_panel = panel;
}

}  // namespace quorvane
