#include "formats/keychain/privatefile.h"

#include <QFile>

#include "formats/failures.h"

namespace toolchain {

platform::Outcome writePrivateFile(const QString &path, const QByteArray &bytes)
{
    const std::filesystem::path place = QFile::encodeName(path).toStdString();
    WholeFile file(place);
    file.keepPrivate();
    const bool isWritten =
        file.descriptor() >= 0 && file.write({bytes.constData(), std::size_t(bytes.size())}) && file.finish();
    return isWritten ? platform::Outcome() : systemFailure(place, errno);
}

} // namespace toolchain
