#include "examine/quietfiles.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace examine {

namespace {

constexpr qint64 longestDescription = 16 << 20;

class Descriptor {
public:
    explicit Descriptor(const QString &path)
        : m_number(open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
    {
    }
    ~Descriptor()
    {
        if (m_number >= 0)
            close(m_number);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    [[nodiscard]] int number() const { return m_number; }

private:
    const int m_number;
};

} // namespace

std::optional<QByteArray> QuietFiles::readFile(const QString &path, QString *error) const
{
    const Descriptor descriptor(path);
    struct stat status = {};
    const bool isGood = descriptor.number() >= 0 && fstat(descriptor.number(), &status) == 0
        && S_ISREG(status.st_mode) && status.st_size <= longestDescription;
    QFile file;
    if (isGood && file.open(descriptor.number(), QIODevice::ReadOnly))
        return file.readAll();
    if (error)
        *error = QString::fromLocal8Bit(strerror(errno != 0 ? errno : EINVAL));
    return std::nullopt;
}

} // namespace examine
