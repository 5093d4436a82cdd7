#include "notaryd/connection.h"

#include "notaryd/query.h"
#include "notaryd/replies.h"

#include <QLocale>
#include <QUrl>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>

#include "formats/notary/serviceconfig.h"

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto longestSlice = std::chrono::milliseconds(50);
constexpr double forEver = 1e9; // seconds

MHD_Result keepHeader(void *user, MHD_ValueKind, const char *name, const char *value)
{
    static_cast<Request *>(user)->headers.insert(QByteArray(name).toLower(), QByteArray(value));
    return MHD_YES;
}

/// The storage's objects have addresses of two kinds, and one of them names the bucket in the host
/// (https://docs.aws.amazon.com/AmazonS3/latest/userguide/VirtualHosting.html).
QByteArray placeOf(const Request &request)
{
    const bool namesBucket = request.headers.value("host").startsWith(Submissions::bucket + '.');
    return namesBucket ? "/s3/" + Submissions::bucket + request.askedPath : request.askedPath;
}

bool isLoopbackPeer(MHD_Connection *connection)
{
    const auto *info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS);
    if (!info || !info->client_addr)
        return false;
    if (info->client_addr->sa_family == AF_INET)
        return ntohl(reinterpret_cast<const sockaddr_in *>(info->client_addr)->sin_addr.s_addr) >> 24
            == IN_LOOPBACKNET;
    const auto &six = reinterpret_cast<const sockaddr_in6 *>(info->client_addr)->sin6_addr;
    return IN6_IS_ADDR_LOOPBACK(&six) || (IN6_IS_ADDR_V4MAPPED(&six) && six.s6_addr[12] == IN_LOOPBACKNET);
}

ssize_t readHeldBack(void *user, std::uint64_t position, char *bytes, std::size_t room)
{
    return static_cast<Connection *>(user)->read(position, bytes, room);
}

QByteArray httpDate(const QDateTime &time)
{
    return QLocale::c().toString(time.toUTC(), u"ddd, dd MMM yyyy HH:mm:ss 'GMT'"_s).toLatin1();
}

} // namespace

Connection::Connection(Service &service, const char *requestLine)
    : m_service(service)
    , m_target(requestLine)
{
}

bool Connection::is(const char16_t *fault) const
{
    return m_fault && m_fault->name == QStringView(fault);
}

int Connection::socket() const
{
    const auto *info = MHD_get_connection_info(m_connection, MHD_CONNECTION_INFO_CONNECTION_FD);
    return info ? info->connect_fd : -1;
}

bool Connection::isPeerThere() const
{
    pollfd watched{socket(), POLLRDHUP, 0};
    return !m_service.isEnding && poll(&watched, 1, 0) == 0;
}

bool Connection::waitFor(double seconds) const
{
    const auto end = Clock::now()
        + std::chrono::duration_cast<Clock::duration>(
                         std::chrono::duration<double>(std::min(seconds, forEver)));
    while (Clock::now() < end) {
        if (!isPeerThere())
            return false;
        std::this_thread::sleep_for(std::min<Clock::duration>(longestSlice, end - Clock::now()));
    }
    return !m_service.isEnding;
}

/// Linux answers the dissolving of a connected socket with a reset on the wire.
void Connection::reset() const
{
    const sockaddr none{.sa_family = AF_UNSPEC, .sa_data = {}};
    static_cast<void>(connect(socket(), &none, sizeof none));
}

MHD_Result Connection::tearDown()
{
    m_service.recordAnswer(m_number, 0);
    if (is(u"reset"))
        reset();
    m_stage = Stage::done;
    return MHD_NO;
}

void Connection::readRequest(const char *method)
{
    const qsizetype mark = m_target.indexOf('?');
    m_request.method = method;
    m_request.askedPath = mark < 0 ? m_target : m_target.left(mark);
    m_request.query = mark < 0 ? Query() : queryIn(m_target.mid(mark + 1));
    MHD_get_connection_values(m_connection, MHD_HEADER_KIND, keepHeader, &m_request);
    m_request.path = placeOf(m_request);
    m_request.isFromLoopback = isLoopbackPeer(m_connection);
}

/// The reply that a fault puts in the place of the service's own, whatever the request is.
std::optional<Response> Connection::ordered() const
{
    if (is(u"status"))
        return faultReply(*m_fault);
    const bool isLate = m_fault && m_fault->member(u"late"_s).toBool();
    const bool wantsLate = m_stage == Stage::done;
    if (is(u"s3-error") && isLate == wantsLate)
        return storageError(m_fault->value.isObject() ? m_fault->member(u"code"_s).toString()
                                                      : m_fault->value.toString());
    return std::nullopt;
}

