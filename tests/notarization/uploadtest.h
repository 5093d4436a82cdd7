#pragma once

#include "run/credentials.h"
#include "support/steptest.h"

/// The upload by itself, of a signed app in its working folder.
class UploadTest : public StepTest {
protected:
    UploadTest();

    /// The archive of the app is what is uploaded.
    void prepareArchive();
    /// A disk image that is the item itself is what is uploaded.
    void prepareImage();
    bool upload(const Credentials &credentials = {
                    QStringLiteral("dev@example.com"), QStringLiteral("notary"), {}});
    /// Runs the notary tool by a path of its own, so that the runner takes an empty output at its word.
    void useToolOfItsOwn();

    static QString uploadTool() { return QStringLiteral("altool--notarize-app"); }
    static QString infoTool() { return QStringLiteral("altool--notarization-info"); }
};
