#include "model/photo_library.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <utility>

#include "data/database_path.h"
#include "model/async_reader.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

const CString kLibraryFolder = u"\\Vexal\\LuminairePhotoLib\\"_s;
constexpr qsizetype kBlock = 1 << 20;  // bytes copied at a time

// The text from the last "." on, or the whole path when it has none.
CString Extension(const CString& path) {
    return path.mid(std::max<qsizetype>(path.lastIndexOf(u'.'), 0));
}

bool IsFileName(const CString& name) {
    return std::none_of(name.begin(), name.end(),
                        [](QChar c) { return c == u'\\' || c == u'/' || c == u':'; });
}

bool IsLink(const CString& path) {
    const QFileInfo file(path);
    return file.isSymLink() || file.isJunction();
}

struct Copy {
    std::unique_ptr<QSaveFile> file;  // null: there is a problem
    PhotoProblem problem = PhotoProblem::None;
};

Copy Problem(PhotoProblem problem) {
    return {.file = nullptr, .problem = problem};
}

// A complete copy beside its target, which it replaces on commit().
Copy CopyBeside(const CString& source, const CString& target) {
    QFile from(source);
    if (!QFileInfo(source).isFile() || !from.open(QIODevice::ReadOnly) || from.size() > kLargestPhoto) {
        return Problem(PhotoProblem::UnreadableSource);
    }
    QDir().mkpath(QFileInfo(target).path());
    auto copy = std::make_unique<QSaveFile>(target);
    // The toolkit's file would be written to where a link leads.
    if (IsLink(target) || !copy->open(QIODevice::WriteOnly)) {
        return Problem(PhotoProblem::UnwritableLibrary);
    }
    QByteArray block(kBlock, Qt::Uninitialized);
    qint64 read = 0;
    for (qint64 left = kLargestPhoto; left >= 0 && (read = from.read(block.data(), kBlock)) > 0;
         left -= read) {
        if (copy->write(block.constData(), read) != read) {
            return Problem(PhotoProblem::UnwritableLibrary);
        }
    }
    if (read != 0) {
        return Problem(PhotoProblem::UnreadableSource);
    }
    if (!copy->flush()) {
        return Problem(PhotoProblem::UnwritableLibrary);
    }
    return {.file = std::move(copy), .problem = PhotoProblem::None};
}

// True also when the two paths reach one folder in different ways, such as through a link. A path that takes
// long to look up is on a drive that does not answer, and never the library.
bool IsSameFolder(const QString& folder, const QString& other) {
    constexpr std::chrono::milliseconds patience(200);
    return folder.compare(other, Qt::CaseInsensitive) == 0 || AsyncReader::Within(patience, [folder, other] {
                                                                  return QDir(folder) == QDir(other);
                                                              }).value_or(false);
}

}  // namespace

PhotoLibrary::PhotoLibrary(CString baseFolder) : m_baseFolder(std::move(baseFolder)) {}

CString PhotoLibrary::FilePath(const CString& photo) const {
    return photo.startsWith(u'\\') ? NativePath(m_baseFolder + photo) : photo;
}

CString PhotoLibrary::Folder() const {
    return FilePath(kLibraryFolder);
}

bool PhotoLibrary::IsFolderLink() const {
    return IsLink(Folder().chopped(1));
}

PhotoLibrary::PreparedPhoto PhotoLibrary::Prepare(int luminaireID, const CString& source) const {
    if (source.isEmpty()) {
        return {};
    }
    const CString name = CString::number(luminaireID) + Extension(source);
    CString relative = kLibraryFolder + name;
    const CString target = FilePath(relative);
    const bool isOwn = source == relative || NativePath(source) == target;
    // An "extension" that comes from a "." in a folder's name would put the copy outside the library.
    if (isOwn) {
        CString old = QFile::exists(target) ? CString() : OldPicture(luminaireID);
        return {.photo = old.isEmpty() ? relative : old, .copy = nullptr, .fallback = {}};
    }
    // An "extension" that comes from a "." in a folder's name would put the copy outside the library.
    const bool isFile = IsFileName(name) && !m_baseFolder.isEmpty() &&
                        !(Holds(source) && IsLink(QDir::cleanPath(FilePath(source))));
    Copy copy = !isFile          ? Problem(PhotoProblem::UnreadableSource)
                : IsFolderLink() ? Problem(PhotoProblem::LinkedLibrary)
                                 : CopyBeside(FilePath(source), target);
    CString old = OldPicture(luminaireID, copy.file == nullptr ? CString() : name);
    return {.photo = copy.file == nullptr ? old : relative,
            .copy = std::move(copy.file),
            .fallback = old,
            .problem = copy.problem};
}

