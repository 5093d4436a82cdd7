#pragma once

#include "formats/notaryrequest.h"

#include <QStringList>

namespace toolchain {

struct NotaryLookup {
    std::optional<NotaryRequest> request; ///< nothing if there is none of that identifier, or it is damaged
    QString error; ///< what is damaged or cannot be written; empty for a request that does not exist
};

struct NotaryHistory {
    QList<NotaryRequest> requests; ///< newest first
    QStringList warnings; ///< one line for each file that is no request
};

/// The local notary's memory: a folder with one file a request and one log a request. Any number of
/// processes may use it at once.
class NotaryState {
public:
    explicit NotaryState(QString folder);

    /// Keeps a request as it stands now, with its log once it has been reviewed. Answers what went wrong, or
    /// an empty text.
    [[nodiscard]] QString store(const NotaryRequest &request) const;

    /// Counts one question of the sender, and answers the request as it stands after it.
    [[nodiscard]] NotaryLookup poll(const QString &uuid) const;

    /// The request as it stands, without counting a question.
    [[nodiscard]] NotaryLookup find(const QString &uuid) const;

    [[nodiscard]] NotaryHistory history() const;

    [[nodiscard]] QString logPath(const QString &uuid) const;

private:
    [[nodiscard]] QString requestFolder() const;
    [[nodiscard]] QString requestPath(const QString &uuid) const;
    [[nodiscard]] QString write(const NotaryRequest &request) const;

    const QString m_folder;
};

} // namespace toolchain
