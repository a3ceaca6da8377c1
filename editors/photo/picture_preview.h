// A sunken frame that shows a picture file stretched over its whole area.
#pragma once

#include <QFrame>
#include <QImage>

#include "data/records.h"
#include "model/async_reader.h"

namespace quorvane {

// The picture in a file as it is to be shown in an area of that many pixels, which it may be larger or
// smaller than; null when the file cannot be read whole as a picture, or asks for more memory than a photo
// may take. What the file is called does not matter. Any thread may call it.
QImage LoadPicture(const CString& file, const QSize& area);

class PicturePreview : public QFrame {
public:
    explicit PicturePreview(QWidget* parent);

    // Shows the picture as soon as it is loaded, which does not hold up the event loop, and nothing before or
    // when there is none in the file. An empty path shows nothing. Of several files the last one counts.
    void ShowFile(const CString& file);
    bool IsBlank() const { return m_picture.isNull(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    AsyncReader m_loading;
    int m_request = 0;  // the last one counts
    QImage m_picture;
};

}  // namespace quorvane
