#include "model/photo_store.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <utility>

#include "data/database_path.h"
#include "model/background.h"

namespace quorvane {
namespace {

const CString kLibrary = QStringLiteral("\\Vexal\\LuminairePhotoLib\\");
constexpr qsizetype kBlock = 1 << 20;  // bytes copied at a time

// From the last "." on, or the whole path when it has none.
CString Extension(const CString& path) {
    return path.mid(std::max<qsizetype>(path.lastIndexOf(u'.'), 0));
}

bool IsFileName(const CString& name) {
    return std::none_of(name.begin(), name.end(),
                        [](QChar c) { return c == u'\\' || c == u'/' || c == u':'; });
}

// A whole copy beside its target, whose place it takes, on the disk, at commit(). Null when it cannot be
// made.
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

// Also by another way, such as a link. One that takes long leads to a drive that does not answer.
bool IsSameFolder(const QString& folder, const QString& other) {
    constexpr std::chrono::milliseconds patience(200);
    return folder.compare(other, Qt::CaseInsensitive) == 0 || Background::Within(patience, [folder, other] {
                                                                  return QDir(folder) == QDir(other);
                                                              }).value_or(false);
}

}  // namespace

PhotoStore::PhotoStore(CString baseFolder) : m_baseFolder(std::move(baseFolder)) {}

CString PhotoStore::FilePath(const CString& photo) const {
    return photo.startsWith(u'\\') ? NativePath(m_baseFolder + photo) : photo;
}

CString PhotoStore::Folder() const {
    return FilePath(kLibrary);
}

PhotoStore::StagedPhoto PhotoStore::Stage(int luminaireID, const CString& source) const {
    if (source.isEmpty()) {
        return {};
    }
    const CString name = CString::number(luminaireID) + Extension(source);
    CString relative = kLibrary + name;
    const CString target = FilePath(relative);
    const bool isOwn = source == relative || NativePath(source) == target;
    // What follows a "." in a folder's name is no extension: such a copy would leave the library.
    const bool isName = IsFileName(name);
    if (!isOwn && isName && !m_baseFolder.isEmpty()) {
        if (auto copy = CopyBeside(FilePath(source), target)) {
            CString old = OldPicture(luminaireID, name);
            return {.photo = relative, .copy = std::move(copy), .old = old.isEmpty() ? relative : old};
        }
    }
    CString old = isOwn && QFile::exists(target) ? CString() : OldPicture(luminaireID);
    return {.photo = old.isEmpty() && isName ? relative : old, .copy = nullptr, .old = {}};
}

bool PhotoStore::Place(int luminaireID, const StagedPhoto& staged) {
    if (staged.copy != nullptr) {
        if (!staged.copy->commit()) {
            return false;
        }
        if (m_listing) {
            m_listing->insert(QFileInfo(staged.copy->fileName()).fileName());
        }
    }
    if (staged.copy != nullptr || staged.photo.isEmpty()) {
        DeleteOthers(luminaireID, staged.photo);
    }
    return true;
}

void PhotoStore::DeleteOthers(int luminaireID, const CString& photo) {
    const QFileInfo kept(FilePath(photo));
    for (const CString& name : FileNames(luminaireID)) {
        const CString file = Folder() + name;
        // Compared as files: where case does not count, "12.JPG" is "12.jpg".
        if ((photo.isEmpty() || QFileInfo(file) != kept) && QFile::remove(file) && m_listing) {
            m_listing->erase(name);
        }
    }
}

PhotoStore::KeptPicture PhotoStore::Keep(int luminaireID, const CString& source) const {
    const CString ownStart = CString::number(luminaireID) + u'.';
    if (m_baseFolder.isEmpty() || source.isEmpty() || source.startsWith(kLibrary + ownStart)) {
        return {};
    }
    const QFileInfo file(QDir::cleanPath(FilePath(source)));
    if (!IsSameFolder(file.path(), QDir::cleanPath(Folder())) || file.fileName().startsWith(ownStart) ||
        !file.isFile()) {
        return {};
    }
    KeptPicture kept{.file = {}, .folder = std::make_shared<QTemporaryDir>()};
    const CString target = kept.folder->filePath(file.fileName());
    const auto copy = kept.folder->isValid() ? CopyBeside(file.filePath(), target) : nullptr;
    if (copy != nullptr && copy->commit()) {
        kept.file = target;
    }
    return kept;
}

PhotoStore::Names PhotoStore::AllNames() const {
    if (m_baseFolder.isEmpty()) {
        return {};
    }
    const QStringList names = QDir(Folder()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    return {names.begin(), names.end()};
}

std::vector<CString> PhotoStore::FileNames(int luminaireID) const {
    const CString start = CString::number(luminaireID) + u'.';
    const Names read = m_listing ? Names() : AllNames();
    const Names& all = m_listing ? *m_listing : read;
    std::vector<CString> names;
    for (auto name = all.lower_bound(start); name != all.end() && name->startsWith(start); ++name) {
        names.push_back(*name);
    }
    return names;
}

// A name with a second "." is no picture but, for instance, what an interrupted copy left behind.
CString PhotoStore::OldPicture(int luminaireID, const CString& newName) const {
    for (const CString& name : FileNames(luminaireID)) {
        if (name != newName && name.count(u'.') == 1) {
            return kLibrary + name;
        }
    }
    return {};
}

}  // namespace quorvane
