// A sunken frame that shows a picture file stretched over its whole area.
#pragma once

#include <QFrame>
#include <QImage>

#include "data/records.h"
#include "model/async_reader.h"

namespace quorvane {

// The picture of a file for an area of that many pixels. The picture may be larger or smaller than the area.
// Null when the file is no complete picture or needs too much memory. The name of the file does not matter.
// Thread-safe.
QImage LoadPicture(const CString& file, const QSize& area);

class PicturePreview : public QFrame {
public:
    explicit PicturePreview(QWidget* parent);

    // Shows the picture once it is loaded, and nothing until then, without delaying the event loop. Nothing
    // is shown for an empty path or a file without a picture. A later call replaces an earlier one.
    void ShowFile(const CString& file);
    bool IsBlank() const { return m_picture.isNull(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    AsyncReader m_loading;
    int m_request = 0;  // number of the last ShowFile
    QImage m_picture;
};

}  // namespace quorvane
