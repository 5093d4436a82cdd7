#pragma once

// What the thread sanitizer must not see; included once by each test program's main file. What it must not
// judge is in the file of its suppressions.

#ifdef __SANITIZE_THREAD__

#include <cstdarg>

#include <sys/types.h>

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
