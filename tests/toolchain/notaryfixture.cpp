#include "toolchain/notaryfixture.h"

#include "toolchain/bundlebuilder.h"

#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace toolchain::notary;

namespace {

const QString service = u"/usr/bin/sealwright-notaryd"_s;

} // namespace

void NotaryFixture::SetUp()
{
    ToolFixture::SetUp();
    storePassword();
    const ToolResult started = run(service, {u"--control"_s});
    ASSERT_EQ(started.status, 0) << started.error.toStdString();
    ASSERT_TRUE(started.output.startsWith(u"https://127.0.0.1:"_s)) << started.output.toStdString();
}

ServiceConfig NotaryFixture::config() const
{
    const auto config = serviceConfigFrom(bundlebuilder::readFile(statePath(u"notary/service.json"_s)));
    EXPECT_TRUE(config) << config.error().toStdString();
    return config.valueOr({});
}

QString NotaryFixture::origin() const
{
    return QString(config().api).remove(u"/notary/v2"_s);
}

HttpReply NotaryFixture::ask(const QByteArray &method, const QString &path, const QByteArray &body,
                             const QList<HttpHeader> &headers) const
{
    HttpClient client(config());
    HttpRequest request;
    request.method = method;
    request.url = (origin() + path).toUtf8();
    request.body = body;
    request.headers = headers;
    return client.perform(request);
}

int NotaryFixture::setFaults(const QByteArray &json) const
{
    return ask("POST", u"/control/faults"_s, json).status;
}

QJsonArray NotaryFixture::requests() const
{
    return QJsonDocument::fromJson(ask("GET", u"/control/requests"_s).body).array();
}

void NotaryFixture::forgetRequests() const
{
    EXPECT_EQ(ask("POST", u"/control/reset"_s).status, 200);
}

QByteArray faultAt(const NotaryCall &call, const char *name, int count, const QByteArray &value)
{
    return QByteArray("[{\"fault\":\"") + name + "\",\"path\":\"" + call.pattern + "\",\"method\":\""
        + call.method + "\",\"skip\":" + QByteArray::number(call.skip)
        + ",\"count\":" + QByteArray::number(count) + (value.isEmpty() ? "" : ",\"value\":" + value) + "}]";
}

int NotaryFixture::requestsTo(const NotaryCall &call) const
{
    const QRegularExpression pattern(QString::fromLatin1(call.pattern));
    int count = 0;
    for (const QJsonValue &request : requests()) {
        const bool fits = pattern.match(request[u"path"].toString()).hasMatch();
        count += fits && request[u"method"].toString() == QLatin1StringView(call.method) ? 1 : 0;
    }
    return count;
}

QStringList NotaryFixture::commandFor(const NotaryCall &call, const QString &archive,
                                      const QString &uuid) const
{
    QStringList words{u"altool"_s, u"-u"_s, u"me"_s, u"-p"_s, u"@keychain:item"_s};
    if (&call == &listing)
        return words << u"--notarization-history"_s << u"0"_s;
    if (call.method != QByteArrayView("GET"))
        return words << u"--notarize-app"_s << u"-f"_s << archive << u"--primary-bundle-id"_s << u"a.b"_s;
    return words << u"--notarization-info"_s << uuid;
}

QString NotaryFixture::makeArchive(const QString &name, qint64 size) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("PK\3\4 and nothing that an archive has behind it");
    file.resize(size);
    return file.fileName();
}

QString NotaryFixture::decidedRequest() const
{
    const QString uuid = uuidIn(upload(makeArchive()));
    const ToolResult report = pollToTheEnd(uuid);
    EXPECT_TRUE(report.output.contains(u"Status: invalid"_s)) << report.output.toStdString();
    return uuid;
}
