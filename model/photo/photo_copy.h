// Copies of picture files.
#pragma once

#include <memory>

#include "data/records.h"

namespace quorvane {

// Why a picture could not be put into the library.
enum class PhotoProblem {
    None,
    UnreadableSource,
    LinkedLibrary,
    UnwritableLibrary,
    NoTemporaryCopy  // of a picture that changes hands
};

// The largest file that is copied, in bytes.
inline constexpr qint64 kLargestPhoto = 64LL << 20;

// A file that is deleted with the object, unless it is kept.
class PhotoCopy {
public:
    explicit PhotoCopy(CString file, PhotoProblem problem = PhotoProblem::None);
    ~PhotoCopy();
    PhotoCopy(const PhotoCopy&) = delete;
    PhotoCopy& operator=(const PhotoCopy&) = delete;

    // Why there is no file.
    PhotoProblem Problem() const { return m_problem; }
    // Renames the file, in the place of any other of that name. A link of that name is replaced, not
    // followed. False when that failed.
    bool MoveTo(const CString& path);
    // The file outlives the object.
    void Keep() { m_file.clear(); }

private:
    CString m_file;  // empty: none, or kept
    PhotoProblem m_problem;
};

using StagedPicture = std::shared_ptr<PhotoCopy>;

// Copies a regular file of at most 64 MB, and waits for the disk. Thread-safe. It takes as long as the drives
// do.
StagedPicture CopyPhoto(const CString& source, const CString& target);

bool IsLink(const CString& path);

}  // namespace quorvane
