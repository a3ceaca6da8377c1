#include "model/photo/photo_copy.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <filesystem>
#include <system_error>
#include <utility>

namespace quorvane {
namespace {

constexpr qsizetype kBlock = 1 << 20;  // bytes copied at a time

PhotoProblem Copy(const CString& source, const CString& target) {
    QFile from(source);
    if (!QFileInfo(source).isFile() || !from.open(QIODevice::ReadOnly) || from.size() > kLargestPhoto) {
        return PhotoProblem::UnreadableSource;
    }
    QDir().mkpath(QFileInfo(target).path());
    QSaveFile copy(target);
    // The toolkit's file would be written to where a link leads. Its commit() reports no failure to write a
    // buffer, so it has none.
    if (IsLink(target) || !copy.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return PhotoProblem::UnwritableLibrary;
    }
    QByteArray block(kBlock, Qt::Uninitialized);
    qint64 read = 0;
    for (qint64 left = kLargestPhoto; left >= 0 && (read = from.read(block.data(), kBlock)) > 0;
         left -= read) {
        if (copy.write(block.constData(), read) != read) {
            return PhotoProblem::UnwritableLibrary;
        }
    }
    if (read != 0) {
        return PhotoProblem::UnreadableSource;
    }
    return copy.commit() ? PhotoProblem::None : PhotoProblem::UnwritableLibrary;
}

}  // namespace

bool IsLink(const CString& path) {
    const QFileInfo file(path);
    return file.isSymLink() || file.isJunction();
}

PhotoCopy::PhotoCopy(CString file, PhotoProblem problem) : m_file(std::move(file)), m_problem(problem) {}

PhotoCopy::~PhotoCopy() {
    if (!m_file.isEmpty()) {
        QFile::remove(m_file);
    }
}

bool PhotoCopy::MoveTo(const CString& path) {
    std::error_code error;
    std::filesystem::rename(QFileInfo(m_file).filesystemFilePath(), QFileInfo(path).filesystemFilePath(),
                            error);
    if (!error) {
        m_file = path;
    }
    return !error;
}

StagedPicture CopyPhoto(const CString& source, const CString& target) {
    const PhotoProblem problem = Copy(source, target);
    return std::make_shared<PhotoCopy>(problem == PhotoProblem::None ? target : CString(), problem);
}

}  // namespace quorvane
