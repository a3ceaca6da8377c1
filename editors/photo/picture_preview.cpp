#include "editors/photo/picture_preview.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>

#include "editors/photo/picture_wholeness.h"
#include "model/photo/photo_library.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr qint64 kMostPixels = 100'000'000;
// One slow file must not delay the next. The bound limits the memory for pictures that are no longer wanted.
constexpr int kLoadedAtOnce = 2;

bool IsPhotoFormat(const QByteArray& format) {
    return QByteArrayList{"bmp", "gif", "jpeg", "jpg", "png"}.contains(format);
}

PictureProblem Read(const CString& path, QByteArray& contents) {
    QFile file(path);
    if (!file.exists()) {
        return PictureProblem::Gone;
    }
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return PictureProblem::Unreadable;
    }
    if (file.size() > kLargestPhoto) {
        return PictureProblem::TooLarge;
    }
    contents = file.readAll();
    return file.error() == QFile::NoError ? PictureProblem::None : PictureProblem::Unreadable;
}

// The size decides how much memory decoding takes, so it is checked before.
PictureProblem Examine(const QByteArray& contents, const QByteArray& format, const QSize& size) {
    if (!IsPhotoFormat(format) || size.isEmpty()) {
        return PictureProblem::NoPicture;
    }
    if (qint64{size.width()} * size.height() > kMostPixels) {
        return PictureProblem::TooManyPixels;
    }
    return IsWholePicture(contents, format) ? PictureProblem::None : PictureProblem::Incomplete;
}

}  // namespace

CString ProblemText(PictureProblem problem) {
    switch (problem) {
        case PictureProblem::None:
            return {};
        case PictureProblem::Gone:
            return u"图片文件不存在。"_s;
        case PictureProblem::Unreadable:
            return u"图片文件不能读取。"_s;
        case PictureProblem::TooLarge:
            return u"文件大于64MB,不能用作图片。"_s;
        case PictureProblem::NoPicture:
            return u"文件中没有可以识别的图片。"_s;
        case PictureProblem::TooManyPixels:
            return u"图片的像素太多,不能预览。"_s;
        case PictureProblem::Incomplete:
            return u"图片不完整或已损坏。"_s;
    }
    return {};
}

LoadedPicture LoadPicture(const CString& file, const QSize& area) {
    // The limit of the toolkit is lower, and holds only for some formats. A pixel takes at most eight bytes.
    static const bool limited = (QImageReader::setAllocationLimit(kMostPixels * 8 >> 20), true);
    Q_UNUSED(limited)
    QByteArray contents;
    LoadedPicture picture{.problem = Read(file, contents)};
    if (picture.problem != PictureProblem::None) {
        return picture;
    }
    QBuffer buffer(&contents);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QByteArray format = QImageReader::imageFormat(&buffer);
    picture.problem = Examine(contents, format, reader.size());
    if (picture.problem != PictureProblem::None) {
        return picture;
    }
    if (reader.size().width() > area.width() && reader.size().height() > area.height()) {
        const QSize fitting = reader.size().scaled(area, Qt::KeepAspectRatioByExpanding);
        reader.setScaledSize(fitting.expandedTo({1, 1}));
    }
    picture.image = reader.read();
    picture.problem = picture.image.isNull() ? PictureProblem::Incomplete : PictureProblem::None;
    return picture;
}

PicturePreview::PicturePreview(QWidget* parent) : QFrame(parent), m_loading(kLoadedAtOnce) {
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
}

void PicturePreview::ShowFile(const CString& file) {
    Show({});
    m_loading.DropWaiting();
    const int request = ++m_request;
    if (file.isEmpty()) {
        return;
    }
    const QSize area = contentsRect().size() * devicePixelRatio();
    m_loading.Run([file, area] { return LoadPicture(file, area); },
                  [this, request](const LoadedPicture& picture) {
                      if (request == m_request) {
                          Show(picture);
                      }
                  });
}

void PicturePreview::Show(const LoadedPicture& picture) {
    m_picture = picture.image;
    m_note = ProblemText(picture.problem);
    setAccessibleDescription(m_note);
    update();
}

void PicturePreview::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    if (!m_note.isEmpty()) {
        painter.drawText(contentsRect(), Qt::AlignCenter | Qt::TextWordWrap, m_note);
    } else if (!m_picture.isNull()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(contentsRect(), m_picture);
    }
}

}  // namespace quorvane
