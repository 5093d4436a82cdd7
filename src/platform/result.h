#pragma once

#include "platform/logging.h"

#include <QString>

#include <optional>
#include <utility>

namespace platform {

/// Why something could not be had: a text for a person, which names the item and the reason.
struct Error {
    QString text;
};

/// What an operation that can fail answers: its value, or the error. Tests as true when there is a value.
template <typename T>
class [[nodiscard]] Result {
public:
    Result(T value) // NOLINT(google-explicit-constructor): so that `return value` reads as what it means
        : m_value(std::move(value))
    {
    }
    Result(Error error) // NOLINT(google-explicit-constructor): so that `return Error{...}` does too
        : m_error(std::move(error.text))
    {
    }

    explicit operator bool() const { return m_value.has_value(); }

    /// The value. Only where the result tests as true.
    T &operator*() & { return m_value.value(); }
    const T &operator*() const & { return m_value.value(); }
    T &&operator*() && { return std::move(m_value).value(); }
    T *operator->() { return &m_value.value(); }
    const T *operator->() const { return &m_value.value(); }

    /// The value, or the other one after a failure.
    T valueOr(T other) const { return m_value.value_or(std::move(other)); }

    /// The reason of the failure, for a person to read; empty where there is a value.
    const QString &error() const { return m_error; }
    /// The same, to be handed on as the failure of another result.
    Error failure() const { return {m_error}; }

private:
    std::optional<T> m_value;
    QString m_error;
};

/// The same for an operation that has nothing to answer but that it worked.
template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Error error) // NOLINT(google-explicit-constructor): so that `return Error{...}` does as well
        : m_error(std::move(error.text))
    {
    }

    static Result success() { return {}; }
    static Result failure(QString error) { return Error{std::move(error)}; }

    explicit operator bool() const { return !m_error; }

    /// The reason of the failure, for a person to read; empty after a success.
    QString error() const { return m_error.value_or(QString()); }
    /// The same, to be handed on as the failure of another result.
    Error failure() const { return {error()}; }

    /// For a failure that changes nothing for the caller. What is ignored goes to the journal, if the
    /// category `sealwright.platform` is on.
    void ignore() const
    {
        if (m_error)
            qCDebug(platformLog).noquote() << "ignored:" << *m_error;
    }

private:
    std::optional<QString> m_error;
};

using Outcome = Result<void>;

} // namespace platform
