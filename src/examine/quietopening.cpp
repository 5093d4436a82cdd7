// A look leaves no trace, not even in the times of last access. What opens files here, Qt's code and that of
// other libraries too, calls these functions in place of the C library's, since the program's own come first
// (ELF, "Shared Object Dependencies"). The system allows it to the owner of a file, see open(2), O_NOATIME.

#undef _FORTIFY_SOURCE // whose inline functions have the same names

#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>

namespace {

int openQuietly(int folder, const char *path, int flags, mode_t mode = 0)
{
    const bool reads = (flags & O_ACCMODE) == O_RDONLY && (flags & (O_CREAT | O_TRUNC | O_PATH)) == 0;
    if (reads) {
        const auto quiet = int(syscall(SYS_openat, folder, path, flags | O_NOATIME, 0));
        if (quiet >= 0 || errno != EPERM)
            return quiet;
    }
    return int(syscall(SYS_openat, folder, path, flags, mode));
}

/// The third argument, which only a call that may make a file has.
mode_t modeIn(int flags, va_list arguments)
{
    const bool makes = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return makes ? mode_t(va_arg(arguments, unsigned)) : 0;
}

} // namespace

// NOLINTBEGIN(cert-dcl50-cpp,bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the C library's own
// names

extern "C" {

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return openQuietly(AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return openQuietly(folder, path, flags, mode);
}

// What calls with flags that are no constants become where buffers are checked.
int __open_2(const char *path, int flags)
{
    return openQuietly(AT_FDCWD, path, flags);
}
int __openat_2(int folder, const char *path, int flags)
{
    return openQuietly(folder, path, flags);
}

// Where a file's length always has 64 bits, which is wherever this is built, both names mean one thing.
static_assert(sizeof(off_t) == sizeof(off64_t));
int open64(const char *path, int flags, ...) __attribute__((alias("open")));
int openat64(int folder, const char *path, int flags, ...) __attribute__((alias("openat")));
int __open64_2(const char *path, int flags) __attribute__((alias("__open_2")));
int __openat64_2(int folder, const char *path, int flags) __attribute__((alias("__openat_2")));

DIR *opendir(const char *path)
{
    const int folder = openQuietly(AT_FDCWD, path, O_RDONLY | O_NONBLOCK | O_DIRECTORY | O_CLOEXEC);
    DIR *const stream = folder < 0 ? nullptr : fdopendir(folder);
    if (folder >= 0 && !stream)
        close(folder);
    return stream;
}

} // extern "C"

// NOLINTEND(cert-dcl50-cpp,bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
