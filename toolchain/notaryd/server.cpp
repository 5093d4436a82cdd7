#include "notaryd/server.h"

#include "notaryd/connection.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstring>

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t threadStack = 512 * 1024;
constexpr std::size_t connectionMemory = 160 * 1024;
constexpr unsigned mostConnections = 600;
constexpr unsigned idleConnectionSeconds = 300;
constexpr const char *protocols = "NORMAL:-VERS-TLS1.0:-VERS-TLS1.1"; // RFC 8996

std::atomic<Clock::rep> lastUse = 0;
std::atomic<int> openConnections = 0;

void noteUse()
{
    lastUse = Clock::now().time_since_epoch().count();
}

void *startRequest(void *user, const char *requestLine, MHD_Connection *)
{
    noteUse();
    return new Connection(*static_cast<Service *>(user), requestLine);
}

MHD_Result proceed(void *, MHD_Connection *connection, const char *, const char *method, const char *,
                   const char *bytes, std::size_t *length, void **request)
{
    return static_cast<Connection *>(*request)->proceed(connection, method, bytes, length);
}

void endRequest(void *, MHD_Connection *, void **request, MHD_RequestTerminationCode)
{
    noteUse();
    delete static_cast<Connection *>(*request);
    *request = nullptr;
}

void noteConnection(void *, MHD_Connection *, void **, MHD_ConnectionNotificationCode code)
{
    noteUse();
    openConnections += code == MHD_CONNECTION_NOTIFY_STARTED ? 1 : -1;
}

struct SocketAddress {
    sockaddr_storage storage = {};
    bool isSix = false;
    bool isNumber = false;
};

SocketAddress socketAddress(const ListenAddress &address)
{
    SocketAddress result;
    const QByteArray host = address.host.toLatin1();
    auto &four = reinterpret_cast<sockaddr_in &>(result.storage);
    auto &six = reinterpret_cast<sockaddr_in6 &>(result.storage);
    if (inet_pton(AF_INET, host.constData(), &four.sin_addr) == 1) {
        four.sin_family = AF_INET;
        four.sin_port = htons(address.port);
        result.isNumber = true;
    } else if (inet_pton(AF_INET6, host.constData(), &six.sin6_addr) == 1) {
        six.sin6_family = AF_INET6;
        six.sin6_port = htons(address.port);
        result.isSix = result.isNumber = true;
    }
    return result;
}

using ListenOptions = std::array<MHD_OptionItem, 2>;

/// An address to listen at, or a socket that listens already.
ListenOptions optionsOf(const ListenAddress &address, SocketAddress &place)
{
    const MHD_OptionItem end{MHD_OPTION_END, 0, nullptr};
    if (address.socket >= 0)
        return {MHD_OptionItem{MHD_OPTION_LISTEN_SOCKET, address.socket, nullptr}, end};
    return {MHD_OptionItem{MHD_OPTION_SOCK_ADDR, 0, &place.storage}, end};
}

void ignoreText(void *, const char *, va_list) { }

} // namespace

Server::Server(Service &service)
    : m_service(service)
{
}

Server::~Server()
{
    m_service.isEnding = true;
    if (m_daemon)
        MHD_stop_daemon(m_daemon);
}

platform::Outcome Server::listen(const ListenAddress &address, const ServerCertificate &certificate)
{
    std::signal(SIGPIPE, SIG_IGN);
    noteUse();
    SocketAddress place = socketAddress(address);
    if (!place.isNumber)
        return platform::Error{u"'%1' is no address of this machine"_s.arg(address.host)};
    const unsigned flags = MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_THREAD_PER_CONNECTION | MHD_USE_POLL
        | MHD_USE_TLS | MHD_USE_SUPPRESS_DATE_NO_CLOCK | MHD_USE_ITC
        | (place.isSix ? unsigned(MHD_USE_IPv6) : 0U);
    const auto listening = optionsOf(address, place);
    m_daemon = MHD_start_daemon(flags, 0, nullptr, nullptr, proceed, nullptr, //
                                MHD_OPTION_EXTERNAL_LOGGER, ignoreText, nullptr, //
                                MHD_OPTION_ARRAY, listening.data(), //
                                MHD_OPTION_HTTPS_MEM_KEY, certificate.key.constData(), //
                                MHD_OPTION_HTTPS_MEM_CERT, certificate.chain.constData(), //
                                MHD_OPTION_HTTPS_PRIORITIES, protocols, //
                                MHD_OPTION_URI_LOG_CALLBACK, startRequest, &m_service, //
                                MHD_OPTION_NOTIFY_COMPLETED, endRequest, nullptr, //
                                MHD_OPTION_NOTIFY_CONNECTION, noteConnection, nullptr, //
                                MHD_OPTION_THREAD_STACK_SIZE, threadStack, //
                                MHD_OPTION_CONNECTION_MEMORY_LIMIT, connectionMemory, //
                                MHD_OPTION_CONNECTION_LIMIT, mostConnections, //
                                MHD_OPTION_CONNECTION_TIMEOUT, idleConnectionSeconds, //
                                MHD_OPTION_END);
    if (!m_daemon)
        return platform::Error{u"cannot listen at %1 port %2: %3"_s.arg(
            address.host, QString::number(address.port), QString::fromLocal8Bit(std::strerror(errno)))};
    return {};
}

quint16 Server::port() const
{
    const MHD_DaemonInfo *info =
        m_daemon ? MHD_get_daemon_info(m_daemon, MHD_DAEMON_INFO_BIND_PORT) : nullptr;
    return info ? info->port : 0;
}

std::chrono::seconds Server::idleFor() const
{
    if (openConnections > 0)
        return std::chrono::seconds(0);
    return std::chrono::duration_cast<std::chrono::seconds>(Clock::now().time_since_epoch()
                                                            - Clock::duration(lastUse.load()));
}

} // namespace notaryd
