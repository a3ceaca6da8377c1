#include "model/photo/photo_library.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QUuid>
#include <algorithm>
#include <utility>

#include "data/database_path.h"
#include "data/number_text.h"
#include "model/async_reader.h"
#include "model/photo/folder_sync.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

const CString kLibraryFolder = u"\\Vexal\\LuminairePhotoLib\\"_s;
// What stands in the library beside the pictures. These names begin with no digit, as those of pictures do.
const CString kCopying = u"copying-"_s;
const CString kStaged = u"staged-"_s;

// The text from the last "." on, or the whole path when it has none.
CString Extension(const CString& path) {
    return path.mid(std::max<qsizetype>(path.lastIndexOf(u'.'), 0));
}

bool IsFileName(const CString& name) {
    return std::none_of(name.begin(), name.end(),
                        [](QChar c) { return c == u'\\' || c == u'/' || c == u':'; });
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

PhotoLibrary::PreparedPhoto PhotoLibrary::Prepare(int luminaireID, const CString& source,
                                                  const StagedPicture& copied) const {
    if (source.isEmpty()) {
        return {};
    }
    const CString name = CString::number(luminaireID) + Extension(source);
    CString relative = kLibraryFolder + name;
    const CString target = FilePath(relative);
    const bool isOwn = source == relative || NativePath(source) == target;
    if (isOwn) {
        CString old = QFile::exists(target) ? CString() : OldPicture(luminaireID);
        return {.photo = old.isEmpty() ? relative : old, .copy = nullptr, .fallback = {}};
    }
    const StagedPicture staged = copied != nullptr ? copied : Copying(source)();
    PhotoProblem problem = staged->Problem();
    // A link or a folder in the picture's place stays there.
    if (problem == PhotoProblem::None &&
        (IsLink(target) || QFileInfo(target).isDir() || !staged->MoveTo(Folder() + kStaged + name))) {
        problem = PhotoProblem::UnwritableLibrary;
    }
    const bool isStaged = problem == PhotoProblem::None;
    CString old = OldPicture(luminaireID, isStaged ? name : CString());
    return {.photo = isStaged ? relative : old,
            .copy = isStaged ? staged : nullptr,
            .fallback = old,
            .problem = problem};
}

std::function<StagedPicture()> PhotoLibrary::Copying(const CString& source) const {
    // An "extension" that comes from a "." in a folder's name would put the copy outside the library.
    const bool isFile = IsFileName(Extension(source)) && !m_baseFolder.isEmpty() &&
                        !(Holds(source) && IsLink(QDir::cleanPath(FilePath(source))));
    const PhotoProblem problem = !isFile          ? PhotoProblem::UnreadableSource
                                 : IsFolderLink() ? PhotoProblem::LinkedLibrary
                                                  : PhotoProblem::None;
    return [problem, from = FilePath(source), to = Folder() + kCopying] {
        return problem == PhotoProblem::None
                   ? CopyPhoto(from, to + QUuid::createUuid().toString(QUuid::Id128))
                   : std::make_shared<PhotoCopy>(CString(), problem);
    };
}

bool PhotoLibrary::Commit(int luminaireID, const PreparedPhoto& prepared) {
    const bool deletes = prepared.copy != nullptr || prepared.photo.isEmpty();
    if (deletes && IsFolderLink() && !FileNames(luminaireID).empty()) {
        return false;
    }
    if (prepared.copy != nullptr) {
        const CString target = FilePath(prepared.photo);
        if (!prepared.copy->MoveTo(target)) {
            return false;
        }
        prepared.copy->Keep();
        m_isSynced = false;
        if (m_listing) {
            m_listing->insert(QFileInfo(target).fileName());
        }
    }
    if (deletes) {
        DeleteOthers(luminaireID, prepared.photo);
    }
    return true;
}

void PhotoLibrary::Sync() {
    if (!m_isSynced) {
        SyncFolder(Folder());
        m_isSynced = true;
    }
}

QStringList PhotoLibrary::Leftovers() const {
    return m_baseFolder.isEmpty() || IsFolderLink()
               ? QStringList()
               : QDir(Folder()).entryList({kCopying + u'*', kStaged + u'*'},
                                          QDir::Files | QDir::Hidden | QDir::System | QDir::NoSymLinks);
}

// Another program may still be at work on a file that is young.
void PhotoLibrary::Heal(const std::function<CString(int luminaireID)>& photoOf) {
    const QDateTime old = QDateTime::currentDateTime().addSecs(-3600);
    for (const CString& leftover : Leftovers()) {
        const CString file = Folder() + leftover;
        const CString name = leftover.startsWith(kStaged) ? leftover.sliced(kStaged.size()) : CString();
        const int id = ToInteger(name);
        const CString photo = kLibraryFolder + name;
        if (id > 0 && photoOf(id) == photo) {
            Commit(id, {.photo = photo, .copy = std::make_shared<PhotoCopy>(file), .fallback = {}});
        } else if (QFileInfo(file).lastModified() < old) {
            QFile::remove(file);
        }
    }
    Sync();
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
    const StagedPicture copy = picture.folder->isValid() ? CopyPhoto(file.filePath(), target) : nullptr;
    if (copy != nullptr && copy->Problem() == PhotoProblem::None) {
        copy->Keep();  // the folder takes it along
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
