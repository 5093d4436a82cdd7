#include "ctl/commands.h"

#include "ctl/logfollower.h"
#include "ctl/output.h"
#include "scripting/dbus/busnames.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDir>
#include <QHash>
#include <QUrl>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

using ManagedObjects = QMap<QDBusObjectPath, QMap<QString, QVariantMap>>;

QString fileUrl(const QString &path)
{
    // Behind a link, ".." is not what its letters say.
    const QString absolute = QDir::current().absoluteFilePath(path);
    const bool canBeTidied = !absolute.contains("/.."_L1);
    return QUrl::fromLocalFile(canBeTidied ? QDir::cleanPath(absolute) : absolute)
        .toString(QUrl::FullyEncoded);
}

Answer submit(const Request &request, const Client &client)
{
    QVariantMap arguments{{u"at"_s, fileUrl(request.operands.first())}};
    if (request.showDialogs)
        arguments.insert(u"showingDialogs"_s, true);
    if (request.skipStapling)
        arguments.insert(u"skippingStapling"_s, true);
    const bool inNewDocument = request.document.isEmpty();
    const QString path = inNewDocument ? bus::applicationPath : Client::documentPath(request.document);
    const QDBusMessage command = Client::method(
        path, inNewDocument ? bus::applicationInterface : bus::documentInterface, u"SubmitForNotarizing"_s,
        {arguments}, inNewDocument ? Client::Start::onDemand : Client::Start::never);
    std::unique_ptr<LogFollower> follower;
    if (request.follow)
        follower = std::make_unique<LogFollower>(client, inNewDocument ? QString() : path);
    const Answer answer = client.call(command, request.timeout);
    if (follower)
        follower->finish();
    if (answer)
        output::print(output::lines(answer.values.value(0)));
    return answer;
}

Answer log(const Request &request, const Client &client)
{
    const Answer answer = client.call(Client::method(Client::documentPath(request.operands.first()),
                                                     bus::documentInterface, u"FetchLog"_s, {QVariantMap()}));
    if (answer)
        output::printText(answer.values.value(0).value<QDBusVariant>().variant().toString());
    return answer;
}

Answer callDocument(const Request &request, const Client &client, const QString &method)
{
    return client.call(
        Client::method(Client::documentPath(request.operands.first()), bus::documentInterface, method));
}

/// Prints one line for each object of the application's list.
Answer list(const Client &client, const QString &property,
            const std::function<QString(const QDBusObjectPath &, const ManagedObjects &)> &line)
{
    const Answer order =
        client.call(Client::getProperty(bus::applicationPath, bus::applicationInterface, property));
    if (!order)
        return order;
    const Answer objects = client.call(
        Client::method(bus::applicationPath, bus::objectManagerInterface, u"GetManagedObjects"_s));
    if (!objects)
        return objects;
    const auto managed = qdbus_cast<ManagedObjects>(objects.values.value(0));
    const auto paths =
        qdbus_cast<QList<QDBusObjectPath>>(order.values.value(0).value<QDBusVariant>().variant());
    for (const QDBusObjectPath &path : paths) {
        if (managed.contains(path)) // it may have been closed between the two calls
            output::print({line(path, managed)});
    }
    return {};
}

QString documentLine(const QDBusObjectPath &path, const ManagedObjects &objects)
{
    const QVariantMap properties = objects.value(path).value(bus::documentInterface);
    return output::lines(QVariant::fromValue(path)).first() + u'\t'
        + properties.value(u"DocStatus"_s).toString() + u'\t' + properties.value(u"DisplayName"_s).toString();
}

QString windowLine(const QDBusObjectPath &path, const ManagedObjects &objects)
{
    const QVariantMap properties = objects.value(path).value(bus::windowInterface);
    const auto document = properties.value(u"Document"_s).value<QDBusObjectPath>();
    const QVariant status = objects.value(document).value(bus::documentInterface).value(u"DocStatus"_s);
    return output::lines(QVariant::fromValue(path)).first() + u'\t' + status.toString() + u'\t'
        + properties.value(u"Title"_s).toString();
}

Answer get(const Request &request, const Client &client)
{
    QString path = bus::applicationPath;
    QString interface = bus::applicationInterface;
    if (!request.document.isEmpty()) {
        path = Client::documentPath(request.document);
        interface = bus::documentInterface;
    } else if (!request.window.isEmpty()) {
        path = bus::windowsPath + u'/' + bus::pathElement(request.window);
        interface = bus::windowInterface;
    }
    const Answer answer = client.call(Client::getProperty(path, interface, request.operands.first()));
    if (answer)
        output::print(output::lines(answer.values.value(0)));
    return answer;
}

Answer open(const Request &request, const Client &client)
{
    QStringList uris;
    for (const QString &path : request.operands)
        uris.append(fileUrl(path));
    return client.call(Client::method(bus::applicationPath, bus::desktopInterface, u"Open"_s,
                                      {uris, QVariantMap()}, Client::Start::onDemand));
}

Answer quit(const Client &client)
{
    return client.call(Client::method(bus::applicationPath, bus::desktopInterface, u"ActivateAction"_s,
                                      {u"quit"_s, QVariantList(), QVariantMap()}));
}

using Command = std::function<Answer(const Request &, const Client &)>;

const QHash<QString, Command> &commands()
{
    static const QHash<QString, Command> all{
        {u"submit"_s, submit},
        {u"log"_s, log},
        {u"documents"_s,
         [](const Request &, const Client &client) {
             return list(client, u"OrderedDocuments"_s, documentLine);
         }},
        {u"windows"_s,
         [](const Request &, const Client &client) {
             return list(client, u"AllOrderedWindows"_s, windowLine);
         }},
        {u"get"_s, get},
        {u"cancel"_s,
         [](const Request &request, const Client &client) {
             return callDocument(request, client, u"Cancel"_s);
         }},
        {u"close"_s,
         [](const Request &request, const Client &client) {
             return callDocument(request, client, u"Close"_s);
         }},
        {u"open"_s, open},
        {u"quit"_s, [](const Request &, const Client &client) { return quit(client); }},
    };
    return all;
}

} // namespace

Answer carryOut(const Request &request, const Client &client)
{
    return commands().value(request.command)(request, client);
}
