#pragma once

#include "ctl/client.h"
#include "ctl/commandline.h"

#include <QVariantMap>

namespace sealwright {

class LogFollower;

/// A command that a document works on for a while, in the document that the request names, and otherwise in a
/// new one of its own: it may be followed, told as JSON, and its document closed at its end.
class Work {
public:
    /// How the result is printed.
    enum class Show { filesAsPaths, text };

    Work(const Request &request, const Client &client);

    /// Sends the command with these arguments, waits for its answer and prints the result.
    [[nodiscard]] Answer carryOut(const QString &name, const QVariantMap &arguments, Show show) const;

private:
    QString documentPath() const;
    Answer giveToolPause(const LogFollower &follower) const;
    QDBusMessage message(const QString &document, const QString &name, const QVariantMap &arguments) const;
    QJsonObject described(const Answer &answer, const QString &document, const QStringList &log,
                          Show show) const;
    void closeDocument(const QString &path) const;

    const Request &m_request;
    const Client &m_client;
};

} // namespace sealwright
