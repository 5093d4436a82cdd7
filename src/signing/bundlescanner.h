#pragma once

#include "document/documentextension.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

/// Paths in the order in which they were first added.
class OrderedPathSet {
public:
    void append(const QString &path);
    /// The paths without those of the set, in their order.
    QStringList without(const QSet<QString> &others) const;
    const QStringList &paths() const { return m_paths; }

private:
    QStringList m_paths;
    QSet<QString> m_known;
};

/// Decides what inside an item must be signed on its own. Walks the file tree; there is no list of bundle
/// kinds: what has an extension, an information dictionary that names an executable, and that executable in
/// place is a bundle. Items are absolute paths, compared as exact strings. Worker thread; each test of a file
/// for code is one tool run.
class BundleScanner : private DocumentExtension {
public:
    explicit BundleScanner(MainWinController &owner)
        : DocumentExtension(owner)
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
    void addIfBundle(const QString &directory, OrderedPathSet &signableSet, QSet<QString> &setToSubtract);
    bool deleteIfLeftover(const QString &file, const QString &fileName);
    void parseVersions(const QString &versions, OrderedPathSet &signableSet, QSet<QString> &setToSubtract,
                       const QStringList &arrayToPassOver);
    bool isMachO(const QString &file);
};

/// Whether the report of the file tool tells of code that is signed.
[[nodiscard]] bool namesSignableCode(const QString &fileToolOutput);