bool PhotoLibrary::Commit(int luminaireID, const PreparedPhoto& prepared) {
    const bool deletes = prepared.copy != nullptr || prepared.photo.isEmpty();
    if (deletes && IsFolderLink() && !FileNames(luminaireID).empty()) {
        return false;
    }
    if (prepared.copy != nullptr) {
        if (!prepared.copy->commit()) {
            return false;
        }
        if (m_listing) {
            m_listing->insert(QFileInfo(prepared.copy->fileName()).fileName());
        }
    }
    if (deletes) {
        DeleteOthers(luminaireID, prepared.photo);
    }
    return true;
}

void PhotoLibrary::DeleteOthers(int luminaireID, const CString& photo) {
    if (IsFolderLink()) {
        return;
    }
    const QFileInfo kept(FilePath(photo));
    for (const CString& name : FileNames(luminaireID)) {
        const CString file = Folder() + name;
        // Files are compared, not names: on a file system without case, "12.JPG" is "12.jpg".
        if ((photo.isEmpty() || QFileInfo(file) != kept) && QFile::remove(file) && m_listing) {
            m_listing->erase(name);
        }
    }
}

bool PhotoLibrary::Holds(const CString& photo) const {
    const QFileInfo file(QDir::cleanPath(FilePath(photo)));
    return !m_baseFolder.isEmpty() && !photo.isEmpty() &&
           IsSameFolder(file.path(), QDir::cleanPath(Folder()));
}

bool PhotoLibrary::IsOwn(int luminaireID, const CString& photo) {
    const CString start = kLibraryFolder + CString::number(luminaireID) + u'.';
    return photo.startsWith(start) && IsFileName(photo.sliced(start.size()));
}

PhotoProblem PhotoLibrary::WriteProblem() const {
    return IsFolderLink() ? PhotoProblem::LinkedLibrary : PhotoProblem::UnwritableLibrary;
}

PhotoLibrary::PictureCopy PhotoLibrary::CopyPicture(int luminaireID, const CString& source) const {
    const CString ownStart = CString::number(luminaireID) + u'.';
    if (IsOwn(luminaireID, source) || !Holds(source)) {
        return {};
    }
    const QFileInfo file(QDir::cleanPath(FilePath(source)));
    if (file.fileName().startsWith(ownStart) || !file.isFile() || IsLink(file.filePath())) {
        return {};
    }
    PictureCopy picture{.file = {}, .folder = std::make_shared<QTemporaryDir>()};
    const CString target = picture.folder->filePath(file.fileName());
    const auto copy = picture.folder->isValid() ? CopyBeside(file.filePath(), target).file : nullptr;
    if (copy != nullptr && copy->commit()) {
        picture.file = target;
    }
    picture.isFailed = picture.file.isEmpty();
    return picture;
}

PhotoLibrary::Names PhotoLibrary::AllNames() const {
    if (m_baseFolder.isEmpty()) {
        return {};
    }
    const QStringList names = QDir(Folder()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    return {names.begin(), names.end()};
}

std::vector<CString> PhotoLibrary::FileNames(int luminaireID) const {
    const CString start = CString::number(luminaireID) + u'.';
    const Names read = m_listing ? Names() : AllNames();
    const Names& all = m_listing ? *m_listing : read;
    std::vector<CString> names;
    for (auto name = all.lower_bound(start); name != all.end() && name->startsWith(start); ++name) {
        names.push_back(*name);
    }
    return names;
}

// A name with a second "." is no picture, but for instance the rest of an interrupted copy.
CString PhotoLibrary::OldPicture(int luminaireID, const CString& newName) const {
    for (const CString& name : FileNames(luminaireID)) {
        if (name != newName && name.count(u'.') == 1) {
            return kLibraryFolder + name;
        }
    }
    return {};
}

}  // namespace quorvane
