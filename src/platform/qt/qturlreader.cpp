#include "platform/qt/qturlreader.h"

#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

using Patience = QtUrlReader::Patience;

constexpr qint64 mostBytes = 64LL * 1024 * 1024;

std::optional<QByteArray> contentsOfFile(const QString &path)
{
    const QFileInfo information(path); // a pipe or a device may never end
    QFile file(path);
    if (!information.isFile() || information.size() > mostBytes || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray contents = file.read(mostBytes);
    return file.error() == QFileDevice::NoError ? std::optional(contents) : std::nullopt;
}

/// Without compression the length that the server tells is the length of what is read. A compression that is
/// not refused is undone by the library.
enum class Compression { refused, undone };

QNetworkRequest requestFor(const QUrl &url, Compression compression, Patience patience)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setTransferTimeout(static_cast<int>(patience.silence.count()));
    if (compression == Compression::refused)
        request.setRawHeader("Accept-Encoding", "identity");
    return request;
}

std::unique_ptr<QNetworkReply> finishedReply(QNetworkAccessManager &manager, const QNetworkRequest &request,
                                             Patience patience)
{
    std::unique_ptr<QNetworkReply> reply(manager.get(request));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(reply.get(), &QNetworkReply::downloadProgress, reply.get(),
                     [&](qint64 received, qint64) {
                         if (received > mostBytes)
                             reply->abort();
                     });
    QTimer::singleShot(patience.answer, reply.get(), &QNetworkReply::abort);
    if (!reply->isFinished())
        loop.exec();
    return reply;
}

bool isCompressed(const QNetworkReply &reply)
{
    const QByteArray encoding = reply.rawHeader("Content-Encoding").trimmed().toLower();
    return !encoding.isEmpty() && encoding != "identity";
}

std::optional<QByteArray> contentsOfAddress(const QUrl &url, Patience patience)
{
    QNetworkAccessManager manager;
    auto reply = finishedReply(manager, requestFor(url, Compression::refused, patience), patience);
    if (reply->error() == QNetworkReply::NoError && isCompressed(*reply)) { // whatever it has been asked for
        reply = finishedReply(manager, requestFor(url, Compression::undone, patience), patience);
        return reply->error() == QNetworkReply::NoError ? std::optional(reply->readAll()) : std::nullopt;
    }
    if (reply->error() != QNetworkReply::NoError)
        return std::nullopt;
    const QByteArray contents = reply->readAll();
    const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid() && length.toLongLong() != contents.size())
        return std::nullopt;
    return contents;
}

} // namespace

QtUrlReader::QtUrlReader()
    : QtUrlReader(Patience())
{
}

std::optional<QByteArray> QtUrlReader::contentsOf(const QUrl &url)
{
    if (url.isLocalFile())
        return contentsOfFile(url.toLocalFile());
    const QString scheme = url.scheme();
    if (scheme != "http"_L1 && scheme != "https"_L1)
        return std::nullopt;
    return contentsOfAddress(url, m_patience);
}

} // namespace platform
