#pragma once

#include "toolchain/loopbacksocket.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <functional>
#include <thread>

/// A server on loopback that answers every POST by a function, one connection after the other, on a thread of
/// its own.
class HttpAnswers {
public:
    enum class Manner {
        answering,
        silent, ///< takes the question and says nothing
        refusing ///< answers with status 503
    };

    explicit HttpAnswers(std::function<QByteArray(const QByteArray &body)> answer,
                         Manner manner = Manner::answering);
    ~HttpAnswers();
    HttpAnswers(const HttpAnswers &) = delete;
    HttpAnswers &operator=(const HttpAnswers &) = delete;

    [[nodiscard]] QString url() const;

private:
    void serve();
    void serveOne(int connection) const;

    const std::function<QByteArray(const QByteArray &)> m_answer;
    const Manner m_manner;
    const LoopbackSocket m_socket;
    std::atomic<bool> m_isEnding = false;
    std::thread m_thread;
};
