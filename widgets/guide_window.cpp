#include "widgets/guide_window.h"

#include <QPointer>
#include <QShortcut>
#include <QTextBrowser>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr QSize kSize(960, 720);

// A window of its own that goes with its parent; links lead to nothing but the pages of the guide.
QTextBrowser* OpenGuide(QWidget& parent) {
    auto* guide = new QTextBrowser(&parent);
    guide->setObjectName(u"guide"_s);
    guide->setWindowFlags(Qt::Window);
    guide->setAttribute(Qt::WA_DeleteOnClose);
    guide->setWindowTitle(u"用户指南"_s);
    guide->setSource(QUrl(u"qrc:/guide/用户指南.md"_s), QTextDocument::MarkdownResource);
    guide->resize(kSize);
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
