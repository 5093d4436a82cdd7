#pragma once

#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "platform/scriptcommand.h"
#include "scripting/NSApplication+Scripting.h"
#include "state/instanttools.h"
#include "support/items.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>

/// The folders of another user, in a folder in which nobody can rename or delete what is another's.
class OthersFolders {
public:
    void add(const QString &path)
    {
        const std::scoped_lock lock(m_mutex);
        m_paths.append(path);
    }
    void forgetAll()
    {
        const std::scoped_lock lock(m_mutex);
        m_paths.clear();
    }
    /// Whether what is done at the path would change one of them: in it, with it, or by moving it to "old".
    bool forbid(const QString &path) const
    {
        const std::scoped_lock lock(m_mutex);
        return std::any_of(m_paths.cbegin(), m_paths.cend(), [&path](const QString &theirs) {
            return path == theirs || path == theirs + QStringLiteral(" - old")
                || path.startsWith(theirs + u'/');
        });
    }

private:
    mutable std::mutex m_mutex;
    QStringList m_paths;
};

/// One application with files and timers of its own. The files fail from the moment on at which it is killed.
struct Incarnation {
    explicit Incarnation(const QString &trash)
        : files(trash)
    {
    }

    TestFiles files;
    ManualTimers timers;
    std::unique_ptr<AppDelegate> application;
    std::atomic<int> operationsToLive = -1; ///< below 0 for ever
    std::atomic<bool> hasTrash = true;
};
