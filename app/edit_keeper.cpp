#include "app/edit_keeper.h"

#include <QDir>
#include <QStandardPaths>
#include <numeric>
#include <utility>

#include "app/quiet_moment.h"
#include "editors/refused_edits.h"
#include "widgets/message_box.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr int kKeepEveryMs = 2000;
constexpr int kFailuresToTellOf = 2;  // what is over by the second try is not worth a message
const CString kCount = u"count"_s;

// Where the user's settings lie.
CString Folder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/quorvane"_s;
}

CString Key(std::size_t page) {
    return u"page %1"_s.arg(page);
}

}  // namespace

EditKeeper::EditKeeper(std::vector<CPage*> pages, const CString& database, QWidget& window)
    : m_pages(std::move(pages)), m_window(window), m_file(Folder(), database) {
    for (CPage* page : m_pages) {
        connect(page, &CPage::EditsChanged, this, [this] {
            m_isDue = true;
            if (m_timer.isActive() && EditCount() == 0) {  // what was submitted is not offered after a crash
                Keep();
            }
        });
    }
    m_timer.setInterval(kKeepEveryMs);
    connect(&m_timer, &QTimer::timeout, this, &EditKeeper::Look);
}

void EditKeeper::Start() {
    const std::optional<QCborMap> kept = m_file.Read();
    m_isKept = kept.has_value();
    m_isStarted = true;
    m_isDue = true;
    if (kept &&
        ShowMessage(&m_window, u"上次有 %1 处未提交的修改,是否恢复?"_s.arg((*kept)[kCount].toInteger()), {},
                    MessageButtons::YesNo, MessageIcon::Question) == MessageAnswer::Yes) {
        MakeEditsAgain(*kept);
    }
    m_timer.start();
    for (CPage* page : m_pages) {
        page->OpenKeptDialog();
    }
}

void EditKeeper::MakeEditsAgain(const QCborMap& kept) {
    QStringList refused;
    for (std::size_t page = 0; page < m_pages.size(); ++page) {
        const QCborValue edits = kept[Key(page)];
        if (edits.isMap()) {
            refused += m_pages[page]->MakeEditsAgain(edits.toMap());
        }
    }
    if (!refused.isEmpty()) {
        ShowRefusedEdits(&m_window, refused);
    }
}

// Sees how the last write ended, and keeps the edits when they are due, also those that could not be kept
// before.
void EditKeeper::Look() {
    if (m_file.IsBusy()) {
        return;
    }
    const CString failure = m_file.LastFailure();
    const bool isPause = !m_isDue;  // nothing was entered since the last look
    if (!failure.isEmpty()) {
        ++m_failures;
        m_isDue = m_isKept = true;
    } else if (m_isKept) {
        m_failures = 0;
        m_isToldOf = false;
    }
    Keep();
    if (!failure.isEmpty() && m_failures >= kFailuresToTellOf && isPause && EditCount() > 0) {
        TellOf(failure);
    }
}

void EditKeeper::TellOf(const CString& failure) {
    QWidget* window = WindowForMessage(m_window);
    if (m_isToldOf || window == nullptr) {
        return;
    }
    m_isToldOf = true;
    m_timer.start();  // anew, because a timer does not fire while its own slot runs
    ShowMessage(window,
                u"未提交的修改目前无法存放到下列文件夹，程序意外中断时可能会丢失，请尽快提交：\n%1\n%2"_s.arg(
                    QDir::toNativeSeparators(Folder()), failure));
}

// A write that is still going on delays the next one: the window never waits for it.
void EditKeeper::Keep() {
    if (!m_isDue || m_file.IsBusy()) {
        return;
    }
    m_isDue = false;
    const int count = EditCount();
    if (count == 0) {
        if (std::exchange(m_isKept, false)) {
            m_file.Remove();
        }
        return;
    }
    std::vector<std::pair<CString, std::function<QCborMap()>>> edits;
    for (std::size_t page = 0; page < m_pages.size(); ++page) {
        if (m_pages[page]->EditCount() > 0) {
            edits.emplace_back(Key(page), m_pages[page]->KeepEdits());
        }
    }
    m_isKept = true;
    m_file.Write([edits = std::move(edits), count] {
        QCborMap map{{kCount, count}};
        for (const auto& [key, make] : edits) {
            map.insert(key, make());
        }
        return map;
    });
}

void EditKeeper::Finish() {
    m_timer.stop();
    if (m_isStarted) {
        m_file.Remove();
    }
}

int EditKeeper::EditCount() const {
    return std::accumulate(m_pages.begin(), m_pages.end(), 0,
                           [](int count, const CPage* page) { return count + page->EditCount(); });
}

}  // namespace quorvane
