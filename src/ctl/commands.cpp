#include "ctl/commands.h"

#include "ctl/logfollower.h"
#include "ctl/looks.h"
#include "ctl/output.h"
#include "ctl/propertyvalue.h"
#include "ctl/resuming.h"
#include "ctl/work.h"
#include "scripting/dbus/busnames.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace sealwright {

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

/// What the client sees of an item that the application has refused without a word.
QString whyRefused(const QString &path)
{
    const QFileInfo item(path);
    if (path.startsWith("file:"_L1))
        return u"'%1' is an address; a path is wanted"_s.arg(path);
    if (path.contains(QChar::ReplacementCharacter))
        return u"the name of '%1' is not UTF-8, and such an item cannot be worked on"_s.arg(path);
    if (!item.exists() && !item.isSymLink())
        return u"there is no item at '%1'"_s.arg(item.absoluteFilePath());
    return u"'%1' is of a kind that this command does not take"_s.arg(path);
}

Answer explained(Answer answer, const QString &path)
{
    if (answer.scriptError == u"6"_s && answer.errorText.isEmpty())
        answer.error += u"\nsealwrightctl: "_s + whyRefused(path);
    return answer;
}

/// Has an item worked on.
Answer work(const Request &request, const Client &client, const QString &name)
{
    const QString path = request.operands.first();
    QVariantMap arguments{{u"at"_s, fileUrl(path)}};
    if (request.showDialogs)
        arguments.insert(u"showingDialogs"_s, true);
    if (request.skipStapling)
        arguments.insert(u"skippingStapling"_s, true);
    return explained(Work(request, client).carryOut(name, arguments, Work::Show::filesAsPaths), path);
}

Answer prepare(const Request &request, const Client &client)
{
    QVariantMap arguments{{u"at"_s, fileUrl(request.operands.first())}};
    if (!request.identity.isEmpty())
        arguments.insert(u"signingIdentity"_s, request.identity);
    return explained(client.call(command(request, u"PrepareForNotarizing"_s, arguments)),
                     request.operands.first());
}

Answer history(const Request &request, const Client &client)
{
    QVariantMap arguments{{u"pageToFetch"_s, request.page}};
    if (request.xml)
        arguments.insert(u"xmlOutput"_s, true);
    return Work(request, client).carryOut(u"FetchHistory"_s, arguments, Work::Show::text);
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

/// What is told of one object of the application's list.
using Columns = QStringList (*)(const QDBusObjectPath &, const ManagedObjects &);

QStringList documentColumns(const QDBusObjectPath &path, const ManagedObjects &objects)
{
    const QVariantMap properties = objects.value(path).value(bus::documentInterface);
    return {output::lines(QVariant::fromValue(path)).first(), properties.value(u"DocStatus"_s).toString(),
            properties.value(u"DisplayName"_s).toString()};
}

QStringList windowColumns(const QDBusObjectPath &path, const ManagedObjects &objects)
{
    const QVariantMap properties = objects.value(path).value(bus::windowInterface);
    const auto document = properties.value(u"Document"_s).value<QDBusObjectPath>();
    const QVariant status = objects.value(document).value(bus::documentInterface).value(u"DocStatus"_s);
    return {output::lines(QVariant::fromValue(path)).first(), status.toString(),
            properties.value(u"Title"_s).toString()};
}

void printAsJson(const QList<QStringList> &rows)
{
    QJsonArray all;
    for (const QStringList &row : rows)
        all.append(QJsonObject{{u"id"_s, row.at(0)}, {u"status"_s, row.at(1)}, {u"title"_s, row.at(2)}});
    output::printJson(all);
}

Answer list(const Request &request, const Client &client, const QString &property, Columns columns)
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
    QList<QStringList> rows;
    for (const QDBusObjectPath &path :
         qdbus_cast<QList<QDBusObjectPath>>(order.values.value(0).value<QDBusVariant>().variant())) {
        if (managed.contains(path)) // it may have been closed between the two calls
            rows.append(columns(path, managed));
    }
    if (request.json)
        printAsJson(rows);
    else
        std::for_each(rows.cbegin(), rows.cend(), &output::printColumns);
    return {};
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
    const LogFollower follower(client, {}, [](const QString &) {}); // knows the document that is made
    const Answer made = client.call(Client::method(bus::applicationPath, bus::applicationInterface,
                                                   u"MakeDocument"_s, {properties}, Client::Start::onDemand));
    // One that has not got all of its properties is there all the same, and nobody would know of it.
    if (!made && !follower.documentPath().isEmpty()) [[maybe_unused]]
        const Answer closed =
            client.call(Client::method(follower.documentPath(), bus::documentInterface, u"Close"_s));
    return printed(made);
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
        {u"resume"_s, resume},
        {u"waiting"_s, waiting},
        {u"prepare"_s, prepare},
        {u"examine"_s, examine},
        {u"issues"_s, issues},
        {u"compare"_s, compare},
        {u"history"_s, history},
        {u"log"_s, log},
        {u"clear-log"_s, clearLog},
        {u"documents"_s,
         [](const Request &request, const Client &client) {
             return list(request, client, u"OrderedDocuments"_s, documentColumns);
         }},
        {u"windows"_s,
         [](const Request &request, const Client &client) {
             return list(request, client, u"AllOrderedWindows"_s, windowColumns);
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

} // namespace sealwright
