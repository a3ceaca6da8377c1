#include "model/working_luminaires.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "model/async_reader.h"

namespace quorvane {

using namespace Qt::Literals::StringLiterals;

namespace {

using Factors = WorkingLuminaires::Factors;

bool AreSameInFile(Factors left, Factors right) {
    std::ranges::sort(left, {}, &tagLUMINAIREUTILIZATIONFACTOR::ID);
    std::ranges::sort(right, {}, &tagLUMINAIREUTILIZATIONFACTOR::ID);
    return std::ranges::equal(left, right,
                              [](const auto& one, const auto& other) { return IsSameInFile(one, other); });
}

// The same table, under whatever IDs. Factors are written and read in their order.
bool AreSameTable(const Factors& left, const Factors& right) {
    return std::ranges::equal(left, right, [](const auto& one, auto other) {
        other.ID = one.ID;
        other.LuminaireID = one.LuminaireID;
        return IsSameInFile(one, other);
    });
}

}  // namespace

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
      m_copied{.luminaire = EmptyLuminaire(), .picture = {}, .factors = {}, .isForeignPhoto = false} {}

bool WorkingLuminaires::Load(const CString& categoryText) {
    return LoadSelected(categoryText, [](const tagLUMINAIREINFO&) { return false; });
}

// The empty text stands in all categories.
bool WorkingLuminaires::LoadWithoutCategory() {
    return LoadSelected({}, [this](const tagLUMINAIREINFO& luminaire) {
        return !m_lists.CategoryNames(luminaire.LamphouseTypeID).isEmpty();
    });
}

bool WorkingLuminaires::LoadSelected(const CString& categoryText,
                                     const std::function<bool(const tagLUMINAIREINFO&)>& isLeftOut) {
    HealLibrary();
    std::vector<tagLUMINAIREINFO> luminaires;
    const bool complete = m_database.LoadLuminairesByType(categoryText, luminaires);
    std::erase_if(luminaires, isLeftOut);
    m_loadedCategory = categoryText;
    m_unsaved.clear();
    m_storedPhotos.clear();
    for (const tagLUMINAIREINFO& luminaire : luminaires) {
        m_storedPhotos.insert(luminaire.ID, luminaire.LampPhoto);
    }
    m_records.TakeLoaded(std::move(luminaires));
    return complete;
}

void WorkingLuminaires::HealLibrary() {
    if (m_isHealed) {
        return;
    }
    std::vector<tagLUMINAIREINFO> luminaires;
    m_isHealed = m_photos.Leftovers().isEmpty();
    if (!m_isHealed && m_database.LoadLuminairesByType({}, luminaires)) {
        m_photos.Heal([&](int id) {
            const auto found = std::ranges::find(luminaires, id, &tagLUMINAIREINFO::ID);
            return found == luminaires.end() ? CString() : found->LampPhoto;
        });
        m_isHealed = true;
    }
}

// ---- Writing

RecordStatements<tagLUMINAIREINFO> WorkingLuminaires::Statements() {
    return {.isBlank = IsEmptyLuminaire,
            .insert = [this](tagLUMINAIREINFO& record) { return Insert(record); },
            .update = [this](tagLUMINAIREINFO& record) { return Update(record); },
            .remove = [this](int id) { return Delete(id); },
            .cause =
                [this] {
                    return WriteFailure{m_database.LastFailure(), m_photoProblem};
                }};
}

void WorkingLuminaires::CopyPhotos(const ProgressCallback& progress) {
    m_staged.clear();
    CopyUsedPictures();
    std::vector<const tagLUMINAIREINFO*> records;
    m_records.ForEach([&](const tagLUMINAIREINFO& record) {
        if (!IsEmptyLuminaire(record) && IsToBeCopied(record)) {
            records.push_back(&record);
        }
    });
    for (const tagLUMINAIREINFO* record : records) {
        CopyPhoto(*record,
                  [&] { progress(static_cast<int>(m_staged.size()), static_cast<int>(records.size())); });
    }
}

void WorkingLuminaires::CopyPhoto(const tagLUMINAIREINFO& record, const std::function<void()>& meanwhile) {
    constexpr std::chrono::minutes patience(1);
    const CString copied = PictureOf(record).file;
    const auto staged = AsyncReader::Within(
        patience, m_photos.Copying(copied.isEmpty() ? record.LampPhoto : copied), meanwhile);
    m_staged[record.ID] =
        staged.value_or(std::make_shared<PhotoCopy>(CString(), PhotoProblem::UnreadableSource));
}

SubmitFailures WorkingLuminaires::Submit(const ProgressCallback& progress) {
    m_lists.Invalidate();
    m_replaced.clear();
    CopyUsedPictures();
    const PhotoLibrary::CachedListing listing(m_photos);
    SubmitFailures failures = m_records.Submit(Statements(), progress);
    m_photos.Sync();
    m_staged.clear();
    return failures;
}

void WorkingLuminaires::Compare(SubmitFailures& failures) {
    StoredRecords<tagLUMINAIREINFO> file = RecordsInFile(m_loadedCategory);
    CompareFactors(failures);
    m_records.Compare(file, IsEmptyLuminaire, failures);
}

// A luminaire that has got other categories has left what was loaded.
StoredRecords<tagLUMINAIREINFO> WorkingLuminaires::RecordsInFile(const std::optional<CString>& slice) {
    return {[](const tagLUMINAIREINFO& record) { return record.LamphouseTypeID; },
            [this](const CString& categoryText, std::vector<tagLUMINAIREINFO>& records) {
                return m_database.LoadLuminairesByType(categoryText, records);
            },
            slice};
}

// Factors that the file does not hold are written again by the next submit.
void WorkingLuminaires::CompareFactors(SubmitFailures& failures) {
    for (auto& [id, written] : std::exchange(m_replaced, {})) {
        const tagLUMINAIREINFO* record = m_records.Find(id);
        std::optional<Factors> stored = FactorsInFile(id);
        if (record != nullptr && !(stored && AreSameInFile(*stored, written))) {
            m_records.NoteComparison(id, stored ? std::optional(Unwritten::PartDifferent) : std::nullopt,
                                     record, failures);
            if (stored) {
                m_unsaved[id] = {record->LampPhoto, {}, PastedFactors{written, std::move(stored)}};
            }
        }
    }
}

WorkingLuminaires::Saved WorkingLuminaires::Save(int id) {
    m_lists.Invalidate();
    m_replaced.clear();
    CopyUsedPictures();
    if (const tagLUMINAIREINFO& record = *m_records.Find(id); IsToBeCopied(record)) {
        CopyPhoto(record);
    }
    SubmitScope scope(m_database);  // pasted factors are many statements
    const bool isChanged = m_records.IsChanged(id);
    Saved saved = m_records.SubmitOne(id, Statements());
    m_photos.Sync();
    m_staged.clear();
    if (!scope.Finish() && isChanged && saved.written) {
        saved.failures.Add({.cause = m_database.LastFailure()}, m_records.RowOf(saved.id));
    }
    if (isChanged && saved.failures.None()) {
        const tagLUMINAIREINFO record = *m_records.Find(saved.id);
        StoredRecords<tagLUMINAIREINFO> file = RecordsInFile({});
        CompareFactors(saved.failures);
        m_records.CompareOne(record, file, saved.failures);
    }
    saved.written = saved.failures.None();
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
// pictures are therefore copied before any of them is replaced. A picture that could not be copied would be
// lost, so all of them then stay where they are.
void WorkingLuminaires::CopyUsedPictures() {
    m_isLibraryKept = false;
    m_records.ForEach([this](const tagLUMINAIREINFO& record) {
        if (IsLeftAlone(record) || !PictureOf(record).file.isEmpty()) {
            return;
        }
        PhotoLibrary::PictureCopy copy = m_photos.CopyPicture(record.ID, record.LampPhoto);
        m_isLibraryKept = m_isLibraryKept || copy.isFailed;
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
        m_photoProblem = PhotoProblem::None;
        return false;
    }
    if (auto unsaved = m_unsaved.extract(provisionalId)) {
        unsaved.key() = record.ID;
        m_unsaved.insert(std::move(unsaved));
    }
    if (auto staged = m_staged.extract(provisionalId)) {
        staged.key() = record.ID;
        m_staged.insert(std::move(staged));
    }
    m_storedPhotos.insert(record.ID, m_storedPhotos.take(provisionalId));
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
    std::optional<PastedFactors>& pasted = unsaved->second.pasted;
    if (pasted && !ReplaceFactors(record.ID, pasted->factors)) {
        pasted->inFile = FactorsInFile(record.ID);  // a part may have been replaced
        unsaved->second.picture = {};
        return false;
    }
    m_unsaved.erase(unsaved);
    return true;
}

bool WorkingLuminaires::IsLeftAlone(const tagLUMINAIREINFO& record) const {
    const auto stored = m_storedPhotos.find(record.ID);
    return stored != m_storedPhotos.end() && *stored == record.LampPhoto && !record.LampPhoto.isEmpty() &&
           PictureOf(record).file.isEmpty() && !m_photos.IsOwn(record.ID, record.LampPhoto);
}

bool WorkingLuminaires::IsToBeCopied(const tagLUMINAIREINFO& record) const {
    return !record.LampPhoto.isEmpty() && !IsLeftAlone(record) && !m_isLibraryKept &&
           !m_photos.IsOwn(record.ID, record.LampPhoto);
}

// A record whose photo cannot be stored is written with the photo that it has in the file, and counts as
// unwritten. It keeps the photo that the user has chosen, for the next submit.
bool WorkingLuminaires::WriteWithPhoto(tagLUMINAIREINFO& record) {
    m_photoProblem = PhotoProblem::None;
    if (IsLeftAlone(record)) {
        return m_database.UpdateLuminaire(record);
    }
    CString chosen = record.LampPhoto;
    const CString copied = PictureOf(record).file;
    PhotoLibrary::PreparedPhoto prepared;
    if (m_isLibraryKept && !m_photos.IsOwn(record.ID, chosen)) {
        prepared = {.photo = m_storedPhotos.value(record.ID),
                    .copy = nullptr,
                    .fallback = {},
                    .problem = PhotoProblem::NoTemporaryCopy};
    } else {
        const auto staged = m_staged.find(record.ID);
        prepared = m_photos.Prepare(record.ID, copied.isEmpty() ? chosen : copied,
                                    staged == m_staged.end() ? nullptr : staged->second);
    }
    record.LampPhoto = prepared.photo;
    bool written = m_database.UpdateLuminaire(record);
    if (written && prepared.problem == PhotoProblem::None && !m_photos.Commit(record.ID, prepared)) {
        prepared.problem = m_photos.WriteProblem();
        record.LampPhoto = prepared.fallback;
        written = m_database.UpdateLuminaire(record);
    }
    if (written) {
        m_storedPhotos.insert(record.ID, record.LampPhoto);
    }
    if (written && prepared.problem != PhotoProblem::None) {
        m_photoProblem = prepared.problem;
        written = false;
    }
    if (!written) {
        record.LampPhoto = std::move(chosen);  // the next submit tries again
    }
    return written;
}

bool WorkingLuminaires::Delete(int id) {
    m_photoProblem = m_isLibraryKept ? PhotoProblem::NoTemporaryCopy : PhotoProblem::None;
    if (m_isLibraryKept || !m_database.DeleteLuminaire(id)) {
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
    Factors written = factors;
    for (tagLUMINAIREUTILIZATIONFACTOR& factor : written) {
        factor.LuminaireID = luminaireId;
        complete = m_database.InsertUtilizationFactor(factor) && complete;
    }
    if (complete) {
        m_replaced[luminaireId] = std::move(written);
    }
    return complete;
}

// ---- Copy and paste

bool WorkingLuminaires::Copy(const tagLUMINAIREINFO& luminaire) {
    m_copied = {.luminaire = luminaire,
                .picture = PictureOf(luminaire),
                .factors = {},
                .isForeignPhoto = IsLeftAlone(luminaire) && !m_photos.Holds(luminaire.LampPhoto)};
    if (m_copied.picture.file.isEmpty()) {
        m_copied.picture = m_photos.CopyPicture(0, luminaire.LampPhoto);
    }
    const auto unsaved = m_unsaved.find(luminaire.ID);
    if (unsaved != m_unsaved.end() && unsaved->second.pasted) {
        m_copied.factors = unsaved->second.pasted->factors;
        return true;
    }
    if (!m_database.LoadUtilizationFactors(luminaire.ID, m_copied.factors)) {
        m_copied = {.luminaire = EmptyLuminaire(), .picture = {}, .factors = {}, .isForeignPhoto = false};
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
    if (m_copied.isForeignPhoto) {
        m_storedPhotos.insert(id, luminaire.LampPhoto);
    }
    m_records.NoteChange(id);
    m_unsaved[id] = {luminaire.LampPhoto, m_copied.picture,
                     PastedFactors{m_copied.factors, FactorsInFile(id)}};
    Saved saved = Save(id);
    m_records.SetModified(!saved.written || wasModified);
    return saved;
}

// ---- What outlives the run

std::optional<WorkingLuminaires::Factors> WorkingLuminaires::FactorsInFile(int id) {
    Factors factors;
    const bool isRead = id <= 0 || m_database.LoadUtilizationFactors(id, factors);
    return isRead ? std::optional(std::move(factors)) : std::nullopt;
}

std::map<int, WorkingLuminaires::PastedFactors> WorkingLuminaires::PendingFactors() const {
    std::map<int, PastedFactors> pending;
    for (const auto& [id, unsaved] : m_unsaved) {
        if (unsaved.pasted) {
            pending.emplace(id, *unsaved.pasted);
        }
    }
    return pending;
}

bool WorkingLuminaires::PasteFactorsAgain(int id, PastedFactors pasted) {
    const std::optional<Factors> present = FactorsInFile(id);
    if (present && AreSameTable(*present, pasted.factors)) {
        return true;
    }
    if (!present || !pasted.inFile || !AreSameInFile(*present, *pasted.inFile)) {
        return false;
    }
    m_unsaved[id].pasted = std::move(pasted);
    m_records.NoteChange(id);
    m_records.SetModified();
    return true;
}

std::vector<int> WorkingLuminaires::LeftAlonePhotos() const {
    std::vector<int> ids;
    m_records.ForEach([&](const tagLUMINAIREINFO& record) {
        if (m_records.IsChanged(record.ID) && IsLeftAlone(record)) {
            ids.push_back(record.ID);
        }
    });
    return ids;
}

void WorkingLuminaires::LeavePhotoAlone(int id) {
    if (const tagLUMINAIREINFO* record = m_records.Find(id); record != nullptr) {
        m_storedPhotos.insert(id, record->LampPhoto);
    }
}

}  // namespace quorvane
