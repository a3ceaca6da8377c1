// EditHistory: the steps by which something was changed, so that they can be undone and done again.
//
// A step is what the user did at once: a cell that was typed, or a paste into many. A change is anything
// that its owner can reverse: undoing a change turns it into the change that redoes it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <deque>
#include <utility>
#include <vector>

#include "data/records.h"

namespace quorvane {

template <typename Change>
class EditHistory {
public:
    struct Step {
        CString name;              // what the user did: "粘贴 12 格"
        bool wasModified = false;  // whether there was something to submit before the step
        bool isModified = false;   // and after it
        std::vector<Change> changes = {};
    };

    // The oldest steps are dropped as soon as all steps together hold more changes than mostChanges.
    explicit EditHistory(std::size_t mostChanges) : m_mostChanges(mostChanges) {}

    // Everything between Begin and End is one step. A step inside another one is part of it.
    void Begin(const CString& name, bool isModified) {
        if (m_depth++ == 0) {
            m_open = {.name = name, .wasModified = isModified};
        }
    }
    // Renames the open step, for a caller that learns only at its end what the step came to.
    void Rename(const CString& name) {
        if (m_depth == 1) {
            m_open.name = name;
        }
    }
    // Ends a step. True when it was the outermost one. A step without changes is dropped; any other step
    // clears the steps that could be redone.
    bool End(bool isModified) {
        if (--m_depth > 0) {
            return false;
        }
        if (m_open.changes.empty()) {
            return true;
        }
        m_open.isModified = isModified;
        m_changeCount += m_open.changes.size();
        m_undone.clear();
        m_done.push_back(std::exchange(m_open, {}));
        while (m_changeCount > m_mostChanges && m_done.size() > 1) {
            m_changeCount -= m_done.front().changes.size();
            m_done.pop_front();
        }
        return true;
    }
    // Adds a change to the open step.
    void Add(Change change) { m_open.changes.push_back(std::move(change)); }
    bool HasAdded() const { return !m_open.changes.empty(); }

    // The step that would be undone or done again next, or null.
    const Step* NextUndo() const { return m_depth > 0 || m_done.empty() ? nullptr : &m_done.back(); }
    const Step* NextRedo() const { return m_depth > 0 || m_undone.empty() ? nullptr : &m_undone.back(); }
    // Their names, or null.
    const CString* UndoName() const { return NextUndo() == nullptr ? nullptr : &NextUndo()->name; }
    const CString* RedoName() const { return NextRedo() == nullptr ? nullptr : &NextRedo()->name; }
    // Moves the step, which must exist, to the other list. The caller then reverses its changes: from the
    // last to the first for an undo, from the first to the last for a redo.
    Step& TakeUndo() {
        m_changeCount -= m_done.back().changes.size();
        m_undone.push_back(std::move(m_done.back()));
        m_done.pop_back();
        return m_undone.back();
    }
    Step& TakeRedo() {
        m_changeCount += m_undone.back().changes.size();
        m_done.push_back(std::move(m_undone.back()));
        m_undone.pop_back();
        return m_done.back();
    }

    // Drops all steps. An open step stays open and loses its changes.
    void Clear() {
        m_done.clear();
        m_undone.clear();
        m_open.changes.clear();
        m_changeCount = 0;
    }
    // Drops the changes for which predicate is true, and each step that lost changes and has none left for
    // which counts is true.
    template <typename Predicate, typename Counts>
    void Forget(const Predicate& predicate, const Counts& counts) {
        const auto thin = [&](std::deque<Step>& steps) {
            std::erase_if(steps, [&](Step& step) {
                const bool thinned = std::erase_if(step.changes, predicate) > 0;
                return thinned && std::none_of(step.changes.begin(), step.changes.end(), counts);
            });
        };
        thin(m_done);
        thin(m_undone);
        std::erase_if(m_open.changes, predicate);
        m_changeCount = 0;
        for (const Step& step : m_done) {
            m_changeCount += step.changes.size();
        }
    }

private:
    std::size_t m_mostChanges;
    std::size_t m_changeCount = 0;  // in m_done
    std::deque<Step> m_done;
    std::deque<Step> m_undone;  // the last one comes again first
    Step m_open;
    int m_depth = 0;  // of steps inside steps
};

// One step of whatever has BeginStep and EndStep, for as long as the object lives.
template <typename Target>
class StepScope {
public:
    StepScope(Target& target, const CString& name) : m_target(target) { m_target.BeginStep(name); }
    ~StepScope() { m_target.EndStep(); }
    StepScope(const StepScope&) = delete;
    StepScope& operator=(const StepScope&) = delete;

private:
    Target& m_target;
};

}  // namespace quorvane
