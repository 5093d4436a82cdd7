#include "formats/notarystate.h"

#include <QDir>
#include <QFile>
#include <QUuid>

#include <algorithm>

#include "formats/failures.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;

namespace toolchain {

namespace {

const std::optional<NotaryRequest> noRequest;

NotaryLookup readRequest(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return noRequest;
    if (!file.open(QIODevice::ReadOnly))
        return Error{path + u": "_s + file.errorString()};
    const auto request = requestFromJson(file.readAll());
    if (!request)
        return Error{path + u": not a request of the notary, or a damaged one"_s};
    return request;
}

} // namespace

NotaryState::NotaryState(QString folder)
    : m_folder(std::move(folder))
{
}

Outcome NotaryState::store(const NotaryRequest &request) const
{
    for (const QString &folder : {requestFolder(), m_folder + u"/logs"_s}) {
        const Outcome made = makePrivateFolder(folder);
        if (!made)
            return made;
    }
    const Outcome logged = request.phase == Phase::reviewed
        ? writeFileAt(logPath(request.uuid).toStdString(), logOf(request))
        : Outcome::success();
    return logged ? write(request) : logged;
}

NotaryLookup NotaryState::poll(const QString &uuid) const
{
    if (QUuid::fromString(uuid).isNull() || !QFile::exists(requestPath(uuid)))
        return noRequest;
    const FolderLock lock(m_folder); // two questions at once must count twice
    if (!lock.isHeld())
        return Error{m_folder + u": cannot be locked"_s};
    NotaryLookup lookup = readRequest(requestPath(uuid));
    if (!lookup || !*lookup || (**lookup).verdict() != Verdict::inProgress)
        return lookup;
    ++(**lookup).polls;
    const Outcome written = write(**lookup);
    return written ? lookup : written.failure();
}

NotaryLookup NotaryState::find(const QString &uuid) const
{
    return QUuid::fromString(uuid).isNull() ? NotaryLookup(noRequest) : readRequest(requestPath(uuid));
}

NotaryHistory NotaryState::history() const
{
    NotaryHistory history;
    const auto names = QDir(requestFolder()).entryList({u"*.json"_s}, QDir::Files, QDir::Name);
    for (const QString &name : names) {
        const NotaryLookup lookup = readRequest(requestFolder() + u'/' + name);
        if (!lookup)
            history.warnings.append(lookup.error());
        else if (*lookup)
            history.requests.append(**lookup);
    }
    std::stable_sort(history.requests.begin(), history.requests.end(),
                     [](const NotaryRequest &a, const NotaryRequest &b) { return a.uploaded > b.uploaded; });
    return history;
}

QString NotaryState::logPath(const QString &uuid) const
{
    return m_folder + u"/logs/"_s + uuid + u".json"_s;
}

QString NotaryState::requestFolder() const
{
    return m_folder + u"/requests"_s;
}

QString NotaryState::requestPath(const QString &uuid) const
{
    return requestFolder() + u'/' + QUuid::fromString(uuid).toString(QUuid::WithoutBraces) + u".json"_s;
}

Outcome NotaryState::write(const NotaryRequest &request) const
{
    return writeFileAt(requestPath(request.uuid).toStdString(), jsonOf(request));
}

} // namespace toolchain
