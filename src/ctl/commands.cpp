#include "ctl/commands.h"

#include "ctl/logfollower.h"
#include "ctl/looks.h"
#include "ctl/output.h"
#include "ctl/propertyvalue.h"
#include "scripting/dbus/busnames.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QHash>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

using ManagedObjects = QMap<QDBusObjectPath, QMap<QString, QVariantMap>>;

/// The command on the document that the request names; otherwise on the application, which opens a new one.
QDBusMessage command(const Request &request, const QString &name, const QVariantMap &arguments)
{
    if (!request.document.isEmpty())
        return Client::method(Client::documentPath(request.document), bus::documentInterface, name,
                              {arguments});
    return Client::method(bus::applicationPath, bus::applicationInterface, name, {arguments},
                          Client::Start::onDemand);
}

enum class Show { asItIs, filesAsPaths };

Answer printed(const Answer &answer, Show show = Show::asItIs)
{
    if (!answer)
        return answer;
    const QStringList lines = output::lines(answer.values.value(0));
    output::print(show == Show::filesAsPaths ? output::filesAsPaths(lines) : lines);
    return answer;
}

/// Has an item worked on, and shows the log meanwhile if that is wanted.
Answer work(const Request &request, const Client &client, const QString &name)
{
    QVariantMap arguments{{u"at"_s, fileUrl(request.operands.first())}};
    if (request.showDialogs)
        arguments.insert(u"showingDialogs"_s, true);
    if (request.skipStapling)
        arguments.insert(u"skippingStapling"_s, true);
    std::unique_ptr<LogFollower> follower;
    if (request.follow)
        follower = std::make_unique<LogFollower>(
            client, request.document.isEmpty() ? QString() : Client::documentPath(request.document));
    const Answer answer = client.call(command(request, name, arguments), request.timeout);
    if (follower)
        follower->finish();
    return printed(answer, Show::filesAsPaths);
}

Answer prepare(const Request &request, const Client &client)
{
    QVariantMap arguments{{u"at"_s, fileUrl(request.operands.first())}};
    if (!request.identity.isEmpty())
        arguments.insert(u"signingIdentity"_s, request.identity);
    return client.call(command(request, u"PrepareForNotarizing"_s, arguments));
}

Answer history(const Request &request, const Client &client)
{
    QVariantMap arguments{{u"pageToFetch"_s, request.page}};
    if (request.xml)
        arguments.insert(u"xmlOutput"_s, true);
    const Answer answer = client.call(command(request, u"FetchHistory"_s, arguments), request.timeout);
    const QStringList page = answer ? output::lines(answer.values.value(0)) : QStringList();
    if (!page.isEmpty())
        output::printText(page.first());
    return answer;
}

Answer clearLog(const Request &request, const Client &client)
{
    return client.call(Client::method(Client::documentPath(request.operands.first()), bus::documentInterface,
                                      u"ClearLog"_s, {QVariantMap()}));
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

/// Whose property is meant.
struct Receiver {
    QString className; ///< in the scripting definition
    QString path;
    QString interface;
};

Receiver receiver(const Request &request)
{
    if (!request.document.isEmpty())
        return {u"document"_s, Client::documentPath(request.document), bus::documentInterface};
    if (!request.window.isEmpty())
        return {u"window"_s, bus::windowsPath + u'/' + bus::pathElement(request.window),
                bus::windowInterface};
    return {u"application"_s, bus::applicationPath, bus::applicationInterface};
}

Answer get(const Request &request, const Client &client)
{
    const Receiver from = receiver(request);
    const QString &key = request.operands.first();
    const Answer answer = client.call(Client::getProperty(from.path, from.interface, key));
    const auto type = typeOfProperty(from.className, key);
    const bool isFile = type && type->type == scriptingdefinition::Type::file;
    return printed(answer, isFile ? Show::filesAsPaths : Show::asItIs);
}

/// The value of a property as it goes over the bus. Of a property that nobody knows it is the text: that
/// there is none is the application's to say. An answer that is none is wrong use.
Answer valueForBus(const QString &className, const QString &key, const QStringList &words)
{
    const auto type = typeOfProperty(className, key);
    if (!type)
        return {ExitStatus::done, {words.join(u' ')}, {}};
    const auto value = readValue(*type, words);
    if (!value)
        return {ExitStatus::wrongUse, {}, u"%1 takes %2"_s.arg(key, describe(*type))};
    return {ExitStatus::done, {*value}, {}};
}

Answer set(const Request &request, const Client &client)
{
    const Receiver to = receiver(request);
    const QString &key = request.operands.first();
    const Answer value = request.unset ? Answer{ExitStatus::done, {QVariantList()}, {}}
                                       : valueForBus(to.className, key, request.operands.mid(1));
    if (!value)
        return value;
    return client.call(Client::setProperty(to.path, to.interface, key, value.values.first()));
}

Answer newDocument(const Request &request, const Client &client)
{
    QVariantMap properties;
    for (const QString &word : request.operands) {
        const QString key = word.section(u'=', 0, 0);
        const Answer value = valueForBus(u"document"_s, key, {word.section(u'=', 1)});
        if (!value)
            return value;
        properties.insert(key, value.values.first());
    }
    return printed(client.call(Client::method(bus::applicationPath, bus::applicationInterface,
                                              u"MakeDocument"_s, {properties}, Client::Start::onDemand)));
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
        {u"submit"_s,
         [](const Request &request, const Client &client) {
             return work(request, client, u"SubmitForNotarizing"_s);
         }},
        {u"staple"_s,
         [](const Request &request, const Client &client) { return work(request, client, u"StapleOnly"_s); }},
        {u"sign"_s,
         [](const Request &request, const Client &client) { return work(request, client, u"SignOnly"_s); }},
        {u"prepare"_s, prepare},
        {u"examine"_s, examine},
        {u"issues"_s, issues},
        {u"compare"_s, compare},
        {u"history"_s, history},
        {u"log"_s, log},
        {u"clear-log"_s, clearLog},
        {u"documents"_s,
         [](const Request &, const Client &client) {
             return list(client, u"OrderedDocuments"_s, documentLine);
         }},
        {u"windows"_s,
         [](const Request &, const Client &client) {
             return list(client, u"AllOrderedWindows"_s, windowLine);
         }},
        {u"new"_s, newDocument},
        {u"get"_s, get},
        {u"set"_s, set},
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
