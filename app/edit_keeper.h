// EditKeeper: keeps the unsubmitted edits of all pages beside the user's settings while the program runs, and
// offers them again after a run that did not end as it should. Tells the user when they cannot be kept.
#pragma once

#include <QTimer>
#include <vector>

#include "editors/page.h"
#include "model/kept/kept_edits_file.h"

namespace quorvane {

class EditKeeper : public QObject {
public:
    // The pages and the window, the parent of every question, outlive the object. database: the path of the
    // database file.
    EditKeeper(std::vector<CPage*> pages, const CString& database, QWidget& window);

    // Asks whether edits of an earlier run are to be made again, if there are any, and keeps edits from then
    // on.
    void Start();
    // Leaves nothing behind: the run ends as it should.
    void Finish();

private:
    void MakeEditsAgain(const QCborMap& kept);
    void Look();
    void Keep();
    void TellOf(const CString& failure);
    int EditCount() const;

    std::vector<CPage*> m_pages;
    QWidget& m_window;
    KeptEditsFile m_file;
    QTimer m_timer{this};
    bool m_isDue = false;   // the edits have changed since they were kept
    bool m_isKept = false;  // the file may exist
    int m_failures = 0;     // since edits could last be kept
    bool m_isToldOf = false;
    bool m_isStarted = false;
};

}  // namespace quorvane
