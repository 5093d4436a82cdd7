#include "state/instanttools.h"

#include "support/faketools.h"

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

const QString infoTool = u"altool--notarization-info"_s;
const QString uploadTool = u"altool--notarize-app"_s;

/// "altool--notarize-app" and the like for the tools that are several in one.
QString toolName(const QString &path, QStringList arguments)
{
    QString name = path.mid(path.lastIndexOf(u'/') + 1);
    if (name == "xcrun"_L1 && !arguments.isEmpty())
        name = arguments.takeFirst();
    if (name == "altool"_L1 && !arguments.isEmpty())
        name += arguments.first();
    return name;
}

} // namespace

class InstantTools::InstantProcess : public platform::Process {
public:
    InstantProcess(InstantTools &tools, const QString &tool, QStringList arguments)
        : m_tools(tools)
        , m_tool(tool)
        , m_arguments(std::move(arguments))
    {
    }

    void setInput(const QByteArray &) override { }
    platform::Outcome launch() override
    {
        m_answer = m_tools.takeAnswer(m_tool);
        return platform::Outcome::success();
    }

    void waitUntilExit(const DataHandler &output, const DataHandler &error) override
    {
        const bool isPoll = m_tool == infoTool && m_arguments.value(2).toInt() > 0; // of one of our uploads
        const QString request = isPoll ? m_arguments.value(2) : QString();
        m_tools.enterQuery(request);
        if (m_answer.hangs)
            hang();
        m_tools.leaveQuery(request);
        if (m_answer.status == 0 && m_tools.effect)
            m_tools.effect(m_tool, m_arguments);
        if (!m_answer.output.isEmpty())
            output(m_answer.output);
        if (!m_answer.error.isEmpty())
            error(m_answer.error);
    }

    QByteArray readOutputToEnd() override { return {}; }
    QByteArray readErrorToEnd() override { return {}; }
    int terminationStatus() const override { return m_answer.status; }

    void terminate() override
    {
        const std::scoped_lock lock(m_tools.m_mutex);
        m_isTerminated = true;
        m_tools.m_hanging.remove(this);
        m_tools.m_changed.notify_all();
    }

private:
    void hang()
    {
        std::unique_lock lock(m_tools.m_mutex);
        if (!m_isTerminated)
            m_tools.m_hanging.insert(this);
        m_tools.m_changed.wait(lock, [this] { return !m_tools.m_hanging.contains(this); });
        if (m_isTerminated)
            m_answer = {.status = SIGTERM};
    }

    InstantTools &m_tools;
    const QString m_tool;
    const QStringList m_arguments;
    Answer m_answer;
    bool m_isTerminated = false;
};

InstantTools::InstantTools()
{
    m_usual = {
        {u"altool-h"_s, {.output = "Copyright (c) 2020, Apple Inc. Version 4.050.1203\n"}},
        {u"altool--notarization-history"_s, {.output = "Notarization History - page 0\n"}},
        {u"altool--list-providers"_s, {.output = "<plist version=\"1.0\"><dict/></plist>"}},
        {infoTool, {.output = FakeTools::infoReport(u"success"_s)}},
        {u"sh"_s,
         {.output = "1) AA \"Developer ID Application: Example Corp (A1B2C3D4E5)\"\n"
                    "2) BB \"Developer ID Installer: Example Corp (A1B2C3D4E5)\"\n"}},
        {u"spctl"_s, {.error = "item: accepted\n"}},
        {u"file"_s, {.output = "Mach-O 64-bit x86_64 executable\n"}},
    };
}

void InstantTools::answerNext(const QString &tool, const Answer &answer)
{
    const std::scoped_lock lock(m_mutex);
    m_next[tool] = {answer};
}

void InstantTools::releaseAll()
{
    const std::scoped_lock lock(m_mutex);
    m_hanging.clear();
    m_changed.notify_all();
}

int InstantTools::hanging() const
{
    const std::scoped_lock lock(m_mutex);
    return int(m_hanging.size());
}

int InstantTools::mostQueriesAtOnce() const
{
    const std::scoped_lock lock(m_mutex);
    return m_mostQueries;
}

InstantTools::Answer InstantTools::takeAnswer(const QString &tool)
{
    const std::scoped_lock lock(m_mutex);
    auto next = m_next.find(tool);
    if (next != m_next.end() && !next->isEmpty())
        return next->takeFirst();
    if (tool == uploadTool)
        return {.output = FakeTools::uploadReply(QString::number(++m_uploads))};
    return m_usual.value(tool);
}

void InstantTools::enterQuery(const QString &request)
{
    if (request.isNull())
        return;
    const std::scoped_lock lock(m_mutex);
    m_mostQueries = qMax(m_mostQueries, ++m_queries[request]);
}

void InstantTools::leaveQuery(const QString &request)
{
    if (request.isNull())
        return;
    const std::scoped_lock lock(m_mutex);
    --m_queries[request];
}

std::shared_ptr<platform::Process> InstantTools::process(const QString &path, const QStringList &arguments)
{
    return std::make_shared<InstantProcess>(*this, toolName(path, arguments), arguments);
}

platform::Outcome InstantTools::launchDetached(const QString &, const QStringList &)
{
    return platform::Outcome::success();
}
