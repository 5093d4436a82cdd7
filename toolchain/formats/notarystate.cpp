#include "formats/notarystate.h"

#include <QDir>
#include <QFile>
#include <QUuid>

#include <algorithm>

#include "formats/statefolder.h"
#include "support/wholefile.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

QString writeFile(const QString &path, const QByteArray &bytes)
{
    return QString::fromStdString(
        writeWholeFile(path.toStdString(), {bytes.constData(), std::size_t(bytes.size())}));
}

NotaryLookup readRequest(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        return {std::nullopt, path + u": "_s + file.errorString()};
    const auto request = requestFromJson(file.readAll());
    return {request, request ? QString() : path + u": not a request of the notary, or a damaged one"_s};
}

} // namespace

NotaryState::NotaryState(QString folder)
    : m_folder(std::move(folder))
{
}

QString NotaryState::store(const NotaryRequest &request) const
{
    for (const QString &folder : {requestFolder(), m_folder + u"/logs"_s}) {
        const QString problem = makePrivateFolder(folder);
        if (!problem.isEmpty())
            return problem;
    }
    const QString problem =
        request.phase == Phase::reviewed ? writeFile(logPath(request.uuid), logOf(request)) : QString();
    return problem.isEmpty() ? write(request) : problem;
}

NotaryLookup NotaryState::poll(const QString &uuid) const
{
    if (QUuid::fromString(uuid).isNull() || !QFile::exists(requestPath(uuid)))
        return {};
    const FolderLock lock(m_folder); // two questions at once must count twice
    if (!lock.isHeld())
        return {std::nullopt, m_folder + u": cannot be locked"_s};
    NotaryLookup lookup = readRequest(requestPath(uuid));
    if (!lookup.request || lookup.request->verdict() != Verdict::inProgress)
        return lookup;
    ++lookup.request->polls;
    lookup.error = write(*lookup.request);
    if (!lookup.error.isEmpty())
        lookup.request.reset();
    return lookup;
}

NotaryLookup NotaryState::find(const QString &uuid) const
{
    return QUuid::fromString(uuid).isNull() ? NotaryLookup() : readRequest(requestPath(uuid));
}

NotaryHistory NotaryState::history() const
{
    NotaryHistory history;
    const auto names = QDir(requestFolder()).entryList({u"*.json"_s}, QDir::Files, QDir::Name);
    for (const QString &name : names) {
        const NotaryLookup lookup = readRequest(requestFolder() + u'/' + name);
        if (lookup.request)
            history.requests.append(*lookup.request);
        else
            history.warnings.append(lookup.error);
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

QString NotaryState::write(const NotaryRequest &request) const
{
    return writeFile(requestPath(request.uuid), jsonOf(request));
}

} // namespace toolchain
