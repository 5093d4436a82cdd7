#pragma once

// What the thread sanitizer must not judge; included once by each test program's main file.

#ifdef __SANITIZE_THREAD__

#include <cstdarg>

#include <sys/types.h>

/// The libraries below are built without the sanitizer. It sees neither the atomic counters that Qt counts
/// down in them nor the locks by which their threads pass messages on.
extern "C" const char *__tsan_default_suppressions();
extern "C" const char *__tsan_default_suppressions()
{
    return "called_from_lib:libQt6Core.so.6\n"
           "called_from_lib:libQt6DBus.so.6\n"
           "called_from_lib:libQt6Gui.so.6\n"
           "called_from_lib:libQt6Network.so.6\n"
           "called_from_lib:libdbus-1.so.3\n"
           "called_from_lib:libglib-2.0.so.0\n"
           "race:QTypedArrayData*::deallocate\n";
}

extern "C" int __clone(int (*function)(void *), void *stack, int flags, void *argument, ...);

/// Stands before the sanitizer's own. That takes each child for a fork, after which it watches the thread no
/// more; but the children of QProcess share the memory of the test, so the thread is that of the test.
extern "C" int clone(int (*function)(void *), void *stack, int flags, void *argument, ...) noexcept
{
    va_list rest;
    va_start(rest, argument);
    auto *const parentID = va_arg(rest, pid_t *);
    auto *const storage = va_arg(rest, void *);
    auto *const childID = va_arg(rest, pid_t *);
    va_end(rest);
    return __clone(function, stack, flags, argument, parentID, storage, childID);
}

#endif
