#pragma once

#include <QList>
#include <QString>

namespace sealwright {

/// One submission of the account, as the notary tool prints it in a line of its history. Texts may be empty.
struct HistoryEntry {
    QString date; ///< "2018-06-24 01:14:21 +0000": sorts by time as it stands
    QString identifier;
    QString status; ///< "success", "invalid", "in progress"
    QString code;
    QString message;
    QString item = {}; ///< its name, where this machine has submitted it

    bool operator==(const HistoryEntry &) const = default;
};

/// So much of a reply is read, in characters: of a page, which has some hundred lines, all. A longer one
/// would hold up the window.
inline constexpr qsizetype mostReadOfHistory = 1'000'000;

/// The entries of a page of the history in the notary tool's plain form, in its order: columns, headed by a
/// rule of hyphens that tells how wide they are. Nothing where there is no such rule. Pure.
[[nodiscard]] QList<HistoryEntry> historyEntries(const QString &reply);

} // namespace sealwright
