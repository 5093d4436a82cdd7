#include "formats/keychain/privatefile.h"

#include <QFile>

#include "formats/failures.h"

namespace toolchain {

platform::Outcome writePrivateFile(const QString &path, const QByteArray &bytes)
{
    return writeFileAt(QFile::encodeName(path).toStdString(), bytes, Readers::ownerAlone);
}

} // namespace toolchain
