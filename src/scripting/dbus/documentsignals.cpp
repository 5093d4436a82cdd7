#include "scripting/dbus/documentsignals.h"

#include "document/mainwincontroller.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busvalue.h"

#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

QString styleName(LogStyle style)
{
    switch (style) {
    case LogStyle::bold:
        return u"bold"_s;
    case LogStyle::error:
        return u"error"_s;
    case LogStyle::italic:
    case LogStyle::plain:
        break;
    }
    return u"plain"_s;
}

/// Without the last line end. Of one that is too long for everybody who listens, the beginning; the whole is
/// to be had by FetchLog.
QString entryText(const QString &text)
{
    constexpr qsizetype mostCharacters = 1024LL * 1024;
    if (text.size() > mostCharacters)
        return busvalue::withoutNulls(text.first(mostCharacters)) + u"…"_s;
    return busvalue::withoutNulls(text.endsWith(u'\n') ? text.chopped(1) : text);
}

} // namespace

void sendDocumentSignals(MainWinController &document, const QString &path, const QDBusConnection &connection,
                         const QObject *context)
{
    const auto send = [path, connection](const QString &name, const QVariantList &arguments) {
        QDBusMessage signal = QDBusMessage::createSignal(path, bus::documentInterface, name);
        signal.setArguments(arguments);
        connection.send(signal);
    };
    const LogText &log = document.statusTextView;
    QObject::connect(&log, &LogText::appended, context, [send](const LogText::Run &run) {
        send(u"LogAppended"_s, {entryText(run.text), styleName(run.style)});
    });
    QObject::connect(&log, &LogText::cleared, context, [send] { send(u"LogCleared"_s, {}); });
    // From the thread that changes it: a word that stands for a moment only is told as well.
    const auto &statusString = document.statusString;
    QObject::connect(
        &statusString, &Observable::changed, context,
        [send, &statusString] { send(u"StatusChanged"_s, {statusString()}); }, Qt::DirectConnection);
}

void stopDocumentSignals(MainWinController &document, const QObject *context)
{
    document.statusTextView.disconnect(context);
    document.statusString.disconnect(context);
}

} // namespace sealwright
