// The only door to a database: a connection that executes statements and hands out record sets.
//
// Code above data/store does not know which kind of file stands behind it. Errors are thrown as ProviderError
// with the message of the driver; CLightingDatabase catches all of them.
#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <variant>

#include "data/records.h"

namespace quorvane {

enum class FailureKind {
    Other,         // the message says more
    NotConnected,  // there is no connection
    DiskFull,
    FileGone,     // the file was removed, renamed or replaced, or its drive does not answer
    FileChanged,  // another program has changed the file in a way that the driver cannot follow
    Locked,       // another program is using the file
    ReadOnly,     // the file, its folder or the disk must not be written, or the driver cannot write it
    Damaged,
    OutOfMemory,
    TimeLimit,       // the statement took too long and was interrupted
    EmptyText,       // a text is empty in a column that takes no empty text
    QuoteInText,     // a text holds a single quote; nothing was run
    UnwritableValue  // a text that is not valid Unicode or a number that is not finite; nothing was run
};

// Why an operation failed.
struct ProviderFailure {
    FailureKind kind = FailureKind::Other;
    CString message;   // as the provider gave it
    CString column;    // of the value that must not be written; else empty
    CString who = {};  // where the file is locked: by whom, as far as the driver knows, in Chinese
};

class ProviderError : public std::runtime_error {
public:
    explicit ProviderError(const CString& message, FailureKind kind = FailureKind::Other)
        : ProviderError(ProviderFailure{.kind = kind, .message = message, .column = {}}) {}
    explicit ProviderError(const ProviderFailure& failure)
        : std::runtime_error(failure.message.toStdString()), m_failure(failure) {}
    const ProviderFailure& Failure() const { return m_failure; }
    const CString& Message() const { return m_failure.message; }
    FailureKind Kind() const { return m_failure.kind; }

private:
    ProviderFailure m_failure;
};

// One field of one row: NULL (monostate), an integer, a real or a text. NULL is none of the other three.
using FieldValue = std::variant<std::monostate, qint64, double, CString>;

// The rows of a query, read forward only. A new record set stands on its first row.
class Recordset {
public:
    virtual ~Recordset() = default;
    virtual bool AtEnd() const = 0;
    // Steps to the next row, or to the end. Calling it at the end is a ProviderError.
    virtual void MoveNext() = 0;
    // The index from 0 of a column, by its name in the result. It is the same for all rows. A name that
    // stands twice in the result is qualified with its table ("光源.ID"). An unknown column is a
    // ProviderError.
    virtual int Column(const CString& columnName) const = 0;
    // The value of a column of the present row. An index out of range and a read at the end are
    // ProviderErrors.
    virtual FieldValue Value(int index) const = 0;
    FieldValue Value(const CString& columnName) const { return Value(Column(columnName)); }
};

class Connection {
public:
    virtual ~Connection() = default;
    // Opens the database that the connection string names; options is -1 for "unspecified".
    virtual void Open(const CString& connectionString, const CString& user, const CString& password,
                      int options) = 0;
    // Runs exactly one statement. A statement without result rows gives a record set that is at its end.
    virtual std::unique_ptr<Recordset> Execute(const CString& statement) = 0;
    // A submit is a run of statements that wait for the disk together, at its end. Each statement is still
    // committed by itself and survives a kill of the process once Execute has returned; all of them survive
    // a power cut once EndSubmit has returned. A provider that waits for the disk anyway does nothing, and
    // an EndSubmit without a BeginSubmit does nothing.
    virtual void BeginSubmit() {}
    virtual void EndSubmit() {}
    virtual void Close() = 0;
    // A provider may check the whole file while it is already read. The check begins when one of these two is
    // called, or a statement is to write; nothing is written before it has ended. RequireSoundFile waits for
    // its end and throws ProviderError when the file is damaged.
    virtual bool IsCheckRunning() const { return false; }
    virtual void RequireSoundFile() {}
    // The path of a file in which opening has kept changes of a former run that could not go into the
    // database, because it was changed in between; empty as a rule.
    virtual CString ChangesPutAside() const { return {}; }
};

// Makes a connection, not yet open, for the database that the connection string names. Throws ProviderError
// with the reason when this platform has nothing that could open it.
using ConnectionFactory = std::function<std::shared_ptr<Connection>(const CString& connectionString)>;

}  // namespace quorvane
