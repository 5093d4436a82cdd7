#include "notarization/servicelog.h"

#include "notarization/pollinginfo.h"
#include "platform/urlreader.h"

namespace sealwright {

std::optional<QByteArray> contentsOfLogFile(platform::UrlReader &urls, const QString &report)
{
    const QUrl url(logFileURL(report));
    if (!url.isValid() || url.isEmpty())
        return std::nullopt;
    return urls.contentsOf(url);
}

} // namespace sealwright
