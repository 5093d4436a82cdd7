#include "formats/keychain/privatefile.h"

#include <QFile>

#include <sys/stat.h>

#include "formats/failures.h"

namespace toolchain {

platform::Outcome writePrivateFile(const QString &path, const QByteArray &bytes)
{
    const mode_t mask = umask(077);
    const platform::Outcome written = writeFileAt(QFile::encodeName(path).toStdString(), bytes);
    umask(mask);
    return written;
}

} // namespace toolchain
