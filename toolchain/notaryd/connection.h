#pragma once

#include "notaryd/service.h"

#include <microhttpd.h>

#include <chrono>

namespace notaryd {

/// One request on its connection, from the request line to the last byte of the reply, with the faults that
/// meet it. Lives in the connection's own thread, which it may block.
class Connection {
public:
    Connection(Service &service, const char *requestLine);

    /// Takes what libmicrohttpd hands over, in its order: once without a body, with each part of it, and once
    /// more.
    [[nodiscard]] MHD_Result proceed(MHD_Connection *connection, const char *method, const char *bytes,
                                     std::size_t *length);

    /// The next bytes of a reply that is held back; as libmicrohttpd's content readers answer.
    [[nodiscard]] ssize_t read(quint64 position, char *bytes, std::size_t room);

private:
    enum class Stage { fresh, body, done };

    [[nodiscard]] MHD_Result begin(const char *method);
    [[nodiscard]] MHD_Result takeBody(const char *bytes, std::size_t *length);
    [[nodiscard]] MHD_Result finish();
    [[nodiscard]] MHD_Result answer(Response response);
    [[nodiscard]] MHD_Result send(const Response &response);
    [[nodiscard]] MHD_Result tearDown();
    [[nodiscard]] std::optional<Response> ordered() const;
    void readRequest(const char *method);
    void reset() const;
    /// False if the other side or the service has gone meanwhile.
    [[nodiscard]] bool waitFor(double seconds) const;
    [[nodiscard]] bool isPeerThere() const;
    [[nodiscard]] bool is(const char16_t *fault) const;
    [[nodiscard]] int socket() const;

    Service &m_service;
    const QByteArray m_target;
    MHD_Connection *m_connection = nullptr;
    Request m_request;
    std::unique_ptr<Handler> m_handler;
    std::optional<Fault> m_fault;
    std::optional<Fault> m_slowRead;
    std::optional<Fault> m_delay;
    Stage m_stage = Stage::fresh;
    qint64 m_number = 0; ///< among the recorded questions
    qint64 m_received = 0;
    Response m_reply; ///< while its bytes are held back
    bool m_hasStalled = false;
};

} // namespace notaryd
