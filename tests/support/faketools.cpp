#include "support/faketools.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write " + path.toStdString());
}

QByteArray helpOfVersion(const char *version)
{
    return QByteArray("Usage: altool\nCopyright (c) 2009-2020, Apple Inc. Version ") + version + "\n";
}

} // namespace

FakeTools::FakeTools(const QString &folder)
    : m_root(folder)
{
    qputenv("SEALWRIGHT_FAKE_ROOT", m_root.toUtf8());
    for (const QString &path : {u"/usr/bin/xcrun"_s, u"/usr/bin/codesign"_s, u"/usr/bin/xattr"_s,
                                u"/usr/sbin/spctl"_s, u"/usr/bin/ditto"_s, u"/usr/bin/security"_s,
                                u"/usr/bin/hdiutil"_s, u"/usr/bin/productsign"_s, u"/usr/bin/osascript"_s})
        add(path);
    answer(u"security"_s,
           {.output = "  1) 0123456789ABCDEF \"Developer ID Application: Example Corp (A1B2C3D4E5)\"\n"
                      "     1 valid identities found\n"});
    answer(u"altool-h"_s, {.output = helpOfVersion("4.050.1203")});
    answer(u"altool--notarization-history"_s, {.output = "Notarization History - page 0\n"});
    answer(u"altool--notarize-app"_s, {.output = uploadReply()});
    answer(u"altool--notarization-info"_s, {.output = infoReport(u"success"_s)});
    answer(u"ditto"_s, {.content = "zip"});
}

QString FakeTools::answerFolder(const QString &tool, int run) const
{
    return m_root + u"/answers/"_s + tool + u'/' + (run == 0 ? u"always"_s : QString::number(run)) + u'/';
}

void FakeTools::add(const QString &path)
{
    const QString place = m_root + path;
    QDir().mkpath(place.left(place.lastIndexOf(u'/')));
    if (!QFile::link(QString::fromUtf8(SEALWRIGHT_FAKE_TOOL), place))
        throw std::runtime_error("cannot link " + place.toStdString());
}

void FakeTools::release(const QString &tool, int run)
{
    QFile::remove(answerFolder(tool, run) + u"hang"_s);
}

bool FakeTools::hasGoneOn(const QString &tool, int run) const
{
    return QFile::exists(answerFolder(tool, run) + u"released"_s);
}

void FakeTools::remove(const QString &path)
{
    QFile::remove(m_root + path);
}

void FakeTools::killCallerIn(const QString &tool, int run)
{
    const QString folder = m_root + u"/kills/"_s + tool + u'/';
    QDir().mkpath(folder);
    write(folder + QString::number(run), {});
}

void FakeTools::answer(const QString &tool, const ToolAnswer &answer)
{
    answerRun(tool, 0, answer);
}

void FakeTools::answerRun(const QString &tool, int run, const ToolAnswer &answer)
{
    const QString folder = answerFolder(tool, run);
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    write(folder + u"stdout"_s, answer.output);
    write(folder + u"stderr"_s, answer.error);
    write(folder + u"status"_s, QByteArray::number(answer.status));
    if (answer.signal)
        write(folder + u"signal"_s, QByteArray::number(answer.signal));
    if (answer.readsInput)
        write(folder + u"reads-input"_s, {});
    if (answer.hangs)
        write(folder + u"hang"_s, {});
    if (!answer.content.isNull()) {
        write(folder + u"content"_s, answer.content);
        write(folder + u"target"_s, answer.target.toUtf8());
    }
}

QByteArray FakeTools::inputOf(const QString &tool) const
{
    QFile file(m_root + u"/inputs/"_s + tool);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<ToolCall> FakeTools::calls() const
{
    QFile file(m_root + u"/calls"_s);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<ToolCall> calls;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.isEmpty())
            continue;
        QStringList words = QJsonDocument::fromJson(line).toVariant().toStringList();
        const QString tool = words.takeFirst();
        calls.append({tool, words});
    }
    return calls;
}

QList<QStringList> FakeTools::callsOf(const QString &tool) const
{
    QList<QStringList> found;
    for (const ToolCall &call : calls()) {
        if (call.tool == tool)
            found.append(call.arguments);
    }
    return found;
}

QStringList FakeTools::order() const
{
    QStringList names;
    for (const ToolCall &call : calls())
        names.append(call.tool);
    return names;
}

void FakeTools::forgetCalls()
{
    QFile::remove(m_root + u"/calls"_s);
}

QByteArray FakeTools::uploadReply(const QString &requestUUID)
{
    return u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>notarization-upload</key><dict><key>RequestUUID</key><string>%1</string></dict><key>success-message</key><string>No errors uploading.</string></dict></plist>\n"_s
        .arg(requestUUID)
        .toUtf8();
}

QByteArray FakeTools::infoReport(const QString &status, const QString &logFileURL)
{
    QString report = u"No errors getting notarization info.\n\n          Date: 2026-11-20 12:00:00 +0000\n"_s;
    if (!logFileURL.isNull())
        report += u"   LogFileURL: %1\n"_s.arg(logFileURL);
    report +=
        u"   RequestUUID: 1234-abcd\n        Status: %1\n   Status Code: 0\nStatus Message: Package Approved\n"_s
            .arg(status);
    return report.toUtf8();
}
