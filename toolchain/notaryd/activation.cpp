#include "notaryd/activation.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace notaryd {

namespace {

constexpr int firstHanded = 3; // SD_LISTEN_FDS_START

bool isMeantForUs()
{
    return qEnvironmentVariableIntValue("LISTEN_PID") == getpid()
        && qEnvironmentVariableIntValue("LISTEN_FDS") == 1;
}

/// Nothing for what is no socket of the internet.
std::optional<ListenAddress> addressOf(int descriptor)
{
    sockaddr_storage storage = {};
    socklen_t length = sizeof storage;
    if (getsockname(descriptor, reinterpret_cast<sockaddr *>(&storage), &length) != 0)
        return std::nullopt;
    const bool isSix = storage.ss_family == AF_INET6;
    const auto &four = reinterpret_cast<const sockaddr_in &>(storage);
    const auto &six = reinterpret_cast<const sockaddr_in6 &>(storage);
    const void *number = isSix ? static_cast<const void *>(&six.sin6_addr) : &four.sin_addr;
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (!isSix && storage.ss_family != AF_INET)
        return std::nullopt;
    inet_ntop(storage.ss_family, number, text.data(), socklen_t(text.size()));
    return ListenAddress{QString::fromLatin1(text.data()), ntohs(isSix ? six.sin6_port : four.sin_port),
                         descriptor};
}

} // namespace

std::optional<ListenAddress> handedSocket()
{
    const bool isHanded = isMeantForUs();
    for (const char *variable : {"LISTEN_PID", "LISTEN_FDS", "LISTEN_FDNAMES"})
        unsetenv(variable);
    if (!isHanded)
        return std::nullopt;
    fcntl(firstHanded, F_SETFD, FD_CLOEXEC);
    fcntl(firstHanded, F_SETFL, fcntl(firstHanded, F_GETFL) | O_NONBLOCK);
    return addressOf(firstHanded);
}

} // namespace notaryd