MHD_Result Connection::proceed(MHD_Connection *connection, const char *method, const char *bytes,
                               std::size_t *length)
{
    m_connection = connection;
    if (m_stage == Stage::done)
        return MHD_NO;
    if (m_stage == Stage::fresh)
        return begin(method);
    return *length > 0 ? takeBody(bytes, length) : finish();
}

MHD_Result Connection::begin(const char *method)
{
    readRequest(method);
    m_number = m_service.recordQuestion(m_request);
    m_stage = Stage::body;
    if (!m_request.path.startsWith("/control/")) {
        m_fault = m_service.faults().outcome(m_request);
        m_slowRead = m_service.faults().named(u"slow-read"_s, m_request);
        m_delay = m_service.faults().named(u"delay"_s, m_request);
    }
    if (m_delay && !waitFor(m_delay->number(forEver)))
        return tearDown();
    const auto instead = ordered();
    if (instead)
        return answer(*instead);
    m_handler = m_service.handlerFor(m_request);
    const Response refusal = m_handler->begin();
    return refusal.status != 0 ? answer(refusal) : MHD_YES;
}

MHD_Result Connection::takeBody(const char *bytes, std::size_t *length)
{
    m_received += qint64(*length);
    const bool isResetHere =
        is(u"reset") && m_fault->value.isDouble() && double(m_received) >= m_fault->number(0);
    if (isResetHere)
        return tearDown();
    if (m_slowRead && !waitFor(double(*length) / m_slowRead->number(1)))
        return tearDown();
    static_cast<void>(m_handler->take(bytes, qint64(*length)));
    *length = 0;
    return MHD_YES;
}

MHD_Result Connection::finish()
{
    m_stage = Stage::done;
    const auto late = ordered();
    if (late)
        return answer(*late);
    Response response = m_handler->end();
    m_handler.reset(); // a file that was not wanted is gone before its sender knows
    if (is(u"complete-error"))
        response = storageError(m_fault->value.toString());
    if (is(u"complete-error"))
        response.status = 200;
    return answer(std::move(response));
}

MHD_Result Connection::answer(Response response)
{
    const bool hasNothingToHoldBack = is(u"stall") && response.body.isEmpty(); // but the whole reply
    if (hasNothingToHoldBack && !waitFor(m_fault->number(forEver)))
        return tearDown();
    const bool hasNothingToCut = is(u"cut") && response.body.isEmpty(); // but its headers
    if (is(u"close") || is(u"reset") || hasNothingToCut)
        return tearDown();
    if (m_fault)
        response = spoilt(std::move(response), *m_fault);
    m_stage = Stage::done;
    m_service.recordAnswer(m_number, response.status);
    return send(response);
}

MHD_Result Connection::send(const Response &response)
{
    m_reply = response;
    const bool isHeldBack = is(u"cut") || is(u"drip") || is(u"stall");
    MHD_Response *reply = isHeldBack
        ? MHD_create_response_from_callback(quint64(m_reply.body.size()), 4096, readHeldBack, this, nullptr)
        : MHD_create_response_from_buffer(std::size_t(m_reply.body.size()), m_reply.body.data(),
                                          MHD_RESPMEM_MUST_COPY);
    if (!m_reply.type.isEmpty())
        MHD_add_response_header(reply, "Content-Type", m_reply.type.constData());
    MHD_add_response_header(reply, "Date", httpDate(m_service.now(m_request)).constData());
    for (const auto &[name, value] : m_reply.headers)
        MHD_add_response_header(reply, name.constData(), value.constData());
    const MHD_Result result = MHD_queue_response(m_connection, unsigned(m_reply.status), reply);
    MHD_destroy_response(reply);
    return result;
}

ssize_t Connection::read(quint64 position, char *bytes, std::size_t room)
{
    qint64 length = std::min<qint64>(qint64(room), m_reply.body.size() - qint64(position));
    if (is(u"cut")) {
        length = std::min(length, qint64(m_fault->number(0)) - qint64(position));
        if (length <= 0)
            return MHD_CONTENT_READER_END_WITH_ERROR;
    }
    if (is(u"stall") && !m_hasStalled) {
        const qint64 half = m_reply.body.size() / 2 - qint64(position);
        m_hasStalled = half <= 0;
        if (m_hasStalled && !waitFor(m_fault->number(forEver)))
            return MHD_CONTENT_READER_END_WITH_ERROR;
        length = half > 0 ? std::min(length, half) : length;
    }
    if (is(u"drip")) {
        const double rate = m_fault->number(1);
        length = std::min<qint64>(length, std::max<qint64>(1, qint64(rate / 10)));
        if (!waitFor(double(length) / rate))
            return MHD_CONTENT_READER_END_WITH_ERROR;
    }
    std::copy_n(m_reply.body.constData() + position, length, bytes);
    return length;
}

} // namespace notaryd
