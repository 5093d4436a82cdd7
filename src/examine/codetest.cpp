#include "examine/codetest.h"

#include "signing/machonumbers.h"
#include "signing/scandecisions.h"

#include <QFile>
#include <QProcess>
#include <QtEndian>

#include <optional>

using namespace Qt::StringLiterals;

namespace sealwright::examine {

namespace {

using namespace macho;

/// As far into a file as its report is sure to be made from what is there.
constexpr quint32 surelyRead = 1 << 19;

bool isNamed(quint32 cpu)
{
    return cpu == cpuX86_64 || cpu == cpuArm64 || cpu == cpuArm64_32;
}

std::optional<bool> thinAnswer(QByteArrayView bytes)
{
    const auto magic = qFromLittleEndian<quint32>(bytes.data());
    const auto cpu = qFromLittleEndian<quint32>(bytes.data() + 4);
    if (magic == thin64)
        return isNamed(cpu);
    if (magic == thin32 && !isNamed(cpu))
        return false;
    return {};
}

std::optional<bool> universalAnswer(QByteArrayView bytes)
{
    const auto count = qFromBigEndian<quint32>(bytes.data() + 4);
    if (count == 0 || count > mostArchitectures || bytes.size() < universalHeader + count * universalEntry)
        return {};
    const char *entries = bytes.data() + universalHeader;
    for (quint32 i = 1; i < count; ++i) {
        if (isNamed(qFromBigEndian<quint32>(entries + i * universalEntry)))
            return true; // told with a blank in front, whatever lies at its place
    }
    const auto offset = qFromBigEndian<quint32>(entries + 8);
    if (!isNamed(qFromBigEndian<quint32>(entries)))
        return offset < surelyRead ? std::optional(false) : std::nullopt;
    return {};
}

/// Whether the report can name an architecture at all: only what stands in a file finds its way into it.
bool mayNameArchitecture(QByteArrayView bytes)
{
    return bytes.contains("x86_64") || bytes.contains("arm64");
}

std::optional<bool> answerByBytes(QByteArrayView bytes)
{
    if (bytes.size() < universalHeader)
        return false;
    if (const auto thin = thinAnswer(bytes))
        return thin;
    const auto magic = qFromBigEndian<quint32>(bytes.data());
    if (magic == universal)
        return universalAnswer(bytes);
    if (magic == thin64 || magic == thin32)
        return {}; // of the other byte order
    return mayNameArchitecture(bytes) ? std::nullopt : std::optional(false);
}

} // namespace

CodeTest::CodeTest(QString fileTool)
    : m_tool(fileTool.isEmpty() ? u"/usr/bin/file"_s : std::move(fileTool))
    , m_isHostTool(m_tool == "/usr/bin/file"_L1)
{
}

bool CodeTest::isCode(const QString &path) const
{
    if (!m_isHostTool)
        return asksTool(path);
    constexpr qint64 tellingBytes = 4096;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray beginning = file.read(tellingBytes);
    const auto answer = answerByBytes(beginning);
    return answer ? *answer : asksTool(path);
}

bool CodeTest::asksTool(const QString &file) const
{
    QProcess tool;
    tool.start(m_tool, {u"-b"_s, file});
    constexpr int patience = 60'000; // milliseconds
    if (!tool.waitForFinished(patience) || tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0)
        return false;
    return namesSignableCode(QString::fromUtf8(tool.readAllStandardOutput()));
}

} // namespace sealwright::examine
