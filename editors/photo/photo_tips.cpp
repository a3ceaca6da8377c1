#include "editors/photo/photo_tips.h"

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr QSize kTipArea(240, 180);  // pixels
// The same file may get another picture.
constexpr qint64 kFreshMs = 5000;

}  // namespace

PhotoTips::PhotoTips(std::function<void()> arrived) : m_arrived(std::move(arrived)), m_loading(2) {}

GridTip PhotoTips::TipOf(const CString& file) {
    if (file == m_file && !m_age.hasExpired(kFreshMs)) {
        return m_tip;
    }
    m_file = file;
    m_tip = {.text = u"正在读取图片……"_s};
    m_age.start();
    m_loading.DropWaiting();
    m_loading.Run([file] { return LoadPicture(file, kTipArea); },
                  [this, file](const LoadedPicture& picture) {
                      if (file == m_file) {
                          m_tip = {.text = ProblemText(picture.problem),
                                   .picture = picture.image.isNull()
                                                  ? QImage()
                                                  : picture.image.scaled(kTipArea, Qt::KeepAspectRatio,
                                                                         Qt::SmoothTransformation)};
                          m_arrived();
                      }
                  });
    return m_tip;
}

}  // namespace quorvane
