// Why an Access file cannot be read or written, as one line ready to show.
#pragma once

#include <QString>
#include <stdexcept>

namespace quorvane::access {

class AccessError : public std::runtime_error {
public:
    explicit AccessError(const QString& message)
        : std::runtime_error(message.toStdString()), m_message(message) {}
    const QString& Message() const { return m_message; }

private:
    QString m_message;
};

}  // namespace quorvane::access
