#pragma once

#include "notaryd/http.h"

#include <QJsonValue>
#include <QRegularExpression>

#include <functional>
#include <mutex>
#include <optional>

#include "platform/result.h"

namespace notaryd {

/// One way in which the service is to misbehave.
struct Fault {
    QString name;
    QRegularExpression path; ///< over the request's path, anywhere in it
    QByteArray method; ///< empty: any
    qint64 skip = 0; ///< so many requests pass first
    qint64 count = 1; ///< so many are met then; -1: all
    QJsonValue value;

    [[nodiscard]] double number(double otherwise) const { return value.toDouble(otherwise); }
    /// A member of a value that is an object.
    [[nodiscard]] QJsonValue member(const QString &key) const { return value[key]; }
};

/// The storage's error codes with their HTTP statuses; 0 for a code that it does not have.
[[nodiscard]] int storageStatus(const QString &code);

/// Reads a JSON list of faults. Fails, naming the entry, for a name, a pattern or a value that is none.
[[nodiscard]] platform::Result<QList<Fault>> faultsFromJson(const QByteArray &json);

/// The faults that are on. Any thread.
class Faults {
public:
    void replace(const QList<Fault> &faults);

    /// The fault, one of those that replace or spoil a reply, that meets this request; counts it. The first
    /// in the list goes before the others.
    [[nodiscard]] std::optional<Fault> outcome(const Request &request);

    /// The fault of that name that meets this request; counts it.
    [[nodiscard]] std::optional<Fault> named(const QString &name, const Request &request);

    /// The fault of that name for a thing that it keeps hold of: counted once for each thing, and then met by
    /// all requests about it.
    [[nodiscard]] std::optional<Fault> holding(const QString &name, const QString &thing,
                                               const Request &request);

private:
    struct Entry {
        Fault fault;
        QList<QString> things;
    };
    [[nodiscard]] static bool meets(Entry &entry, const Request &request);

    std::mutex m_mutex;
    QList<Entry> m_entries;
};

} // namespace notaryd
