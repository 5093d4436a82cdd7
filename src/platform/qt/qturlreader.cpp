#include "platform/qt/qturlreader.h"

#include <QEventLoop>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <memory>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

std::optional<QByteArray> contentsOfFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray contents = file.readAll();
    return file.error() == QFileDevice::NoError ? std::optional(contents) : std::nullopt;
}

std::unique_ptr<QNetworkReply> finishedReply(QNetworkAccessManager &manager, const QUrl &url)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    // Without compression the length that the server tells is the length of what is read.
    request.setRawHeader("Accept-Encoding", "identity");
    std::unique_ptr<QNetworkReply> reply(manager.get(request));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply->isFinished())
        loop.exec();
    return reply;
}

std::optional<QByteArray> contentsOfAddress(const QUrl &url)
{
    QNetworkAccessManager manager;
    const auto reply = finishedReply(manager, url);
    if (reply->error() != QNetworkReply::NoError)
        return std::nullopt;
    const QByteArray contents = reply->readAll();
    const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
    if (length.isValid() && length.toLongLong() != contents.size())
        return std::nullopt;
    return contents;
}

} // namespace

std::optional<QByteArray> QtUrlReader::contentsOf(const QUrl &url)
{
    if (url.isLocalFile())
        return contentsOfFile(url.toLocalFile());
    const QString scheme = url.scheme();
    if (scheme != "http"_L1 && scheme != "https"_L1)
        return std::nullopt;
    return contentsOfAddress(url);
}

} // namespace platform
