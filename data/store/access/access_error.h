// Why an Access file cannot be read or written, as one line (docs/access-files.md, "What to expect").
//
// What users can meet is Chinese and in the terms of Access, as they see it where a submit fails. What only a
// developer can meet is English, and so is what exactly is wrong in a damaged file.
#pragma once

#include <QString>
#include <stdexcept>

namespace quorvane::access {

enum class Fault {
    Refused,    // the file or the value is nothing that this driver may read or write
    EmptyText,  // in a column that takes none
    Damaged,    // bytes that cannot be what they should be
    ReadOnly,   // the system forbids writing
    InUse,      // another program has the file open
    Changed,    // another program has changed the file since it was read
    Gone,       // no file bears the name any more
    NoRoom,     // the disk is full
    Failed,     // the system could not for another reason
};

// Thrown by every unit of this folder. Whatever a statement had changed until then is rolled back by the one
// who began it.
class AccessError : public std::runtime_error {
public:
    explicit AccessError(const QString& message, Fault fault = Fault::Refused, const QString& column = {})
        : std::runtime_error(message.toStdString()), m_message(message), m_column(column), m_fault(fault) {}
    const QString& Message() const { return m_message; }
    Fault Kind() const { return m_fault; }
    // Of the value that must not be written; else empty.
    const QString& Column() const { return m_column; }
    // The same failure with the column named.
    AccessError InColumn(const QString& name) const {
        return AccessError(QStringLiteral("字段 %1:%2").arg(name, m_message), m_fault, name);
    }

private:
    QString m_message;
    QString m_column;
    Fault m_fault;
};

[[noreturn]] inline void ThrowDamaged(const QString& what) {
    throw AccessError(QStringLiteral("数据库文件已损坏(%1)").arg(what), Fault::Damaged);
}

}  // namespace quorvane::access
