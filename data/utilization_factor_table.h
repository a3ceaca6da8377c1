// UtilizationFactorTable: the utilization factors of one luminaire as a matrix, with one column a reflectance
// triple and one row a room ratio (room cavity ratio or room index).
//
// Nothing reaches the database before Submit. Triples and room ratios are unique; reals are compared exactly.
// After every operation but GetFactor, headings are sorted by Pcc, Pw, Pf descending, row values ascending,
// and factors by the column and then the row that they belong to, so that in a table without gaps the factor
// of row r and column c is Factors()[c * RowValues().size() + r]. An index outside the table is a
// std::invalid_argument, thrown before anything has changed.
//
// The file may hold what the matrix has no place for: a second row for a cell (the one with the highest ID is
// the cell's), or after Reload a row of a heading or room ratio that the table does not have. Such surplus
// rows are no part of Factors(). They go along when their heading or row value is changed or deleted, and
// Submit writes the value of the cell into all rows of that cell, so that whoever reads the file finds what
// was shown here.
#pragma once

#include <QHash>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "data/records.h"
#include "data/stored_records.h"

namespace quorvane {

class CLightingDatabase;

// A column of the matrix: the reflectances of ceiling cavity, walls and floor cavity, in percent.
struct tagColHeading {
    int Pcc = 0;
    int Pw = 0;
    int Pf = 0;

    bool operator==(const tagColHeading&) const = default;
};

class UtilizationFactorTable {
public:
    using MessageCallback = std::function<void(const CString&)>;
    using ProgressCallback = std::function<void(int done, int total)>;

    // In a grid, the rows and columns before the first factor.
    static constexpr int kHeadingRows = 4;
    static constexpr int kHeadingColumns = 1;

    // An empty table of no luminaire. showMessage tells the user; the database must outlive the table. A copy
    // has its own matrix and pending deletions, and shares database and callback.
    UtilizationFactorTable(CLightingDatabase& database, MessageCallback showMessage);

    int LuminaireID() const { return m_luminaireID; }
    const std::vector<tagLUMINAIREUTILIZATIONFACTOR>& Factors() const { return m_factors; }
    const std::vector<tagColHeading>& Headings() const { return m_headings; }
    const std::vector<double>& RowValues() const { return m_rowValues; }
    // The IDs of rows removed since the last submit; 0 stands for one that had never been stored.
    const std::vector<int>& DeletedIds() const { return m_deletedIds; }

    // Replaces the whole table by what the file holds for the luminaire. Always true; see IsWhole.
    bool Load(int luminaireID);
    // Reads the factors anew for the same headings and row values. Deletions not yet submitted stay pending.
    // False when not all rows could be read.
    bool Reload();
    // What makes up the table, to be kept and put back. SetContents is for a table loaded since: false, and
    // nothing changes, when the contents are none of this luminaire, or name rows that the file has not.
    struct Contents {
        std::vector<tagLUMINAIREUTILIZATIONFACTOR> factors;
        std::vector<tagLUMINAIREUTILIZATIONFACTOR> surplus;
        std::vector<tagColHeading> headings;
        std::vector<double> rowValues;
        std::vector<int> deletedIds;
    };
    Contents GetContents() const;
    bool SetContents(const Contents& contents);

    // False when the last load could not read all rows. Submitting then writes rows beside the unread ones.
    bool IsWhole() const { return m_whole; }

    // The factor shown in a grid whose first four rows and first column are headings. A factor missing at its
    // place is told once as "(Pcc,Pw,Pf,RCR)数据不存在" and created there as 0. To be read column by column
    // as long as there may be gaps, because a gap moves the factors behind it out of their places.
    double GetFactor(int gridRow, int gridColumn);
    // Stores a value into the same cell; does nothing while its factor is missing at its place.
    void SetFactor(int gridRow, int gridColumn, double value);
    // The factor of that heading and room ratio; nothing when there is none.
    std::optional<double> FactorOf(const tagColHeading& heading, double rcr) const;
    // Sets every factor to 0.
    void ClearFactors();

    // True when the table changed. A triple or room ratio that another column or row has is refused with
    // "数据已存在"; changing one into itself is false without a message. New factors are 0.
    bool AddHeading(int Pcc, int Pw, int Pf);
    bool AddRow(double rcr);
    bool ModifyHeading(int column, int Pcc, int Pw, int Pf);
    bool ModifyRow(int row, double rcr);
    bool DeleteHeading(int column);
    bool DeleteRow(int row);

    // Inserts new factors, updates stored ones, then deletes removed ones, and compares all factors with
    // what the file then holds. Calls progress after each statement with the rows done and all rows. Always
    // true; see UnwrittenCount and DifferentCount.
    bool Submit(const ProgressCallback& progress = {});
    // The statements of the last submit that failed, but for updates of factors that the file holds as they
    // are; or all statements when the disk did not confirm the submit. The next submit tries all of them
    // again.
    int UnwrittenCount() const { return m_unwrittenCount; }
    // The factors that are not in the file as they stand here, although the last submit wrote them.
    int DifferentCount() const { return m_differentCount; }
    // The factors of which that could not be found out.
    int UnreadCount() const { return m_unreadCount; }
    // Why the first of these statements failed.
    const ProviderFailure& FirstFailure() const { return m_firstFailure; }
    // Whether and why a factor of that row value is not in the file after the last submit.
    UnwrittenReason WhyUnwritten(double rowValue) const {
        const auto found = m_unwrittenRows.find(rowValue);
        return found == m_unwrittenRows.end() ? UnwrittenReason() : found->second;
    }

private:
    using Factor = tagLUMINAIREUTILIZATIONFACTOR;
    using CountCallback = std::function<void(bool written)>;

    struct Cell {
        tagColHeading heading;
        double rowValue;
        std::size_t index;  // where Factors() holds it in a table without gaps
    };

    Cell CellAt(int gridRow, int gridColumn) const;
    bool IsInPlace(const Cell& cell) const;
    Factor NewFactor(const tagColHeading& heading, double rcr) const;
    void Sort();
    void RebuildHeadings();
    void RebuildRowValues();
    void SetSurplusAside();
    // Tells the user that the heading or row exists; returns exists.
    bool RefuseDuplicate(bool exists) const;
    template <typename Predicate, typename Change>
    void ChangeFactors(const Predicate& predicate, const Change& change);
    template <typename Predicate>
    void RemoveFactors(const Predicate& predicate, bool recordUnstored);
    // Inserts or updates the factor. True also when the file holds it as it is.
    bool Write(Factor& factor);
    void NoteFactorsInFile();
    void WriteFactors(const CountCallback& count);
    void WriteSurplus(const CountCallback& count);
    void WriteDeletions(const CountCallback& count);
    void CompareWithFile();

    CLightingDatabase* m_database;
    MessageCallback m_showMessage;
    int m_luminaireID = 0;
    std::vector<Factor> m_factors;
    std::vector<tagColHeading> m_headings;
    std::vector<double> m_rowValues;
    std::vector<int> m_deletedIds;
    std::vector<Factor> m_surplus;
    std::vector<int> m_failedDeletions;
    int m_unwrittenCount = 0;
    ProviderFailure m_firstFailure;
    QHash<int, Factor> m_inFile;  // by ID: as they were read or written last
    int m_differentCount = 0;
    int m_unreadCount = 0;
    std::map<double, UnwrittenReason> m_unwrittenRows;
    bool m_whole = true;
};

}  // namespace quorvane
