// The reason, in one line to show, why a sample database could not be made.
#pragma once

#include <QString>
#include <stdexcept>

namespace quorvane {

class SampleError : public std::runtime_error {
public:
    explicit SampleError(const QString& message)
        : std::runtime_error(message.toStdString()), m_message(message) {}
    const QString& Message() const { return m_message; }

private:
    QString m_message;
};

}  // namespace quorvane
