// A sunken frame that shows a picture file stretched over all of its area.
#pragma once

#include <QFrame>
#include <QImage>

#include "data/records.h"
#include "model/async_reader.h"

namespace quorvane {

// Why a file cannot be shown.
enum class PictureProblem { None, Gone, Unreadable, TooLarge, NoPicture, TooManyPixels, Incomplete };

struct LoadedPicture {
    QImage image = {};  // null when there is a problem
    PictureProblem problem = PictureProblem::None;
};

// What the user is told; empty for None.
CString ProblemText(PictureProblem problem);

// The picture of a file for an area of that many pixels, in its proportions. The picture may be larger or
// smaller than the area.
// The name of the file does not matter. Thread-safe.
LoadedPicture LoadPicture(const CString& file, const QSize& area);

class PicturePreview : public QFrame {
public:
    explicit PicturePreview(QWidget* parent);

    // Shows the picture once it is loaded, and nothing until then, without delaying the event loop. In the
    // place of a picture that cannot be shown stands the reason. Nothing is shown for an empty path. A later
    // call replaces an earlier one.
    void ShowFile(const CString& file);
    bool IsBlank() const { return m_picture.isNull(); }
    // The reason, or empty.
    const CString& Note() const { return m_note; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void Show(const LoadedPicture& picture);

    AsyncReader m_loading;
    int m_request = 0;  // number of the last ShowFile
    QImage m_picture;
    CString m_note;
};

}  // namespace quorvane
