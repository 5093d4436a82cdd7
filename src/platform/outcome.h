#pragma once

#include <QString>

#include <utility>

namespace platform {

/// What became of an operation on the host: it worked, or it did not, with a text that names the item and
/// the reason. Tests as true when it worked.
class [[nodiscard]] Outcome {
public:
    static Outcome success() { return Outcome(QString()); }
    static Outcome failure(QString error)
    {
        return Outcome(error.isNull() ? QStringLiteral("") : std::move(error));
    }

    explicit operator bool() const { return m_error.isNull(); }

    /// The reason of the failure, for a person to read; null after a success.
    QString error() const { return m_error; }

    /// For a failure that changes nothing for the caller.
    void ignore() const { }

private:
    explicit Outcome(QString error)
        : m_error(std::move(error))
    {
    }

    QString m_error;
};

} // namespace platform
