#include "formats/keychain/privatefile.h"

#include <QFile>

#include <sys/stat.h>

#include "support/wholefile.h"

namespace toolchain {

platform::Outcome writePrivateFile(const QString &path, const QByteArray &bytes)
{
    const mode_t mask = umask(077);
    const std::string error = writeWholeFile(QFile::encodeName(path).toStdString(),
                                             {bytes.constData(), static_cast<std::size_t>(bytes.size())});
    umask(mask);
    if (!error.empty())
        return platform::Error{QString::fromStdString(error)};
    return {};
}

} // namespace toolchain
