#include "platform/qt/osascript.h"

#include "platform/process.h"

#include <future>
#include <thread>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

/// Reads AppleScript's source form of strings and lists of strings from the front of a text.
class ReplyReader {
public:
    explicit ReplyReader(const QString &text)
        : m_rest(text)
    {
    }

    bool take(QStringView token)
    {
        m_rest = m_rest.trimmed();
        if (!m_rest.startsWith(token))
            return false;
        m_rest = m_rest.mid(token.size());
        return true;
    }

    std::optional<QString> takeString()
    {
        if (!take(u"\""))
            return std::nullopt;
        QString text;
        for (qsizetype i = 0; i < m_rest.size(); ++i) {
            if (m_rest[i] == u'"') {
                m_rest = m_rest.mid(i + 1);
                return text.isNull() ? u""_s : text;
            }
            const bool isEscaped = m_rest[i] == u'\\' && i + 1 < m_rest.size();
            text += isEscaped ? unescaped(m_rest[++i]) : m_rest[i];
        }
        return std::nullopt;
    }

    std::optional<QStringList> takeList()
    {
        QStringList list;
        if (!take(u"{"))
            return std::nullopt;
        if (take(u"}"))
            return list;
        do {
            const auto item = takeString();
            if (!item)
                return std::nullopt;
            list += *item;
        } while (take(u","));
        return take(u"}") ? std::optional(list) : std::nullopt;
    }

    bool isAtEnd() const { return m_rest.trimmed().isEmpty(); }

private:
    static QChar unescaped(QChar character)
    {
        switch (character.unicode()) {
        case u'n':
            return u'\n';
        case u'r':
            return u'\r';
        case u't':
            return u'\t';
        default:
            return character;
        }
    }

    QStringView m_rest;
};

std::optional<QStringList> listIn(const QString &reply)
{
    ReplyReader reader(reply);
    const auto list = reader.takeList();
    return reader.isAtEnd() ? list : std::nullopt;
}

std::optional<QString> fileIn(const QString &reply)
{
    ReplyReader reader(reply);
    if (!reader.take(u"POSIX file"))
        return std::nullopt;
    const auto path = reader.takeString();
    return reader.isAtEnd() ? path : std::nullopt;
}

/// Ends a process that lasts longer than it may.
class TimeLimit {
public:
    TimeLimit(Process &process, std::optional<std::chrono::milliseconds> limit)
    {
        if (limit)
            m_watch = std::thread([&process, limit = *limit, ended = m_ended.get_future()] {
                if (ended.wait_for(limit) == std::future_status::timeout)
                    process.terminate();
            });
    }
    ~TimeLimit()
    {
        m_ended.set_value();
        if (m_watch.joinable())
            m_watch.join();
    }
    TimeLimit(const TimeLimit &) = delete;
    TimeLimit &operator=(const TimeLimit &) = delete;

private:
    std::promise<void> m_ended;
    std::thread m_watch;
};

} // namespace

AppleScriptResult readOsascriptReply(int status, const QByteArray &output, const QByteArray &error)
{
    const QString reply = QString::fromUtf8(output);
    AppleScriptResult result;
    if (status == 0) {
        result.list = listIn(reply);
        result.file = fileIn(reply);
    }
    if (!result.list && !result.file)
        result.error = u""_s + QString::fromUtf8(error).trimmed();
    return result;
}

OsaScript::OsaScript(ProcessLauncher &launcher)
    : m_launcher(launcher)
{
}

AppleScriptResult OsaScript::execute(const QString &source, std::optional<std::chrono::milliseconds> limit)
{
    const auto process = m_launcher.process(u"/usr/bin/osascript"_s, {u"-s"_s, u"s"_s, u"-e"_s, source});
    if (const Outcome launched = process->launch(); !launched)
        return {std::nullopt, std::nullopt, launched.error()};
    const TimeLimit watch(*process, limit);
    QByteArray output;
    QByteArray error;
    process->waitUntilExit([&output](const QByteArray &chunk) { output += chunk; },
                           [&error](const QByteArray &all) { error += all; });
    output += process->readOutputToEnd();
    error += process->readErrorToEnd();
    return readOsascriptReply(process->terminationStatus(), output, error);
}

} // namespace platform
