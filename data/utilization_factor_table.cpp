#include "data/utilization_factor_table.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "data/lighting_database.h"
#include "data/text_format.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

using Factor = tagLUMINAIREUTILIZATIONFACTOR;

tagColHeading HeadingOf(const Factor& factor) {
    return {factor.Pcc, factor.Pw, factor.Pf};
}

void SetHeading(Factor& factor, const tagColHeading& heading) {
    factor.Pcc = heading.Pcc;
    factor.Pw = heading.Pw;
    factor.Pf = heading.Pf;
}

bool HeadingBefore(const tagColHeading& left, const tagColHeading& right) {
    return std::tie(left.Pcc, left.Pw, left.Pf) > std::tie(right.Pcc, right.Pw, right.Pf);
}

bool FactorBefore(const Factor& left, const Factor& right) {
    return std::tie(left.Pcc, left.Pw, left.Pf, right.RCR_RI) >
           std::tie(right.Pcc, right.Pw, right.Pf, left.RCR_RI);
}

// Of several rows for a cell the newest comes first: it is what somebody meant last. One not yet stored is
// newer than all others.
bool NewerFirst(const Factor& left, const Factor& right) {
    if (FactorBefore(left, right) || FactorBefore(right, left)) {
        return FactorBefore(left, right);
    }
    return right.ID != 0 && (left.ID == 0 || left.ID > right.ID);
}

bool SameCell(const Factor& left, const Factor& right) {
    return HeadingOf(left) == HeadingOf(right) && left.RCR_RI == right.RCR_RI;
}

template <typename Value>
bool Contains(const std::vector<Value>& values, const Value& value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

std::size_t CheckedIndex(qint64 index, std::size_t count) {
    if (index < 0 || static_cast<std::size_t>(index) >= count) {
        throw std::invalid_argument("the utilization factor table has no such row or column");
    }
    return static_cast<std::size_t>(index);
}

}  // namespace

UtilizationFactorTable::UtilizationFactorTable(CLightingDatabase& database, MessageCallback showMessage)
    : m_database(&database), m_showMessage(std::move(showMessage)) {}

bool UtilizationFactorTable::Load(int luminaireID) {
    m_luminaireID = luminaireID;
    m_factors.clear();
    m_surplus.clear();
    m_deletedIds.clear();
    m_failedDeletions.clear();
    m_whole = m_database->LoadUtilizationFactors(luminaireID, m_factors);
    NoteFactorsInFile();
    Sort();
    RebuildHeadings();
    RebuildRowValues();
    SetSurplusAside();
    return true;
}

bool UtilizationFactorTable::Reload() {
    // Without a connection the load leaves its array alone; nothing may be lost then.
    m_factors.insert(m_factors.end(), m_surplus.begin(), m_surplus.end());
    m_surplus.clear();
    m_whole = m_database->LoadUtilizationFactors(m_luminaireID, m_factors);
    if (m_whole) {
        NoteFactorsInFile();
    }
    std::vector<int> removed = m_deletedIds;
    removed.insert(removed.end(), m_failedDeletions.begin(), m_failedDeletions.end());
    std::sort(removed.begin(), removed.end());
    std::erase_if(m_factors, [&](const Factor& factor) {
        return factor.ID != 0 && std::binary_search(removed.begin(), removed.end(), factor.ID);
    });
    Sort();
    SetSurplusAside();
    return m_whole;
}

UtilizationFactorTable::Contents UtilizationFactorTable::GetContents() const {
    Contents contents{m_factors, m_surplus, m_headings, m_rowValues, m_deletedIds};
    contents.deletedIds.insert(contents.deletedIds.end(), m_failedDeletions.begin(), m_failedDeletions.end());
    return contents;
}

