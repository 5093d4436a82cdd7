#pragma once

#include "document/mainwincontroller.h"
#include "run/run.h"
#include "signing/bundlescanner.h"
#include "support/core.h"

#include <optional>

/// The steps of a workflow one by one, each in a run of its own on a document as it is now. True where the
/// step has worked; what it reports has been reported. Worker thread.
struct SingleSteps {
    explicit SingleSteps(MainWinController &document)
        : signing{document}
        , packages{document}
        , entitlements{document}
        , archive{document}
        , credentials{document}
        , upload{document}
        , stapling{document}
        , folder{document}
        , tools{document}
        , scanner{document}
    {
    }

    struct Signing {
        MainWinController &document;
        bool clearXattrs() const;
        bool lockMainScpt() const;
        bool codesignMembersWithID(const QString &identity, bool skipMain) const;
        bool signAndCheckAppWithID(const QString &identity, bool needsEntitlements) const;
    } signing;

    struct Packages {
        MainWinController &document;
        bool checkPkgAndSignWithID(const QString &identity) const;
    } packages;

    struct Entitlements {
        MainWinController &document;
        /// Main thread.
        std::optional<QVariantMap> assembleEntitlements() const;
        bool saveEntitlementsDictionary(const QVariantMap &entitlements) const;
    } entitlements;

    struct Archive {
        MainWinController &document;
        bool makeArchiveForUploading() const;
        QString primaryBundleID() const;
    } archive;

    struct Credential {
        MainWinController &document;
        bool checkAltool(const Credentials &credentials) const;
    } credentials;

    struct Upload {
        MainWinController &document;
        /// True if the wait for the verdict has begun.
        bool uploadForNotarizing(const Credentials &credentials, const QString &bundleID) const;
    } upload;

    struct Stapling {
        MainWinController &document;
        void runStaplerAndFinish() const;
    } stapling;

    struct Folder {
        MainWinController &document;
        bool create() const;
        void renameTo(const QString &suffix) const;
        void moveOriginalIn() const;
    } folder;

    struct Tools {
        MainWinController &document;
        SLWTaskResponsePtr run(const QString &path, const QStringList &args) const;
        SLWTaskResponsePtr askService(const QStringList &args) const;
        SLWTaskResponsePtr upload(const QStringList &args) const;
        SLWTaskResponsePtr runAndLog(const QString &path, const QStringList &args) const;
    } tools;

    struct Scanner {
        MainWinController &document;
        void parseDirectory(const QString &directory, OrderedPathSet &signableSet,
                            QSet<QString> &setToSubtract, const QStringList &arrayToPassOver) const;
        void parseFramework(const QString &framework, OrderedPathSet &signableSet,
                            QSet<QString> &setToSubtract, const QStringList &arrayToPassOver) const;
    } scanner;
};
