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
// One slow file must not delay the next. The bound limits the memory for pictures that are no longer wanted.
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
    // The limit of the toolkit is lower, and holds only for some formats. A pixel takes at most eight bytes.
    static const bool limited = (QImageReader::setAllocationLimit(kMostPixels * 8 >> 20), true);
    Q_UNUSED(limited)
    QByteArray contents = Contents(file);
    QBuffer buffer(&contents);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QByteArray format = QImageReader::imageFormat(&buffer);
    // The size decides how much memory decoding takes, so it is checked first.
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