bool UtilizationFactorTable::SetContents(const Contents& contents) {
    std::multiset<int> stored;  // of which each row is taken once
    for (const std::vector<Factor>* factors : {&m_factors, &m_surplus}) {
        for (const Factor& factor : *factors) {
            stored.insert(factor.ID);
        }
    }
    const auto take = [&stored](int id) {
        const auto found = stored.find(id);
        const bool isKnown = id == 0 || found != stored.end();
        if (id != 0 && isKnown) {
            stored.erase(found);
        }
        return isKnown;
    };
    const auto isOwn = [&](const Factor& factor) {
        return factor.LuminaireID == m_luminaireID && take(factor.ID);
    };
    if (!std::all_of(contents.factors.begin(), contents.factors.end(), isOwn) ||
        !std::all_of(contents.surplus.begin(), contents.surplus.end(), isOwn) ||
        !std::all_of(contents.deletedIds.begin(), contents.deletedIds.end(), take)) {
        return false;
    }
    m_factors = contents.factors;
    m_factors.insert(m_factors.end(), contents.surplus.begin(), contents.surplus.end());
    m_surplus.clear();
    m_headings = contents.headings;
    m_rowValues = contents.rowValues;
    m_deletedIds = contents.deletedIds;
    Sort();
    m_headings.erase(std::unique(m_headings.begin(), m_headings.end()), m_headings.end());
    m_rowValues.erase(std::unique(m_rowValues.begin(), m_rowValues.end()), m_rowValues.end());
    SetSurplusAside();
    return true;
}

double UtilizationFactorTable::GetFactor(int gridRow, int gridColumn) {
    const Cell cell = CellAt(gridRow, gridColumn);
    if (IsInPlace(cell)) {
        return m_factors[cell.index].UtilizationFactor;
    }
    const auto& [Pcc, Pw, Pf] = cell.heading;
    m_showMessage(FormatText(u"(%d,%d,%d,%G)数据不存在", {Pcc, Pw, Pf, cell.rowValue}));
    const auto place = std::min(cell.index, m_factors.size());
    m_factors.insert(m_factors.begin() + static_cast<std::ptrdiff_t>(place),
                     NewFactor(cell.heading, cell.rowValue));
    return 0.0;
}

void UtilizationFactorTable::SetFactor(int gridRow, int gridColumn, double value) {
    const Cell cell = CellAt(gridRow, gridColumn);
    if (IsInPlace(cell)) {
        m_factors[cell.index].UtilizationFactor = value;
    }
}

std::optional<double> UtilizationFactorTable::FactorOf(const tagColHeading& heading, double rcr) const {
    const Factor sought = NewFactor(heading, rcr);
    const auto found = std::lower_bound(m_factors.begin(), m_factors.end(), sought, FactorBefore);
    const bool isFound = found != m_factors.end() && SameCell(*found, sought);
    return isFound ? std::optional(found->UtilizationFactor) : std::nullopt;
}

void UtilizationFactorTable::ClearFactors() {
    for (Factor& factor : m_factors) {
        factor.UtilizationFactor = 0.0;
    }
}

bool UtilizationFactorTable::AddHeading(int Pcc, int Pw, int Pf) {
    const tagColHeading heading{Pcc, Pw, Pf};
    if (RefuseDuplicate(Contains(m_headings, heading))) {
        return false;
    }
    for (const double rcr : m_rowValues) {
        m_factors.push_back(NewFactor(heading, rcr));
    }
    m_headings.push_back(heading);
    Sort();
    return true;
}

bool UtilizationFactorTable::AddRow(double rcr) {
    if (RefuseDuplicate(Contains(m_rowValues, rcr))) {
        return false;
    }
    for (const tagColHeading& heading : m_headings) {
        m_factors.push_back(NewFactor(heading, rcr));
    }
    m_rowValues.push_back(rcr);
    Sort();
    return true;
}

bool UtilizationFactorTable::ModifyHeading(int column, int Pcc, int Pw, int Pf) {
    tagColHeading& present = m_headings[CheckedIndex(column, m_headings.size())];
    const tagColHeading heading{Pcc, Pw, Pf};
    if (heading == present || RefuseDuplicate(Contains(m_headings, heading))) {
        return false;
    }
    ChangeFactors([&](const Factor& factor) { return HeadingOf(factor) == present; },
                  [&](Factor& factor) { SetHeading(factor, heading); });
    present = heading;
    Sort();
    return true;
}

bool UtilizationFactorTable::ModifyRow(int row, double rcr) {
    double& present = m_rowValues[CheckedIndex(row, m_rowValues.size())];
    if (rcr == present || RefuseDuplicate(Contains(m_rowValues, rcr))) {
        return false;
    }
    ChangeFactors([&](const Factor& factor) { return factor.RCR_RI == present; },
                  [&](Factor& factor) { factor.RCR_RI = rcr; });
    present = rcr;
    Sort();
    return true;
}

