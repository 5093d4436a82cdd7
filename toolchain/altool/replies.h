#pragma once

#include "formats/notary/notaryapi.h"
#include "platform/result.h"

#include <QList>
#include <QString>

namespace toolchain {

/// A development team.
struct Provider {
    QString shortName; ///< for --asc-provider
    QString name;
    QString teamIdentifier;
};

enum class OutputFormat { normal, xml };

/// The replies that the commands print on standard output, each with its line end. The XML ones are
/// property lists; an error says why a reply could not be written as one.
using Reply = platform::Result<QByteArray>;

/// A request's state as the report tells it.
struct InfoReport {
    notary::Submission submission;
    QByteArray hash; ///< SHA-256, 64 lower-case hexadecimal digits; empty if it is not known
    QString logPath; ///< empty if there is no log
};

/// What the service's word means in the old protocol's. Any word that is not known is "in progress", since a
/// reader takes every other one for a refusal.
struct StatusTexts {
    QString status;
    bool isDecided = false;
    bool isKnown = true;
    int code = 0;
    QString message;
};
[[nodiscard]] StatusTexts textsOf(const QString &serviceWord);

[[nodiscard]] Reply uploadReply(const QString &id, const QString &archive, OutputFormat format);

[[nodiscard]] Reply infoReply(const InfoReport &report, OutputFormat format);

/// All that the service tells is on page 0; it names no next one.
[[nodiscard]] Reply historyReply(const QList<notary::Submission> &submissions, qulonglong page,
                                 OutputFormat format);

[[nodiscard]] Reply providersReply(const Provider &provider, OutputFormat format);

/// A failure as a property list.
[[nodiscard]] Reply failureReply(const QString &text, int code);

/// "4.1.0"
[[nodiscard]] QString toolVersion();

} // namespace toolchain
