// Why an Access file cannot be read or written, as one line ready to show.
#pragma once

#include <QString>
#include <stdexcept>

namespace quorvane::access {

enum class Fault {
    Refused,   // the file or the value is nothing that this driver may read or write
    Damaged,   // bytes that cannot be what they should be
    ReadOnly,  // the file is open for reading alone
    Changed,   // another program has changed the file since it was read
    Failed,    // the system refused: no room, no permission, a device that fails
};

// Thrown by every unit of this folder. Whatever a statement had changed until then is rolled back by the one
// who began it.
class AccessError : public std::runtime_error {
public:
    explicit AccessError(const QString& message, Fault fault = Fault::Refused)
        : std::runtime_error(message.toStdString()), m_message(message), m_fault(fault) {}
    const QString& Message() const { return m_message; }
    Fault Kind() const { return m_fault; }

private:
    QString m_message;
    Fault m_fault;
};

[[noreturn]] inline void ThrowDamaged(const QString& what) {
    throw AccessError(QStringLiteral("the file is damaged: %1").arg(what), Fault::Damaged);
}

}  // namespace quorvane::access