bool UtilizationFactorTable::DeleteHeading(int column) {
    const std::size_t index = CheckedIndex(column, m_headings.size());
    const tagColHeading heading = m_headings[index];
    m_headings.erase(m_headings.begin() + static_cast<std::ptrdiff_t>(index));
    RemoveFactors([&](const Factor& factor) { return HeadingOf(factor) == heading; }, false);
    Sort();
    return true;
}

bool UtilizationFactorTable::DeleteRow(int row) {
    const std::size_t index = CheckedIndex(row, m_rowValues.size());
    const double rcr = m_rowValues[index];
    m_rowValues.erase(m_rowValues.begin() + static_cast<std::ptrdiff_t>(index));
    RemoveFactors([&](const Factor& factor) { return factor.RCR_RI == rcr; }, true);
    Sort();
    return true;
}

bool UtilizationFactorTable::Submit(const ProgressCallback& progress) {
    SubmitScope submit(*m_database);
    const std::size_t total =
        m_factors.size() + m_surplus.size() + m_deletedIds.size() + m_failedDeletions.size();
    int done = 0;
    m_unwrittenCount = 0;
    const auto count = [&](bool written) {
        if (!written && ++m_unwrittenCount == 1) {
            m_firstFailure = m_database->LastFailure();
        }
        ++done;
        if (progress) {
            progress(done, static_cast<int>(total));
        }
    };
    WriteFactors(count);
    WriteSurplus(count);
    WriteDeletions(count);
    if (!submit.Finish()) {
        m_firstFailure = m_unwrittenCount == 0 ? m_database->LastFailure() : m_firstFailure;
        m_unwrittenCount = done;
    }
    CompareWithFile();
    return true;
}

UtilizationFactorTable::Cell UtilizationFactorTable::CellAt(int gridRow, int gridColumn) const {
    const std::size_t row = CheckedIndex(qint64{gridRow} - kHeadingRows, m_rowValues.size());
    const std::size_t column = CheckedIndex(qint64{gridColumn} - kHeadingColumns, m_headings.size());
    return {m_headings[column], m_rowValues[row], column * m_rowValues.size() + row};
}

bool UtilizationFactorTable::IsInPlace(const Cell& cell) const {
    return cell.index < m_factors.size() && HeadingOf(m_factors[cell.index]) == cell.heading &&
           m_factors[cell.index].RCR_RI == cell.rowValue;
}

Factor UtilizationFactorTable::NewFactor(const tagColHeading& heading, double rcr) const {
    return {
        .LuminaireID = m_luminaireID, .Pcc = heading.Pcc, .Pw = heading.Pw, .Pf = heading.Pf, .RCR_RI = rcr};
}

void UtilizationFactorTable::Sort() {
    std::sort(m_factors.begin(), m_factors.end(), NewerFirst);
    std::sort(m_headings.begin(), m_headings.end(), HeadingBefore);
    std::sort(m_rowValues.begin(), m_rowValues.end());
}

// The factors are sorted, so that equal headings stand together and in order.
void UtilizationFactorTable::RebuildHeadings() {
    m_headings.clear();
    for (const Factor& factor : m_factors) {
        if (m_headings.empty() || m_headings.back() != HeadingOf(factor)) {
            m_headings.push_back(HeadingOf(factor));
        }
    }
}

void UtilizationFactorTable::RebuildRowValues() {
    m_rowValues.clear();
    for (const Factor& factor : m_factors) {
        m_rowValues.push_back(factor.RCR_RI);
    }
    std::sort(m_rowValues.begin(), m_rowValues.end());
    m_rowValues.erase(std::unique(m_rowValues.begin(), m_rowValues.end()), m_rowValues.end());
}

// One factor too many among the sorted ones would show every cell behind it as missing.
void UtilizationFactorTable::SetSurplusAside() {
    std::vector<Factor> factors;
    factors.reserve(m_factors.size());
    for (const Factor& factor : m_factors) {
        const bool hasCell =
            std::binary_search(m_headings.begin(), m_headings.end(), HeadingOf(factor), HeadingBefore) &&
            std::binary_search(m_rowValues.begin(), m_rowValues.end(), factor.RCR_RI);
        const bool isFirst = factors.empty() || !SameCell(factors.back(), factor);
        (hasCell && isFirst ? factors : m_surplus).push_back(factor);
    }
    m_factors = std::move(factors);
}

