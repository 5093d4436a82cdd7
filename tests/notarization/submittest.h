#pragma once

#include "support/items.h"
#include "support/testhost.h"

#include "document/documentcommands.h"
#include "platform/itempath.h"

#include <gtest/gtest.h>

/// Submissions, of an app unless a test makes another item, with tools that work and a service that has no
/// verdict yet.
class Submit : public testing::Test {
protected:
    Submit();

    /// The document of the application, which is launched unless that has been done.
    MainWinController &launched();
    /// Begins to submit the item in the way of a script or a drop and does not wait.
    void begin(const QString &name = QStringLiteral("Foo.app"));
    /// The item was refused with this before anything was copied or run.
    void expectReport(const QString &title, const QString &text);
    /// The word behind the option.
    static QString argumentBehind(const QStringList &arguments, const QString &option);
    /// The notary tool of the launch to come is so old that documents share their runners.
    void shareRunners();
    void offerInstallerIdentity();

    static inline const QString uploadTool = QStringLiteral("altool--notarize-app");
    static inline const QString historyTool = QStringLiteral("altool--notarization-history");
    static inline const QString infoTool = QStringLiteral("altool--notarization-info");

    TestHost host;
};
