#pragma once

#include <QDBusConnection>

class QObject;

namespace sealwright {

class MainWinController;

/// Tells whoever listens on the bus of the document's log and status, until `context` goes or is disconnected
/// from the document.
void sendDocumentSignals(MainWinController &document, const QString &path, const QDBusConnection &connection,
                         const QObject *context);
void stopDocumentSignals(MainWinController &document, const QObject *context);

} // namespace sealwright
