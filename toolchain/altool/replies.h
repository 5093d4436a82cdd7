#pragma once

#include "altool/providers.h"
#include "formats/notaryrequest.h"

#include <QList>
#include <QString>

namespace toolchain {

enum class OutputFormat { Normal, Xml };

/// The replies that the commands print on standard output, each with its line end. The XML ones are
/// property lists. An error is a reply that could not be written as a property list.
struct Reply {
    QByteArray text;
    QString error;
};

[[nodiscard]] Reply uploadReply(const NotaryRequest &request, const QString &archive, OutputFormat format);

/// `logPath` is told only of a request that is decided.
[[nodiscard]] Reply infoReply(const NotaryRequest &request, const QString &logPath, OutputFormat format);

/// Of all requests, newest first, those that are on the page, counted from 0. Says which page is the next one
/// if anything is on that.
[[nodiscard]] Reply historyReply(const QList<NotaryRequest> &requests, qulonglong page, OutputFormat format);

[[nodiscard]] Reply providersReply(const QList<Provider> &providers, OutputFormat format);

/// "4.1.0"
[[nodiscard]] QString toolVersion();

} // namespace toolchain
