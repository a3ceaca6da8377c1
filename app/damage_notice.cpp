#include "app/damage_notice.h"

#include "widgets/message_box.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr int kLookEveryMs = 100;

}  // namespace

DamageNotice::DamageNotice(CLightingDatabase& database, QWidget& window)
    : m_database(database), m_window(window) {
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { Look(); });
    m_timer.start(kLookEveryMs);
}

void DamageNotice::Look() {
    if (m_database.IsCheckRunning()) {
        return;
    }
    m_timer.stop();
    if (!m_database.IsSound()) {
        ShowMessage(&m_window, u"数据库文件未通过检查，只能查看，不能提交：\n%1"_s.arg(
                                   m_database.LastFailure().message));
    }
}

}  // namespace quorvane
