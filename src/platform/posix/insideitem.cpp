#include "platform/posix/insideitem.h"

#include "platform/posix/failure.h"
#include "platform/posix/folder.h"

#include <QCryptographicHash>
#include <QList>

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <climits>

namespace platform {

namespace {

using Digest = QCryptographicHash;

timespec modificationOf(const struct stat &state)
{
#ifdef __APPLE__
    return state.st_mtimespec;
#else
    return state.st_mtim;
#endif
}

void addState(Digest &digest, const char *name, const struct stat &state)
{
    const timespec time = modificationOf(state);
    // A folder's own size and time are told by what is in it.
    const bool isFolder = S_ISDIR(state.st_mode);
    digest.addData(QByteArray(name) + '\0' + QByteArray::number(qulonglong(state.st_mode)) + ' '
                   + QByteArray::number(isFolder ? 0 : qlonglong(state.st_size)) + ' '
                   + QByteArray::number(isFolder ? 0 : qlonglong(time.tv_sec)) + ' '
                   + QByteArray::number(isFolder ? 0 : qlonglong(time.tv_nsec)) + '\n');
}

bool addEntry(Digest &digest, Place place);

bool addEntries(Digest &digest, Place place)
{
    const Folder folder(place, Links::refuse);
    auto entries = folder ? folder.entries() : std::nullopt;
    if (!entries)
        return false;
    std::sort(entries->begin(), entries->end(),
              [](const auto &one, const auto &other) { return one.name < other.name; });
    digest.addData(QByteArray::number(qsizetype(entries->size())) + '{');
    return std::all_of(entries->cbegin(), entries->cend(), [&](const Folder::Entry &entry) {
        return addEntry(digest, {folder.descriptor(), entry.name.c_str()});
    });
}

bool addTarget(Digest &digest, Place place)
{
    std::array<char, PATH_MAX> target;
    const ssize_t length = readlinkat(place.folder, place.name, target.data(), target.size());
    if (length < 0)
        return false;
    digest.addData(QByteArrayView(target.data(), length));
    return true;
}

bool addEntry(Digest &digest, Place place)
{
    struct stat state;
    if (fstatat(place.folder, place.name, &state, AT_SYMLINK_NOFOLLOW) < 0)
        return false;
    addState(digest, place.folder == AT_FDCWD ? "" : place.name, state);
    if (S_ISDIR(state.st_mode))
        return addEntries(digest, place);
    return !S_ISLNK(state.st_mode) || addTarget(digest, place);
}

} // namespace

UniqueDescriptor openInside(const QString &item, const QString &inside, int flags)
{
    UniqueDescriptor folder(open(nativePath(item).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const QList<QByteArray> names = nativePath(inside).split('/');
    for (qsizetype step = 0; step < names.size() && folder; ++step) {
        const bool isLast = step == names.size() - 1;
        const int how = isLast ? flags : O_RDONLY | O_DIRECTORY;
        folder =
            UniqueDescriptor(openat(folder.get(), names.at(step).constData(), how | O_NOFOLLOW | O_CLOEXEC));
    }
    return folder;
}

QByteArray stateOfItem(const QString &path)
{
    Digest digest(Digest::Sha256);
    const QByteArray native = nativePath(path);
    return addEntry(digest, {AT_FDCWD, native.constData()}) ? digest.result() : QByteArray();
}

} // namespace platform
