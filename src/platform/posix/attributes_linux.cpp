#include "platform/posix/hostcalls.h"

#include <QByteArray>

#include <sys/xattr.h>

#include <cerrno>
#include <cstring>

namespace platform {

namespace {

/// The names of the attributes, each with a null byte at its end; null on failure.
QByteArray attributeNames(int descriptor)
{
    QByteArray names(1024, Qt::Uninitialized);
    for (;;) {
        const ssize_t size = flistxattr(descriptor, names.data(), static_cast<size_t>(names.size()));
        if (size >= 0) {
            names.resize(size);
            return names;
        }
        if (errno == ENOTSUP)
            return ""; // the file system has none
        if (errno != ERANGE)
            return {};
        names.resize(names.size() * 8);
    }
}

/// Null on failure.
QByteArray attributeValue(int descriptor, const char *name)
{
    QByteArray value(1024, Qt::Uninitialized);
    for (;;) {
        const ssize_t size = fgetxattr(descriptor, name, value.data(), static_cast<size_t>(value.size()));
        if (size >= 0) {
            value.resize(size);
            return value;
        }
        if (errno != ERANGE)
            return {};
        value.resize(value.size() * 8);
    }
}

/// Attributes outside of "user." belong to the system: whether the user may set one is the system's choice,
/// and no loss of the user's data.
bool mayBeMissing(const char *name, int error)
{
    if (error == ENOTSUP || error == ENODATA)
        return true;
    return (error == EPERM || error == EACCES) && std::strncmp(name, "user.", 5) != 0;
}

} // namespace

bool copyExtendedAttributes(int from, int to)
{
    const QByteArray names = attributeNames(from);
    if (names.isNull())
        return false;
    for (const char *name = names.constData(); name < names.constEnd(); name += std::strlen(name) + 1) {
        const QByteArray value = attributeValue(from, name);
        const bool isCopied = !value.isNull()
            && fsetxattr(to, name, value.constData(), static_cast<size_t>(value.size()), 0) == 0;
        if (!isCopied && !mayBeMissing(name, errno))
            return false;
    }
    return true;
}

} // namespace platform
