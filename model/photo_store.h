// The photo library: one picture file a luminaire, named by the luminaire's ID.
//
// It is the folder "\Vexal\LuminairePhotoLib\" under a base folder. Records keep their photo as
// "\Vexal\LuminairePhotoLib\<ID><extension>", in the form that other programs reading the database expect.
#pragma once

#include <QSaveFile>
#include <memory>
#include <optional>
#include <set>

#include "data/records.h"

class QTemporaryDir;

namespace quorvane {

class PhotoStore {
public:
    // baseFolder, in either form, has no trailing separator. With an empty one no file is ever touched.
    explicit PhotoStore(CString baseFolder);

    // The file that a photo text names, as this platform writes it: a text beginning with "\" lies under the
    // base folder, any other is a path of its own.
    CString FilePath(const CString& photo) const;

    // A photo on its way into the library.
    struct StagedPhoto {
        CString photo;                    // what the luminaire's record is to keep
        std::unique_ptr<QSaveFile> copy;  // beside the place that it is to take; null: none is to be placed
        CString old;                      // what the record is to keep when the copy cannot take its place
    };
    // Prepares to make the file source the luminaire's picture; an empty source gives an empty text. A source
    // that already is the luminaire's picture is left alone. When it cannot be copied the result is the path
    // of the old picture; without an old picture it is the path that the new one would have had.
    //
    // Nothing in the library changes before Place, so that a record which then cannot be written keeps its
    // picture.
    StagedPhoto Stage(int luminaireID, const CString& source) const;
    // Once the record is written: the copy takes its place, and the luminaire's other files go, as they do
    // for an empty photo. False when it could not take its place; then they stay.
    bool Place(int luminaireID, const StagedPhoto& staged);
    // Deletes every file "<ID>.*" of the library.
    void Delete(int luminaireID) { DeleteOthers(luminaireID, {}); }

    // A copy of a picture, which is deleted with the last one that holds it.
    struct KeptPicture {
        CString file;  // empty: no picture
        std::shared_ptr<QTemporaryDir> folder;
    };
    // Keeps a picture of the library until it is stored, whatever happens to the library meanwhile. Nothing
    // when source is the luminaire's own picture or none of the library, or when it cannot be copied.
    KeptPicture Keep(int luminaireID, const CString& source) const;

    // While it lives, the library's folder is read once and not again for every luminaire.
    class OneListing {
    public:
        explicit OneListing(PhotoStore& store) : m_store(store) { m_store.m_listing = m_store.AllNames(); }
        ~OneListing() { m_store.m_listing.reset(); }
        OneListing(const OneListing&) = delete;
        OneListing& operator=(const OneListing&) = delete;

    private:
        PhotoStore& m_store;
    };

private:
    using Names = std::set<CString>;

    CString Folder() const;
    // Deletes every file "<ID>.*" of the library but that of photo.
    void DeleteOthers(int luminaireID, const CString& photo);
    // Names of all files in the library.
    Names AllNames() const;
    // Names of the luminaire's files in the library.
    std::vector<CString> FileNames(int luminaireID) const;
    // The luminaire's picture in the library that is not called newName, or an empty text.
    CString OldPicture(int luminaireID, const CString& newName = {}) const;

    CString m_baseFolder;
    std::optional<Names> m_listing;  // while a OneListing lives
};

}  // namespace quorvane
