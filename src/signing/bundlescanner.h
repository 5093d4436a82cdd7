#pragma once

#include "signing/scandecisions.h"

namespace sealwright {

class Run;

/// Carries out the walk over a working copy: asks the file tool what is code, and deletes leftovers. Worker
/// thread; each test of a file for code is one tool run.
class BundleScanner {
public:
    explicit BundleScanner(Run &run)
        : m_run(run)
    {
    }

    /// Adds what is signable in the directory, itself first if it is a bundle, and each bundle before its
    /// contents. `setToSubtract` gets the main executables of bundles, which are signed as parts of their
    /// bundles. `arrayToPassOver` is not looked at, nor anything below it.
    void parseDirectory(const QString &directory, OrderedPathSet &signableSet, QSet<QString> &setToSubtract,
                        const QStringList &arrayToPassOver);

    /// The same for a framework, in which each version folder is the thing that is signed.
    void parseFramework(const QString &framework, OrderedPathSet &signableSet, QSet<QString> &setToSubtract,
                        const QStringList &arrayToPassOver);

private:
    Run &m_run;
};

} // namespace sealwright
