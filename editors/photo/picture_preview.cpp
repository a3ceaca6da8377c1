#include "editors/photo/picture_preview.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>

#include "editors/photo/picture_wholeness.h"

namespace quorvane {
namespace {

constexpr qint64 kMostPixels = 100'000'000;
constexpr qint64 kMostBytes = 256LL << 20;  // of a file
// Not held up by one that is slow, yet the memory for pictures that nobody waits for any more stays bounded.
constexpr int kLoadedAtOnce = 2;

bool IsBearable(const QSize& size) {
    return !size.isEmpty() && qint64{size.width()} * size.height() <= kMostPixels;
}

bool IsPhotoFormat(const QByteArray& format) {
    return QByteArrayList{"bmp", "gif", "jpeg", "jpg", "png"}.contains(format);
}

QByteArray Contents(const CString& path) {
    QFile file(path);
    const bool readable =
        QFileInfo(path).isFile() && file.size() <= kMostBytes && file.open(QIODevice::ReadOnly);
    return readable ? file.readAll() : QByteArray();
}

}  // namespace

QImage LoadPicture(const CString& file, const QSize& area) {
    // Qt's own limit is lower, and for some formats only. Eight bytes is the most that a pixel takes.
    static const bool limited = (QImageReader::setAllocationLimit(kMostPixels * 8 >> 20), true);
    Q_UNUSED(limited)
    QByteArray contents = Contents(file);
    QBuffer buffer(&contents);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QByteArray format = QImageReader::imageFormat(&buffer);
    // The size is asked for before anything is decoded: it alone decides how much memory that takes.
    if (!IsPhotoFormat(format) || !IsBearable(reader.size()) || !IsWholePicture(contents, format)) {
        return {};
    }
    if (reader.size().width() > area.width() && reader.size().height() > area.height()) {
        reader.setScaledSize(area);
    }
    return reader.read();
}

PicturePreview::PicturePreview(QWidget* parent) : QFrame(parent), m_loading(kLoadedAtOnce) {
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
}

void PicturePreview::ShowFile(const CString& file) {
    m_picture = QImage();
    update();
    m_loading.DropWaiting();
    const int request = ++m_request;
    if (file.isEmpty()) {
        return;
    }
    const QSize area = contentsRect().size() * devicePixelRatio();
    m_loading.Run([file, area] { return LoadPicture(file, area); },
                  [this, request](const QImage& picture) {
                      if (request == m_request) {
                          m_picture = picture;
                          update();
                      }
                  });
}

void PicturePreview::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    if (!m_picture.isNull()) {
        QPainter painter(this);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(contentsRect(), m_picture);
    }
}

}  // namespace quorvane
