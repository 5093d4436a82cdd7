#include "notaryd/submissions.h"

#include "notaryd/multipart.h"

#include <QDir>
#include <QRandomGenerator>
#include <QUuid>

#include <cstdio>

#include "formats/notary/waits.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;
using toolchain::NotaryLookup;
using toolchain::Phase;

namespace notaryd {

namespace {

constexpr toolchain::notary::Milliseconds reviewPause{10'000};
constexpr toolchain::notary::Milliseconds leastPause{1'000}; // between reviews whose verdict cannot be kept
constexpr qint64 credentialsLifetime = 12 * 60 * 60; // seconds

QByteArray randomText(int bytes)
{
    QByteArray text(bytes, '\0');
    QRandomGenerator::system()->generate(text.begin(), text.end());
    return text.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

QByteArray randomLetters(int count)
{
    QByteArray text;
    for (int index = 0; index < count; ++index)
        text += "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567"[QRandomGenerator::system()->bounded(32)];
    return text;
}

} // namespace

Submissions::Submissions(QString notaryFolder, Reviewer review, Watcher reviewed)
    : m_folder(std::move(notaryFolder))
    , m_state(m_folder)
    , m_review(std::move(review))
    , m_reviewed(std::move(reviewed))
{
    resume();
    m_worker = std::thread([this] { work(); });
}

Submissions::~Submissions()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    m_worker.join();
}

/// What was uploaded whole before an earlier service ended is reviewed now; what was not can never become
/// whole.
void Submissions::resume()
{
    const QStringList left = QDir(m_folder + u"/uploads"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &id : left) {
        const auto request = find(id);
        const bool isThere = QFile::exists(objectOf(id)) || QFile::exists(objectOf(id) + partListSuffix);
        if (request && request->phase == Phase::uploaded && isThere)
            m_waiting.insert(id, Clock::now());
        else
            QDir(folderOf(id)).removeRecursively();
    }
}

Result<UploadSession> Submissions::begin(const NotaryRequest &announced, const QDateTime &now)
{
    forgetAbandoned();
    NotaryRequest request = announced;
    request.uuid = QUuid::createUuid().toString(QUuid::WithoutBraces);
    request.phase = Phase::announced;
    const UploadSession session{request.uuid,
                                bucket,
                                "prod/AROA" + randomLetters(17) + ':' + request.uuid.toLatin1(),
                                {"ASIA" + randomLetters(16), randomText(30), randomText(96)},
                                now.addSecs(credentialsLifetime)};
    const auto folder = toolchain::makePrivateFolder(folderOf(request.uuid));
    if (!folder)
        return folder.failure();
    const std::scoped_lock lock(m_mutex, m_stateMutex);
    const auto stored = m_state.store(request);
    if (!stored)
        return stored.failure();
    m_sessions.insert(session.credentials.accessKey, session);
    return session;
}

/// Pieces of uploads that can go on no more.
void Submissions::forgetAbandoned()
{
    const std::scoped_lock lock(m_mutex);
    const QDateTime now = QDateTime::currentDateTimeUtc().addSecs(-credentialsLifetime);
    for (auto session = m_sessions.begin(); session != m_sessions.end();) {
        if (session->expires > now || m_waiting.contains(session->id) || m_underReview == session->id) {
            ++session;
            continue;
        }
        QDir(folderOf(session->id)).removeRecursively();
        session = m_sessions.erase(session);
    }
}

std::optional<UploadSession> Submissions::sessionOf(const QByteArray &accessKey)
{
    const std::scoped_lock lock(m_mutex);
    const auto session = m_sessions.find(accessKey);
    return session == m_sessions.end() ? std::nullopt : std::optional(*session);
}

bool Submissions::isOpen(const QString &id)
{
    const std::scoped_lock lock(m_mutex);
    if (m_underReview == id)
        return false;
    const auto request = find(id);
    return request && request->phase != Phase::reviewed;
}

std::optional<Submissions::Refusal> Submissions::moveToObject(const NotaryRequest &request,
                                                              const QString &file) const
{
    if (request.phase == Phase::reviewed || m_underReview == request.uuid)
        return Refusal{u"AccessDenied"_s, u"The object is under review"_s};
    const QString object = objectOf(request.uuid);
    const QString list = object + partListSuffix;
    const QString &target = file.endsWith(partListSuffix) ? list : object;
    const bool isNew = QFile::exists(file); // else it was placed before, and the reply was lost
    const bool isThere = isNew
        ? std::rename(QFile::encodeName(file).constData(), QFile::encodeName(target).constData()) == 0
        : QFile::exists(object) || QFile::exists(list);
    if (isNew)
        QFile::remove(target == list ? object : list);
    return isThere ? std::nullopt : std::optional(Refusal{u"InternalError"_s, u"The object has gone"_s});
}

std::optional<Submissions::Refusal> Submissions::place(const QString &id, const QString &file)
{
    {
        const std::scoped_lock lock(m_mutex, m_stateMutex);
        NotaryLookup lookup = m_state.find(id);
        if (!lookup || !*lookup)
            return Refusal{u"InternalError"_s, lookup ? u"There is no such submission"_s : lookup.error()};
        NotaryRequest &request = **lookup;
        if (const auto refusal = moveToObject(request, file))
            return refusal;
        request.phase = Phase::uploaded;
        const auto stored = m_state.store(request);
        if (!stored)
            return Refusal{u"InternalError"_s, stored.error()};
        m_waiting.insert(id, Clock::now() + toolchain::notary::scaled(reviewPause));
    }
    m_changed.notify_all();
    return std::nullopt;
}

std::optional<NotaryRequest> Submissions::ask(const QString &id)
{
    {
        const std::scoped_lock lock(m_mutex);
        const auto waiting = m_waiting.find(id);
        if (waiting != m_waiting.end())
            *waiting = Clock::now();
    }
    m_changed.notify_all();
    const std::scoped_lock lock(m_stateMutex);
    return m_state.poll(id).valueOr(std::nullopt);
}

std::optional<NotaryRequest> Submissions::find(const QString &id) const
{
    return m_state.find(id).valueOr(std::nullopt);
}

QList<NotaryRequest> Submissions::all() const
{
    return m_state.history().requests;
}

QString Submissions::folderOf(const QString &id) const
{
    return m_folder + u"/uploads/"_s + id;
}

bool Submissions::isBusy()
{
    const std::scoped_lock lock(m_mutex);
    return !m_waiting.isEmpty() || !m_underReview.isEmpty();
}

QString Submissions::nextDue(std::unique_lock<std::mutex> &lock)
{
    while (!m_isEnding) {
        const auto first = std::min_element(m_waiting.begin(), m_waiting.end());
        if (first == m_waiting.end()) {
            m_changed.wait(lock);
            continue;
        }
        if (*first <= Clock::now())
            return first.key();
        m_changed.wait_until(lock, Clock::time_point(*first));
    }
    return {};
}

void Submissions::work()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        const QString id = nextDue(lock);
        if (id.isEmpty())
            return;
        m_waiting.remove(id);
        m_underReview = id;
        lock.unlock();
        const bool isKept = review(id);
        lock.lock();
        m_underReview.clear();
        if (!isKept) // the archive is still there, and there may be room for its verdict later
            m_waiting.insert(id, Clock::now() + toolchain::notary::scaledLimit(reviewPause, leastPause));
    }
}

bool Submissions::review(const QString &id)
{
    const NotaryLookup lookup = m_state.find(id);
    if (!lookup)
        return false;
    if (!*lookup)
        return true; // nobody has made it
    auto request = *lookup;
    const QString list = objectOf(id) + partListSuffix;
    if (QFile::exists(list) && (!joinParts(list, objectOf(id)) || !QFile::remove(list)))
        return false;
    m_review(*request, objectOf(id));
    {
        const std::scoped_lock lock(m_stateMutex);
        const auto now = find(id); // questions have been counted meanwhile
        request->polls = now ? now->polls : request->polls;
        request->phase = Phase::reviewed;
        request->decided = QDateTime::currentDateTimeUtc();
        if (!m_state.store(*request))
            return false;
    }
    QDir(folderOf(id)).removeRecursively();
    m_reviewed(*request);
    return true;
}

} // namespace notaryd
