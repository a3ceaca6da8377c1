// WorkingLuminaires: the luminaires that are being edited, with everything that is stored together with a
// luminaire: its photo in the photo library and its utilization factors.
//
// A record is written first, then its photo is put into the library, then pasted factors replace those in the
// database. The first failure stops this, and what has not been written is kept for the next submit.
//
// Only a photo that the user has chosen since the load is copied. One that came with the file is left alone,
// whatever it names.
#pragma once

#include <QHash>
#include <map>
#include <optional>
#include <vector>

#include "data/lighting_database.h"
#include "model/photo/photo_library.h"
#include "model/records/working_records.h"
#include "model/reference_lists.h"

namespace quorvane {

// A luminaire without any entry. It is neither written nor copied. A photo alone does not count as an entry.
tagLUMINAIREINFO EmptyLuminaire();
bool IsEmptyLuminaire(const tagLUMINAIREINFO& luminaire);

class WorkingLuminaires {
public:
    using Saved = WorkingRecords<tagLUMINAIREINFO>::Saved;

    // The photo library is that of the database.
    WorkingLuminaires(CLightingDatabase& database, ReferenceLists& lists);

    WorkingRecords<tagLUMINAIREINFO>& Records() { return m_records; }
    const WorkingRecords<tagLUMINAIREINFO>& Records() const { return m_records; }
    const PhotoLibrary& Photos() const { return m_photos; }
    // Whether the record's photo is a picture that is still to be copied into the library.
    bool IsToBeCopied(const tagLUMINAIREINFO& record) const;

    // Loads the luminaires whose categories hold that text. Unsaved photos and factors of the former
    // luminaires are dropped. False when not all of them could be read.
    bool Load(const CString& categoryText);
    // The same for the luminaires that have no category, or none that the file knows.
    bool LoadWithoutCategory();

    // Copies the chosen photos of all records into the library, in threads of their own, so that a submit
    // need not wait for their drives. To be called before a submit begins. Calls progress while it waits,
    // with the photos copied and all photos.
    void CopyPhotos(const ProgressCallback& progress);
    // Writes all records and deletes the removed ones with their photos.
    SubmitFailures Submit(const ProgressCallback& progress = {});
    // To be called after a submit; see WorkingRecords. Pasted factors are compared too.
    void Compare(SubmitFailures& failures);
    // Writes the record with that ID, which must exist, at once.
    Saved Save(int id);
    // The written luminaires without a category: no filter finds them.
    int CountWithoutCategory() const;

    // Copies a record with its photo and its factors, unsaved ones included. False when the factors could not
    // be read completely; nothing can be pasted then, since a part of a table would replace a whole one.
    bool Copy(const tagLUMINAIREINFO& luminaire);
    bool CanPaste() const { return !IsEmptyLuminaire(m_copied.luminaire); }
    // Puts the copy in the place of the record with that ID, or appends it for ID 0, and writes it at once.
    // The modified flag changes only when the copy could not be written.
    Saved Paste(int id);

    // ---- What outlives the run beside the records

    using Factors = std::vector<tagLUMINAIREUTILIZATIONFACTOR>;
    struct PastedFactors {
        Factors factors;
        std::optional<Factors> inFile;  // those that they are to replace; none when these could not be read
    };
    // The pasted factors that are still to be written, by record ID.
    std::map<int, PastedFactors> PendingFactors() const;
    // In a later run: pastes them again for the record with that ID, which must exist, unless the file holds
    // them already. False when it does not hold what it did then.
    bool PasteFactorsAgain(int id, PastedFactors pasted);
    // The unwritten records whose photo came with the file, perhaps by a paste, and is not to be copied.
    std::vector<int> LeftAlonePhotos() const;
    // In a later run: leaves the photo of the record with that ID, if there is one, alone.
    void LeavePhotoAlone(int id);

private:
    struct CopyBuffer {
        tagLUMINAIREINFO luminaire;  // empty: nothing copied
        PhotoLibrary::PictureCopy picture;
        Factors factors;
        bool isForeignPhoto = false;  // the photo came with the file and is not in the library
    };

    // What is written together with a record.
    struct Unsaved {
        CString photo;                      // the photo text that the picture belongs to
        PhotoLibrary::PictureCopy picture;  // a copy of that picture, or none
        std::optional<PastedFactors> pasted = {};
    };

    RecordStatements<tagLUMINAIREINFO> Statements();
    bool Insert(tagLUMINAIREINFO& record);
    bool Update(tagLUMINAIREINFO& record);
    bool Delete(int id);
    void CopyPhoto(const tagLUMINAIREINFO& record, const std::function<void()>& meanwhile = {});
    bool LoadSelected(const CString& categoryText,
                      const std::function<bool(const tagLUMINAIREINFO&)>& isLeftOut);
    // Puts in place the pictures that a killed program has left in the library.
    void HealLibrary();
    bool WriteWithPhoto(tagLUMINAIREINFO& record);
    // Whether the record's photo came with the file and is not the luminaire's own picture in the library.
    bool IsLeftAlone(const tagLUMINAIREINFO& record) const;
    bool ReplaceFactors(int luminaireId, const Factors& factors);
    // The factors in the file of the record with that ID; none when they could not be read completely.
    std::optional<Factors> FactorsInFile(int id);
    StoredRecords<tagLUMINAIREINFO> RecordsInFile(const std::optional<CString>& slice);
    void CompareFactors(SubmitFailures& failures);
    void CopyUsedPictures();
    PhotoLibrary::PictureCopy PictureOf(const tagLUMINAIREINFO& record) const;

    CLightingDatabase& m_database;
    ReferenceLists& m_lists;
    PhotoLibrary m_photos;
    WorkingRecords<tagLUMINAIREINFO> m_records;
    std::optional<CString> m_loadedCategory;  // the text by which the records were loaded
    std::map<int, Unsaved> m_unsaved;         // by record ID
    std::map<int, Factors> m_replaced;        // by record ID: the factors that were written, not yet compared
    std::map<int, StagedPicture> m_staged;    // by record ID: the pictures that CopyPhotos has copied
    CopyBuffer m_copied;
    QHash<int, CString> m_storedPhotos;                // by record ID: the photos in the file
    PhotoProblem m_photoProblem = PhotoProblem::None;  // of the last record written or deleted
    bool m_isHealed = false;
    bool m_isLibraryKept = false;  // this submit must not replace or delete pictures
};

}  // namespace quorvane
