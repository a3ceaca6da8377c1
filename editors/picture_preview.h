// A sunken frame that shows a picture file stretched over its whole area.
#pragma once

#include <QFrame>
#include <QImage>

#include "data/records.h"

namespace quorvane {

// The picture in a file as it is to be shown in an area of that many pixels, which it may be larger or
// smaller than; null when the file cannot be read whole as a picture, or asks for more memory than a photo
// may take. What the file is called does not matter.
QImage LoadPicture(const CString& file, const QSize& area);

class PicturePreview : public QFrame {
public:
    explicit PicturePreview(QWidget* parent);

    // Shows the picture, or nothing when there is none in the file. An empty path shows nothing.
    void ShowFile(const CString& file);
    bool IsBlank() const { return m_picture.isNull(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage m_picture;
};

}  // namespace quorvane
