// CLightingDatabase: the one object through which the program reads and writes its database.
//
// One operation per statement; each statement is committed by itself. An operation returns true when its
// statement ran, and false when there is no connection, the statement failed, or a value read was NULL; it
// never throws and never shows a message. Reals are written with six significant digits. A text is written
// between single quotes as it stands, so an operation whose text holds a single quote fails and runs
// nothing; LastFailure names its column.
//
// Loads empty the target array first (but not without a connection) and keep the order that the statement
// gives. A NULL ends a load with false and keeps the records before it. A look-up takes the first row;
// without a row it returns true and leaves its cleared output (ID 0, an empty text).
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <set>
#include <vector>

#include "data/connection.h"
#include "data/records.h"
#include "data/text_format.h"

namespace quorvane {

class CLightingDatabase {
public:
    // factory makes the connection at Connect(); executablePath tells where the database lies.
    CLightingDatabase(ConnectionFactory factory, CString executablePath);

    // True when a connection exists afterwards; an open one is kept. The reason of a failure goes to
    // standard error.
    bool Connect();
    // Closes the connection. False when there was none or it could not be closed.
    bool Disconnect();

    // Why the last operation that returned false did so. An operation that succeeds leaves this alone.
    const ProviderFailure& LastFailure() const { return m_lastFailure; }

    // The whole file is checked after Connect, from the first call of IsCheckRunning on; a statement that
    // writes begins the check if need be and waits for its end. IsSound waits for it too and is false, with
    // the reason in LastFailure, when the file is damaged. Nothing is written then.
    bool IsCheckRunning() const;
    bool IsSound();
    // The path of a file that holds changes of a former run, which Connect could not bring into the database
    // because it was changed in between; empty as a rule.
    CString ChangesPutAside() const;

    // The full path of the database file, in backslash form, or empty.
    CString GetDatabasePath() const;
    // The folder above the executable's folder, without a trailing backslash.
    CString GetApplicationParentFolder() const;

    // 光源类别 (categories are only read).
    bool LoadLampTypes(std::vector<tagLAMPHOUSETYPE>& types);
    bool GetLampTypeName(int id, CString& name);
    bool FindLampTypeID(const CString& name, int& id);

    // 光源. An insert stores the new row's ID into the record; one that fails leaves the ID as it came.
    // Its row may be in the file all the same, so the same insert looks for that row when it is tried again.
    bool InsertLightSource(tagLAMPHOUSEINFO& record);
    bool UpdateLightSource(const tagLAMPHOUSEINFO& record);
    bool DeleteLightSource(int id);
    bool LoadAllLightSources(std::vector<tagLAMPHOUSEINFO>& records);
    bool LoadLightSourceFactories(std::vector<CString>& factories);
    bool LoadLightSourcesByFactory(const CString& factory, std::vector<tagLAMPHOUSEINFO>& records);
    // record.ID becomes id in any case.
    bool LoadLightSourceByID(int id, tagLAMPHOUSEINFO& record);
    bool LoadLightSourcesByType(int categoryId, std::vector<tagLAMPHOUSEINFO>& records);
    bool LoadLightSourcesByTypeName(const CString& categoryName, std::vector<tagLAMPHOUSEINFO>& records);
    bool LoadLightSourceNamesByType(int categoryId, std::vector<CString>& names);
    // Searches by whichever of name and model is not empty; false with both empty, id then untouched.
    bool FindLightSourceID(const CString& name, const CString& model, int& id);
    // The category name of that light source; false with both name and model empty.
    bool FindLightSourceTypeName(const CString& name, const CString& model, CString& typeName);

    // 灯具.
    bool InsertLuminaire(tagLUMINAIREINFO& record);
    bool UpdateLuminaire(const tagLUMINAIREINFO& record);
    // Deletes the luminaire and, when that succeeded, its utilization factors.
    bool DeleteLuminaire(int id);
    // Fails on every row: its statement does not read BallastPower. Kept as part of the interface.
    bool LoadAllLuminaires(std::vector<tagLUMINAIREINFO>& records);
    // The luminaires whose LamphouseTypeID holds categoryText anywhere.
    bool LoadLuminairesByType(const CString& categoryText, std::vector<tagLUMINAIREINFO>& records);

    // 利用系数.
    bool InsertUtilizationFactor(tagLUMINAIREUTILIZATIONFACTOR& record);
    bool UpdateUtilizationFactor(const tagLUMINAIREUTILIZATIONFACTOR& record);
    bool DeleteUtilizationFactor(int id);
    bool DeleteUtilizationFactorsOfLuminaire(int luminaireId);
    bool LoadUtilizationFactors(int luminaireId, std::vector<tagLUMINAIREUTILIZATIONFACTOR>& records);

    // 照度要求及功率密度.
    bool InsertIlluminanceStandard(tagILLUMINANCESTANDARD& record);
    bool UpdateIlluminanceStandard(const tagILLUMINANCESTANDARD& record);
    bool DeleteIlluminanceStandard(int id);
    bool LoadVocations(std::vector<CString>& vocations);
    bool LoadBuildingTypes(const CString& vocation, std::vector<CString>& buildingTypes);
    bool LoadIlluminanceStandards(const CString& vocation, const CString& buildingType,
                                  std::vector<tagILLUMINANCESTANDARD>& records);

private:
    friend class SubmitScope;

    using Arguments = std::initializer_list<TextArgument>;

    // Runs the action. Its errors end here: they are traced and kept for LastFailure.
    template <typename Action>
    bool Try(const CString& diagnostic, const Action& action);
    // Fills the statement's placeholders, runs it and gives its rows to read.
    bool Query(QStringView statement, Arguments arguments, const std::function<void(Recordset&)>& read);
    bool Execute(QStringView statement, Arguments arguments);
    bool Insert(QStringView insert, Arguments arguments, QStringView readBack, int& id);
    // readRow makes one element of the target from the present row, or reads the first row where there is
    // one.
    template <typename Element, typename ReadRow>
    bool Load(std::vector<Element>& target, QStringView statement, Arguments arguments,
              const ReadRow& readRow);
    template <typename ReadRow>
    bool ReadFirst(QStringView statement, Arguments arguments, const ReadRow& readRow);
    bool IsConnected();
    // Looks for the row of an insert that failed before. False when the file could not be searched.
    bool FindLostInsert(QStringView insert, Arguments arguments, bool& isFound, int& id);
    void BeginSubmit();
    bool EndSubmit();

    std::shared_ptr<Connection> m_connection;  // null: not connected
    ConnectionFactory m_factory;
    CString m_executablePath;
    int m_openSubmits = 0;
    ProviderFailure m_lastFailure;
    std::set<CString> m_lostInserts;  // that failed although their row may be in the file
};

// A submit: while one lives, statements do not wait for the disk one by one. Each statement that reported
// success survives a kill of the process at once, and a power cut when Finish has returned true. A submit
// inside another one is part of it.
class SubmitScope {
public:
    explicit SubmitScope(CLightingDatabase& database);
    ~SubmitScope();
    SubmitScope(const SubmitScope&) = delete;
    SubmitScope& operator=(const SubmitScope&) = delete;

    // Ends the submit and waits for the disk. False when there is no connection or the disk reported an
    // error: then a power cut could still undo statements. The destructor finishes what was not finished.
    bool Finish();

private:
    CLightingDatabase* m_database;  // null: finished
};

}  // namespace quorvane
