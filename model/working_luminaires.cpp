#include "model/working_luminaires.h"

#include <utility>

namespace quorvane {

using namespace Qt::Literals::StringLiterals;

tagLUMINAIREINFO EmptyLuminaire() {
    tagLUMINAIREINFO empty;
    empty.LamphouseCount = u"0"_s;
    return empty;
}

bool IsEmptyLuminaire(const tagLUMINAIREINFO& luminaire) {
    tagLUMINAIREINFO empty = EmptyLuminaire();
    empty.LampPhoto = luminaire.LampPhoto;
    return luminaire == empty;
}

WorkingLuminaires::WorkingLuminaires(CLightingDatabase& database, ReferenceLists& lists)
    : m_database(database),
      m_lists(lists),
      m_photos(database.GetApplicationParentFolder()),
      m_copied{.luminaire = EmptyLuminaire(), .picture = {}, .factors = {}} {}

bool WorkingLuminaires::Load(const CString& categoryText) {
    std::vector<tagLUMINAIREINFO> luminaires;
    const bool complete = m_database.LoadLuminairesByType(categoryText, luminaires);
    m_unsaved.clear();
    m_records.TakeLoaded(std::move(luminaires));
    return complete;
}

// ---- Writing

RecordStatements<tagLUMINAIREINFO> WorkingLuminaires::Statements() {
    return {.isBlank = IsEmptyLuminaire,
            .insert = [this](tagLUMINAIREINFO& record) { return Insert(record); },
            .update = [this](tagLUMINAIREINFO& record) { return Update(record); },
            .remove = [this](int id) { return Delete(id); }};
}

SubmitFailures WorkingLuminaires::Submit(const ProgressCallback& progress) {
    m_lists.Invalidate();
    CopyUsedPictures();
    const PhotoLibrary::CachedListing listing(m_photos);
    return m_records.Submit(Statements(), progress);
}

WorkingLuminaires::Saved WorkingLuminaires::Save(int id) {
    m_lists.Invalidate();
    CopyUsedPictures();
    SubmitScope scope(m_database);  // pasted factors are many statements
    Saved saved = m_records.SubmitOne(id, Statements());
    saved.written = scope.Finish() && saved.written;
    return saved;
}

int WorkingLuminaires::CountWithoutCategory() const {
    int count = 0;
    m_records.ForEach([&](const tagLUMINAIREINFO& record) {
        count += record.LamphouseTypeID.isEmpty() && !m_records.IsUnwritten(record.ID) ? 1 : 0;
    });
    return count;
}

// A luminaire may be given the picture of another one that gets a new picture in the same submit. All such
// pictures are therefore copied before any of them is replaced.
void WorkingLuminaires::CopyUsedPictures() {
    m_records.ForEach([this](const tagLUMINAIREINFO& record) {
        if (!PictureOf(record).file.isEmpty()) {
            return;
        }
        PhotoLibrary::PictureCopy copy = m_photos.CopyPicture(record.ID, record.LampPhoto);
        if (!copy.file.isEmpty()) {
            Unsaved& unsaved = m_unsaved[record.ID];
            unsaved.photo = record.LampPhoto;
            unsaved.picture = std::move(copy);
        }
    });
}

PhotoLibrary::PictureCopy WorkingLuminaires::PictureOf(const tagLUMINAIREINFO& record) const {
    const auto unsaved = m_unsaved.find(record.ID);
    return unsaved != m_unsaved.end() && unsaved->second.photo == record.LampPhoto
               ? unsaved->second.picture
               : PhotoLibrary::PictureCopy();
}

// The photo's path in the library holds the ID, so the row is inserted without a photo and then updated.
bool WorkingLuminaires::Insert(tagLUMINAIREINFO& record) {
    const int provisionalId = record.ID;
    CString photo = std::exchange(record.LampPhoto, {});
    const bool inserted = m_database.InsertLuminaire(record);
    record.LampPhoto = std::move(photo);
    if (!inserted) {
        return false;
    }
    if (auto unsaved = m_unsaved.extract(provisionalId)) {
        unsaved.key() = record.ID;
        m_unsaved.insert(std::move(unsaved));
    }
    return Update(record);
}

bool WorkingLuminaires::Update(tagLUMINAIREINFO& record) {
    record.DefaultLamphouse = m_lists.ResolvedLightSourceIds(record.DefaultLamphouse);
    if (!WriteWithPhoto(record)) {
        return false;
    }
    const auto unsaved = m_unsaved.find(record.ID);
    if (unsaved == m_unsaved.end()) {
        return true;
    }
    if (unsaved->second.factors && !ReplaceFactors(record.ID, *unsaved->second.factors)) {
        unsaved->second.picture = {};
        return false;
    }
    m_unsaved.erase(unsaved);
    return true;
}

bool WorkingLuminaires::WriteWithPhoto(tagLUMINAIREINFO& record) {
    const CString copied = PictureOf(record).file;
    const PhotoLibrary::PreparedPhoto prepared =
        m_photos.Prepare(record.ID, copied.isEmpty() ? record.LampPhoto : copied);
    CString source = std::exchange(record.LampPhoto, prepared.photo);
    bool written = m_database.UpdateLuminaire(record);
    if (written && !m_photos.Commit(record.ID, prepared)) {
        record.LampPhoto = prepared.fallback;
        written = m_database.UpdateLuminaire(record);
    }
    if (!written) {
        record.LampPhoto = std::move(source);  // the next submit tries again
    }
    return written;
}

bool WorkingLuminaires::Delete(int id) {
    if (!m_database.DeleteLuminaire(id)) {
        return false;
    }
    m_photos.DeletePhotos(id);
    m_unsaved.erase(id);
    return true;
}

// Factors that could not be deleted would stand beside the inserted ones, each twice.
bool WorkingLuminaires::ReplaceFactors(int luminaireId, const Factors& factors) {
    if (!m_database.DeleteUtilizationFactorsOfLuminaire(luminaireId)) {
        return false;
    }
    bool complete = true;
    for (tagLUMINAIREUTILIZATIONFACTOR factor : factors) {
        factor.LuminaireID = luminaireId;
        complete = m_database.InsertUtilizationFactor(factor) && complete;
    }
    return complete;
}

// ---- Copy and paste

bool WorkingLuminaires::Copy(const tagLUMINAIREINFO& luminaire) {
    m_copied = {.luminaire = luminaire, .picture = PictureOf(luminaire), .factors = {}};
    if (m_copied.picture.file.isEmpty()) {
        m_copied.picture = m_photos.CopyPicture(0, luminaire.LampPhoto);
    }
    const auto unsaved = m_unsaved.find(luminaire.ID);
    if (unsaved != m_unsaved.end() && unsaved->second.factors) {
        m_copied.factors = *unsaved->second.factors;
        return true;
    }
    if (!m_database.LoadUtilizationFactors(luminaire.ID, m_copied.factors)) {
        m_copied = {.luminaire = EmptyLuminaire(), .picture = {}, .factors = {}};
        return false;
    }
    return true;
}

WorkingLuminaires::Saved WorkingLuminaires::Paste(int id) {
    tagLUMINAIREINFO luminaire = m_copied.luminaire;
    const bool wasModified = m_records.IsModified();
    if (id == 0) {
        id = m_records.Append(luminaire);
    } else {
        luminaire.ID = id;
        m_records.Replace(luminaire);
    }
    m_unsaved[id] = {luminaire.LampPhoto, m_copied.picture, m_copied.factors};
    const Saved saved = Save(id);
    m_records.SetModified(!saved.written || wasModified);
    return saved;
}

}  // namespace quorvane
