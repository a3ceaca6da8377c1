#include "app/file_notice.h"

#include "app/quiet_moment.h"
#include "widgets/message_box.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr int kLookEveryMs = 100;

}  // namespace

FileNotice::FileNotice(CLightingDatabase& database, QWidget& window)
    : m_database(database), m_window(window) {
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { Look(); });
    m_timer.start(kLookEveryMs);
}

void FileNotice::Look() {
    QWidget* window = m_database.IsCheckRunning() ? nullptr : WindowForMessage(m_window);
    if (window == nullptr) {
        return;
    }
    m_timer.stop();
    if (const CString file = m_database.ChangesPutAside(); !file.isEmpty()) {
        ShowMessage(window,
                    u"程序上次未正常结束，有修改尚未写入数据库文件，而该文件此后已被改动，"
                    "这些修改不能再写入。它们另存为：\n%1"_s.arg(file));
    }
    if (!m_database.IsSound()) {
        ShowMessage(window, u"数据库文件未通过检查，只能查看，不能提交：\n%1"_s.arg(
                                m_database.LastFailure().message));
    }
}

}  // namespace quorvane
