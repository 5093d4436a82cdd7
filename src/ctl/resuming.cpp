#include "ctl/resuming.h"

#include "ctl/canceller.h"
#include "ctl/output.h"
#include "ctl/propertyvalue.h"
#include "ctl/work.h"
#include "scripting/dbus/busnames.h"

#include <QDBusVariant>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <memory>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qint64 longestIdentifier = 4096; // bytes
const QString identifierFile = u"/RequestUUID.txt"_s;

/// The folders that wait; an answer that is none tells why they are not known.
Answer foldersThatWait(const Client &client)
{
    QDBusMessage question =
        Client::getProperty(bus::applicationPath, bus::applicationInterface, u"Waiting"_s);
    question.setAutoStartService(true);
    return client.call(question);
}

QStringList foldersIn(const Answer &answer)
{
    return answer.values.value(0).value<QDBusVariant>().variant().toStringList();
}

/// What the folder itself tells: folder, identifier, and when it was told.
QStringList columns(const QString &folder)
{
    QFile file(folder + identifierFile);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    const QString identifier = isOpen ? QString::fromUtf8(file.read(longestIdentifier)).trimmed() : QString();
    const QDateTime since = QFileInfo(file).lastModified().toUTC();
    return {folder, identifier, isOpen ? since.toString(u"yyyy-MM-ddTHH:mm:ssZ"_s) : QString()};
}

Answer problem(const QString &text)
{
    return {ExitStatus::error, {}, text};
}

QVariantMap argumentsFor(const Request &request, const QString &path)
{
    QVariantMap arguments{{u"at"_s, fileUrl(path)}};
    if (request.showDialogs)
        arguments.insert(u"showingDialogs"_s, true);
    return arguments;
}

QDBusMessage resumeCall(const Request &request, const QString &folder)
{
    return Client::method(bus::applicationPath, bus::applicationInterface, u"Resume"_s,
                          {argumentsFor(request, folder)}, Client::Start::onDemand);
}

Answer resumeOne(const Request &request, const Client &client, const QString &path)
{
    return Work(request, client).carryOut(u"Resume"_s, argumentsFor(request, path), Work::Show::filesAsPaths);
}

/// The finished items to standard output, and what went wrong to standard error, in the order of the folders.
Answer told(const QList<Answer> &answers)
{
    Answer latest;
    for (const Answer &answer : answers) {
        if (answer) {
            output::print(output::filesAsPaths(output::lines(answer.values.value(0))));
            continue;
        }
        if (!latest) // whoever ends the program tells of the last one
            output::printError(u"sealwrightctl: "_s + latest.error);
        latest = answer;
    }
    return latest;
}

void close(const QStringList &documents, const Client &client)
{
    for (const QString &path : documents)
        [[maybe_unused]] const Answer closed =
            client.call(Client::method(path, bus::documentInterface, u"Close"_s));
}

Answer resumeAll(const Request &request, const Client &client, const QStringList &folders)
{
    LogFollower follower(
        client, {},
        [&request](const QString &entry) {
            if (request.follow)
                output::printError(entry);
        },
        LogFollower::Documents::all);
    std::unique_ptr<Canceller> canceller;
    if (request.follow)
        canceller = std::make_unique<Canceller>(client, follower, Canceller::Effect::cancels);
    QList<QDBusMessage> calls;
    for (const QString &folder : folders)
        calls.append(resumeCall(request, folder));
    const QList<Answer> answers = client.callAll(calls, request.timeout);
    if (request.follow || request.close)
        follower.finish();
    if (request.close)
        close(follower.documentPaths(), client);
    return told(answers);
}

} // namespace

Answer waiting(const Request &request, const Client &client)
{
    const Answer answer = foldersThatWait(client);
    QJsonArray all;
    for (const QString &folder : foldersIn(answer)) {
        const QStringList row = columns(folder);
        all.append(QJsonObject{{u"folder"_s, row[0]}, {u"identifier"_s, row[1]}, {u"since"_s, row[2]}});
        if (!request.json)
            output::printColumns(row);
    }
    if (answer && request.json)
        output::printJson(all);
    return answer;
}

Answer resume(const Request &request, const Client &client)
{
    if (!request.operands.isEmpty())
        return resumeOne(request, client, request.operands.first());
    const Answer answer = foldersThatWait(client);
    const QStringList folders = foldersIn(answer);
    if (!answer)
        return answer;
    if (request.all)
        return resumeAll(request, client, folders);
    if (folders.isEmpty())
        return problem(u"nothing waits for a verdict"_s);
    if (folders.size() > 1)
        return problem(u"%1 submissions wait for a verdict: name one, or all by --all"_s.arg(folders.size()));
    return resumeOne(request, client, folders.first());
}

} // namespace sealwright
