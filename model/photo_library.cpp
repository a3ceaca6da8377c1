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

// A complete copy beside its target, which it replaces on commit(). Null when it cannot be made.
std::unique_ptr<QSaveFile> CopyBeside(const CString& source, const CString& target) {
    QFile from(source);
    if (!QFileInfo(source).isFile() || !from.open(QIODevice::ReadOnly)) {
        return nullptr;
    }
    QDir().mkpath(QFileInfo(target).path());
    auto copy = std::make_unique<QSaveFile>(target);
    if (!copy->open(QIODevice::WriteOnly)) {
        return nullptr;
    }
    QByteArray block(kBlock, Qt::Uninitialized);
    qint64 read = 0;
    while ((read = from.read(block.data(), kBlock)) > 0) {
        if (copy->write(block.constData(), read) != read) {
            return nullptr;
        }
    }
    return read == 0 && copy->flush() ? std::move(copy) : nullptr;
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

PhotoLibrary::PreparedPhoto PhotoLibrary::Prepare(int luminaireID, const CString& source) const {
    if (source.isEmpty()) {
        return {};
    }
    const CString name = CString::number(luminaireID) + Extension(source);
    CString relative = kLibraryFolder + name;
    const CString target = FilePath(relative);
    const bool isOwn = source == relative || NativePath(source) == target;
    // An "extension" that comes from a "." in a folder's name would put the copy outside the library.
    const bool isName = IsFileName(name);
    if (!isOwn && isName && !m_baseFolder.isEmpty()) {
        if (auto copy = CopyBeside(FilePath(source), target)) {
            CString old = OldPicture(luminaireID, name);
            return {.photo = relative, .copy = std::move(copy), .fallback = old.isEmpty() ? relative : old};
        }
    }
    CString old = isOwn && QFile::exists(target) ? CString() : OldPicture(luminaireID);
    return {.photo = old.isEmpty() && isName ? relative : old, .copy = nullptr, .fallback = {}};
}

bool PhotoLibrary::Commit(int luminaireID, const PreparedPhoto& prepared) {
    if (prepared.copy != nullptr) {
        if (!prepared.copy->commit()) {
            return false;
        }
        if (m_listing) {
            m_listing->insert(QFileInfo(prepared.copy->fileName()).fileName());
        }
    }
    if (prepared.copy != nullptr || prepared.photo.isEmpty()) {
        DeleteOthers(luminaireID, prepared.photo);
    }
    return true;
}

void PhotoLibrary::DeleteOthers(int luminaireID, const CString& photo) {
    const QFileInfo kept(FilePath(photo));
    for (const CString& name : FileNames(luminaireID)) {
        const CString file = Folder() + name;
        // Files are compared, not names: on a file system without case, "12.JPG" is "12.jpg".
        if ((photo.isEmpty() || QFileInfo(file) != kept) && QFile::remove(file) && m_listing) {
            m_listing->erase(name);
        }
    }
}

PhotoLibrary::PictureCopy PhotoLibrary::CopyPicture(int luminaireID, const CString& source) const {
    const CString ownStart = CString::number(luminaireID) + u'.';
    if (m_baseFolder.isEmpty() || source.isEmpty() || source.startsWith(kLibraryFolder + ownStart)) {
        return {};
    }
    const QFileInfo file(QDir::cleanPath(FilePath(source)));
    if (!IsSameFolder(file.path(), QDir::cleanPath(Folder())) || file.fileName().startsWith(ownStart) ||
        !file.isFile()) {
        return {};
    }
    PictureCopy picture{.file = {}, .folder = std::make_shared<QTemporaryDir>()};
    const CString target = picture.folder->filePath(file.fileName());
    const auto copy = picture.folder->isValid() ? CopyBeside(file.filePath(), target) : nullptr;
    if (copy != nullptr && copy->commit()) {
        picture.file = target;
    }
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