bool UtilizationFactorTable::RefuseDuplicate(bool exists) const {
    if (exists) {
        m_showMessage(u"数据已存在"_s);
    }
    return exists;
}

template <typename Predicate, typename Change>
void UtilizationFactorTable::ChangeFactors(const Predicate& predicate, const Change& change) {
    for (std::vector<Factor>* factors : {&m_factors, &m_surplus}) {
        for (Factor& factor : *factors) {
            if (predicate(factor)) {
                change(factor);
            }
        }
    }
}

template <typename Predicate>
void UtilizationFactorTable::RemoveFactors(const Predicate& predicate, bool recordUnstored) {
    ChangeFactors(predicate, [&](const Factor& factor) {
        if (recordUnstored || factor.ID != 0) {
            m_deletedIds.push_back(factor.ID);
        }
    });
    std::erase_if(m_factors, predicate);
    std::erase_if(m_surplus, predicate);
}

void UtilizationFactorTable::NoteFactorsInFile() {
    m_inFile.clear();
    for (const Factor& factor : m_factors) {
        m_inFile.insert(factor.ID, factor);
    }
}

bool UtilizationFactorTable::Write(Factor& factor) {
    const bool ran = factor.ID == 0 ? m_database->InsertUtilizationFactor(factor)
                                    : m_database->UpdateUtilizationFactor(factor);
    if (ran) {
        m_inFile.insert(factor.ID, factor);
    }
    return ran || m_inFile.value(factor.ID) == factor;
}

void UtilizationFactorTable::WriteFactors(const CountCallback& count) {
    m_unwrittenRows.clear();
    for (Factor& factor : m_factors) {
        const bool written = Write(factor);
        if (!written) {
            m_unwrittenRows[factor.RCR_RI] = {Unwritten::Failed, m_database->LastFailure()};
        }
        count(written);
    }
}

void UtilizationFactorTable::WriteSurplus(const CountCallback& count) {
    for (Factor& surplus : m_surplus) {
        const auto cell = std::lower_bound(m_factors.begin(), m_factors.end(), surplus, FactorBefore);
        if (cell != m_factors.end() && SameCell(*cell, surplus)) {
            surplus.UtilizationFactor = cell->UtilizationFactor;
        }
        count(Write(surplus));
    }
}

void UtilizationFactorTable::CompareWithFile() {
    StoredRecords<Factor> file([](const Factor&) { return CString(); },
                               [this](const CString&, std::vector<Factor>& factors) {
                                   return m_database->LoadUtilizationFactors(m_luminaireID, factors);
                               });
    m_differentCount = 0;
    m_unreadCount = 0;
    std::erase_if(m_surplus,
                  [&](const Factor& factor) { return file.Compare(factor) == Unwritten::Missing; });
    for (std::vector<Factor>* factors : {&m_factors, &m_surplus}) {
        for (Factor& factor : *factors) {
            if (WhyUnwritten(factor.RCR_RI).why == Unwritten::Failed) {
                continue;
            }
            const std::optional<Unwritten> why = file.Compare(factor);
            m_unreadCount += why ? 0 : 1;
            if (why.value_or(Unwritten::No) != Unwritten::No) {
                ++m_differentCount;
                m_unwrittenRows[factor.RCR_RI] = {*why};
            }
            if (why == Unwritten::Missing) {
                factor.ID = 0;  // the next submit inserts it
            }
        }
    }
}

// A row whose deletion failed would come back at the next load, so it is tried again at the next submit.
void UtilizationFactorTable::WriteDeletions(const CountCallback& count) {
    std::vector<int> ids = std::exchange(m_failedDeletions, {});
    ids.insert(ids.end(), m_deletedIds.begin(), m_deletedIds.end());
    m_deletedIds.clear();
    for (const int id : ids) {
        const bool deleted = m_database->DeleteUtilizationFactor(id);
        if (!deleted) {
            m_failedDeletions.push_back(id);
        }
        count(deleted);
    }
}

}  // namespace quorvane
