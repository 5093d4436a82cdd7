#pragma once

#include "formats/notaryrequest.h"

#include <QStringList>

#include "platform/result.h"

namespace toolchain {

/// A request, or nothing if there is none of that identifier; fails with what is damaged or cannot be
/// written.
using NotaryLookup = platform::Result<std::optional<NotaryRequest>>;

struct NotaryHistory {
    QList<NotaryRequest> requests; ///< newest first
    QStringList warnings; ///< one line for each file that is no request
};

/// The local notary's memory: a folder with one file a request and one log a request. Any number of
/// processes may use it at once.
class NotaryState {
public:
    explicit NotaryState(QString folder);

    /// Keeps a request as it stands now, with its log once it has been reviewed.
    [[nodiscard]] platform::Outcome store(const NotaryRequest &request) const;

    /// Counts one question of the sender, and answers the request as it stands after it.
    [[nodiscard]] NotaryLookup poll(const QString &uuid) const;

    /// The request as it stands, without counting a question.
    [[nodiscard]] NotaryLookup find(const QString &uuid) const;

    [[nodiscard]] NotaryHistory history() const;

    [[nodiscard]] QString logPath(const QString &uuid) const;

private:
    [[nodiscard]] QString requestFolder() const;
    [[nodiscard]] QString requestPath(const QString &uuid) const;
    [[nodiscard]] platform::Outcome write(const NotaryRequest &request) const;

    const QString m_folder;
};

} // namespace toolchain
