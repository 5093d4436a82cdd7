#include "document/mainwincontroller.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busobjects.h"
#include "scripting/dbus/scriptcalls.h"

#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

using Document = MainWinControllerScripting;
using Window = NSWindowScripting;

QList<BusRow> documentProperties()
{
    return rowsOf(Document::properties())
        + QList<BusRow>{{u"caller"_s, [](const BusObject &object) {
                             return object.objects.callerOf(object.as<Document>().controller());
                         }}};
}

void cancel(const BusObject &object, const BusCall &call)
{
    MainWinController &document = object.as<Document>().controller();
    if (document.canCancel())
        document.doCancel();
    call.reply();
}

/// Closes the window of a document, or the document of a window, as a person would. The answer goes first,
/// and the caller's next call finds the window closed.
template <class Receiver>
void close(const BusObject &object, const BusCall &call)
{
    call.reply();
    object.as<Receiver>().controller().doCloseDocument(CloseSender::script);
}

template <class Receiver>
scriptcalls::MethodMaker closeCall()
{
    return [make = scriptcalls::ownCall({}, {}, close<Receiver>)](const auto &definition) {
        BusMethod method = make(definition);
        method.closesADocument = true;
        return method;
    };
}

// What is told without being asked for

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

const BusHandlers &documentHandlers()
{
    using scriptcalls::command;
    static const BusHandlers handlers = [] {
        BusHandlers all{documentProperties(), scriptcalls::sharedCommands<Document>()};
        all.methods.insert(u"AEFetchLog:"_s, command(&Document::AEFetchLog));
        all.methods.insert(u"AEClearLog:"_s, command(&Document::AEClearLog));
        all.methods.insert(u"doCancel:"_s, scriptcalls::ownCall({}, {}, cancel));
        all.methods.insert(u"doCloseDocument:"_s, closeCall<Document>());
        return all;
    }();
    return handlers;
}

const BusHandlers &windowHandlers()
{
    static const BusHandlers handlers{rowsOf(Window::properties()),
                                      {{u"performClose:"_s, closeCall<Window>()}}};
    return handlers;
}

const BusInterface &documentInterface()
{
    static const BusInterface interface =
        busInterface(bus::documentInterface, u"document"_s, documentHandlers());
    return interface;
}

const BusInterface &windowInterface()
{
    static const BusInterface interface = busInterface(bus::windowInterface, u"window"_s, windowHandlers());
    return interface;
}

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
