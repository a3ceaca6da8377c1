#include "widgets/guide_window.h"

#include <QPointer>
#include <QScreen>
#include <QShortcut>
#include <QTextBrowser>
#include <QUrl>

#include "widgets/screen_place.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr QSize kSize(960, 720);
constexpr QSize kFrame(20, 50);  // pixels, with the title bar

// A window of its own that goes with its parent; links lead to nothing but the pages of the guide.
QTextBrowser* OpenGuide(QWidget& parent) {
    auto* guide = new QTextBrowser(&parent);
    guide->setObjectName(u"guide"_s);
    guide->setWindowFlags(Qt::Window);
    guide->setAttribute(Qt::WA_DeleteOnClose);
    guide->setWindowTitle(u"用户指南"_s);
    guide->setSource(QUrl(u"qrc:/guide/用户指南.md"_s), QTextDocument::MarkdownResource);
    guide->resize(kSize.boundedTo(parent.screen()->availableSize() - kFrame));
    PlaceOnScreen(guide);
    auto* close = new QShortcut(Qt::Key_Escape, guide);
    QObject::connect(close, &QShortcut::activated, guide, &QWidget::close);
    return guide;
}

}  // namespace

void AddGuideKey(QWidget& window) {
    auto* key = new QShortcut(QKeySequence::HelpContents, &window);
    QObject::connect(key, &QShortcut::activated, &window,
                     [&window, guide = QPointer<QTextBrowser>()]() mutable {
                         if (guide == nullptr) {
                             guide = OpenGuide(window);
                         }
                         guide->show();
                         guide->raise();
                         guide->activateWindow();
                     });
}

}  // namespace quorvane
