// PhotoLibrary: the folder with one picture file a luminaire, named by the luminaire's ID.
//
// It is "\Vexal\LuminairePhotoLib\" under a base folder. A record names its photo as
// "\Vexal\LuminairePhotoLib\<ID><extension>", the form that other programs reading the database expect.
//
// Nothing is written or deleted through a link. A library folder that is a link is only read.
#pragma once

#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <set>

#include "data/records.h"
#include "model/photo/photo_copy.h"

class QTemporaryDir;

namespace quorvane {

class PhotoLibrary {
public:
    // baseFolder, with either kind of separator, has none at its end. With an empty one no file is touched.
    explicit PhotoLibrary(CString baseFolder);

    // The native path of the file that a photo text names. A text that begins with "\" is relative to the
    // base folder; any other text is a path of its own.
    CString FilePath(const CString& photo) const;

    // A picture that is about to become a luminaire's photo.
    struct PreparedPhoto {
        CString photo;       // the new photo text of the luminaire's record
        StagedPicture copy;  // "staged-<ID><extension>" in the library; null: nothing to put in place
        CString fallback;    // the photo text of the record if Commit fails
        PhotoProblem problem = PhotoProblem::None;
    };
    // Copies the file `source` so that Commit can make it the luminaire's photo. An empty source gives an
    // empty photo text. A source that already is the luminaire's photo is not copied. Only a regular file of
    // at most 64 MB is copied, and none that is a link in the library. When copying fails, the problem says
    // why, and the photo text is that of the old picture, or empty without one.
    //
    // The library does not change before Commit: a record that then cannot be written keeps its picture.
    // copied is what Copying gave for the same source; without it the file is copied here.
    PreparedPhoto Prepare(int luminaireID, const CString& source, const StagedPicture& copied = {}) const;
    // Copies the file `source` into the library, under a name that begins with "copying-". To be run in any
    // thread, since it takes as long as the drives do; it owns what it touches.
    std::function<StagedPicture()> Copying(const CString& source) const;
    // To be called after the record is written. Puts the copy in place and deletes the luminaire's other
    // files; an empty photo deletes all of them. False when the copy could not be put in place, or files may
    // not be deleted; no file is deleted then.
    bool Commit(int luminaireID, const PreparedPhoto& prepared);
    // Waits until the disk holds the names of what Commit has put in place.
    void Sync();
    // The files that a killed program left in the library while it put pictures there.
    QStringList Leftovers() const;
    // Puts a leftover picture in place whose luminaire's record names it, as photoOf tells it. Deletes other
    // leftovers that are older than an hour.
    void Heal(const std::function<CString(int luminaireID)>& photoOf);
    // Deletes every file "<ID>.*" of the library.
    void DeletePhotos(int luminaireID) { DeleteOthers(luminaireID, {}); }

    // A temporary copy of a picture. Its file is deleted with the last PictureCopy that refers to it.
    struct PictureCopy {
        CString file;  // empty: no picture
        std::shared_ptr<QTemporaryDir> folder;
        bool isFailed = false;  // there is a picture, but it could not be copied
    };
    // Whether the text is the one that names a photo of that luminaire.
    static bool IsOwn(int luminaireID, const CString& photo);
    // Why pictures cannot be written, when Commit has failed.
    PhotoProblem WriteProblem() const;
    // Whether the path names a file directly in the library's folder, existing or not.
    bool Holds(const CString& photo) const;
    // Copies a picture of the library to a temporary file, so that it survives changes of the library. Empty
    // when source is the luminaire's own picture, is not in the library, or cannot be copied.
    PictureCopy CopyPicture(int luminaireID, const CString& source) const;

    // While it exists, the library's file names are read from the disk only once.
    class CachedListing {
    public:
        explicit CachedListing(PhotoLibrary& library) : m_library(library) {
            m_library.m_listing = m_library.AllNames();
        }
        ~CachedListing() { m_library.m_listing.reset(); }
        CachedListing(const CachedListing&) = delete;
        CachedListing& operator=(const CachedListing&) = delete;

    private:
        PhotoLibrary& m_library;
    };

private:
    using Names = std::set<CString>;

    CString Folder() const;
    bool IsFolderLink() const;
    // Deletes every file "<ID>.*" of the library except the one that photo names.
    void DeleteOthers(int luminaireID, const CString& photo);
    // Names of all files in the library.
    Names AllNames() const;
    // Names of the luminaire's files in the library.
    std::vector<CString> FileNames(int luminaireID) const;
    // The luminaire's picture in the library that is not called newName, or an empty text.
    CString OldPicture(int luminaireID, const CString& newName = {}) const;

    CString m_baseFolder;
    std::optional<Names> m_listing;  // while a CachedListing exists
    bool m_isSynced = true;
};

}  // namespace quorvane
