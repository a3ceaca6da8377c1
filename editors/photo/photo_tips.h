// Small pictures for the tips of photo cells, read beside the event loop.
#pragma once

#include <QElapsedTimer>
#include <functional>

#include "editors/photo/picture_preview.h"
#include "grid/grid_types.h"

namespace quorvane {

class PhotoTips {
public:
    // arrived is called when more is known of the file that was asked for last.
    explicit PhotoTips(std::function<void()> arrived);

    // The picture, or why there is none, or that it is being read.
    GridTip TipOf(const CString& file);

private:
    std::function<void()> m_arrived;
    AsyncReader m_loading;
    CString m_file;  // the last one
    GridTip m_tip;
    QElapsedTimer m_age;  // since the file was asked for first
};

}  // namespace quorvane
