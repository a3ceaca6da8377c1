#include "editors/photo_store.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>
#include <algorithm>
#include <utility>

#include "data/database_path.h"

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

// The copy grows beside its target and takes the target's place when it is whole and on the disk.
bool CopyWhole(const CString& source, const CString& target) {
    QFile from(source);
    if (!QFileInfo(source).isFile() || !from.open(QIODevice::ReadOnly)) {
        return false;
    }
    QDir().mkpath(QFileInfo(target).path());
    QSaveFile to(target);
    if (!to.open(QIODevice::WriteOnly)) {
        return false;
    }
    QByteArray block(kBlock, Qt::Uninitialized);
    qint64 read = 0;
    while ((read = from.read(block.data(), kBlock)) > 0) {
        if (to.write(block.constData(), read) != read) {
            return false;
        }
    }
    return read == 0 && to.commit();
}

}  // namespace

PhotoStore::PhotoStore(CString baseFolder) : m_baseFolder(std::move(baseFolder)) {}

CString PhotoStore::FilePath(const CString& photo) const {
    return photo.startsWith(u'\\') ? NativePath(m_baseFolder + photo) : photo;
}

CString PhotoStore::Folder() const {
    return FilePath(kLibrary);
}

PhotoStore::StoredPhoto PhotoStore::Store(int luminaireID, const CString& source) {
    if (source.isEmpty()) {
        return {.photo = {}, .replaces = true};
    }
    const CString name = CString::number(luminaireID) + Extension(source);
    CString relative = kLibrary + name;
    const CString target = FilePath(relative);
    if (source == relative || NativePath(source) == target) {
        const CString old = QFile::exists(target) ? CString() : OldPicture(luminaireID);
        return {.photo = old.isEmpty() ? relative : old};
    }
    // What follows a "." in a folder's name is no extension: such a copy would leave the library.
    if (!IsFileName(name)) {
        return {.photo = OldPicture(luminaireID)};
    }
    if (!m_baseFolder.isEmpty() && CopyWhole(FilePath(source), target)) {
        if (m_listing) {
            m_listing->insert(name);
        }
        return {.photo = relative, .replaces = true};
    }
    const CString old = OldPicture(luminaireID);
    return {.photo = old.isEmpty() ? relative : old};
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
    const QFileInfo file(FilePath(source));
    if (!file.isFile() || file.fileName().startsWith(ownStart) || file.dir() != QDir(Folder())) {
        return {};
    }
    KeptPicture kept{.file = {}, .folder = std::make_shared<QTemporaryDir>()};
    const CString copy = kept.folder->filePath(file.fileName());
    if (kept.folder->isValid() && CopyWhole(file.filePath(), copy)) {
        kept.file = copy;
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
CString PhotoStore::OldPicture(int luminaireID) const {
    for (const CString& name : FileNames(luminaireID)) {
        if (name.count(u'.') == 1) {
            return kLibrary + name;
        }
    }
    return {};
}

}  // namespace quorvane
