// GridFinder: finding and replacing in a grid. Adds 查找…, 替换… and their keys to the context menu, and a
// line to the bar at the foot, and highlights what is found.
#pragma once

#include <QObject>
#include <functional>
#include <vector>

#include "grid/grid_types.h"
#include "model/view/text_matcher.h"

class QAction;
class QLabel;
class QLineEdit;

namespace quorvane {

class CGridCtrl;
class GridFoot;

struct FindTarget {
    // The cells whose texts match, by rows and then by columns.
    std::function<std::vector<CCellID>(const TextMatcher&)> find;
    // Whether one cell does; for the cells that are seen.
    std::function<bool(CCellID, const TextMatcher&)> matches;
    // Replaces what was found in these cells, and tells of those that do not take their new text. None: the
    // grid offers no replacing.
    std::function<void(const std::vector<CCellID>&, const TextMatcher&, const CString& replacement)> replace =
        {};
};

class GridFinder : public QObject {
public:
    // Becomes a child of the grid.
    GridFinder(CGridCtrl& grid, GridFoot& foot, FindTarget target);

    // To be called when other rows or other texts are shown.
    void NoteChange();

protected:
    // The keys of the fields.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class From { Here, Next, Previous };

    void AddActions();
    void AddAction(const CString& text, const QKeySequence& key, const std::function<void()>& run);
    void MakeLines();
    void Open(bool replaces);
    void Close();
    void Seek(const CString& sought);
    void Search();
    void GoTo(From from);
    void ReplaceHere();
    void ReplaceAll();
    void ShowCount();

    CGridCtrl& m_grid;
    GridFoot& m_foot;
    FindTarget m_target;
    QWidget* m_findLine = nullptr;  // the widgets are children of the foot
    QWidget* m_replaceLine = nullptr;
    QLineEdit* m_sought = nullptr;
    QLineEdit* m_replacement = nullptr;
    QLabel* m_count = nullptr;
    TextMatcher m_matcher;
    std::vector<CCellID> m_found;
    bool m_isStale = false;  // m_found was searched in texts that have changed since
};

}  // namespace quorvane
