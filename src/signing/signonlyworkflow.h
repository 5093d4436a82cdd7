#pragma once

#include "document/itemworkflow.h"

#include <QUrl>
#include <QVariantMap>

/// Signs a copy of an app, or of what is in a folder, and leaves it in a folder named for that. Nothing is
/// uploaded.
class SignOnlyWorkflow : private ItemWorkflow {
public:
    explicit SignOnlyWorkflow(MainWinController &owner)
        : ItemWorkflow(owner)
    {
    }

    // Commands and entries. Main thread.
    void doSignOnly();
    /// Signs the item of the last run again, which may since lie in the folder of that run.
    void doSignAgain();
    /// For a script, which has said by `suppressDialogs` whether it wants dialogs.
    void scriptedSignOnly(const QUrl &url);

    /// Starts the signing of the item at the file URL, or asks for one if the URL is empty.
    void signOnlyURL(const QUrl &url);

private:
    /// What the background chain works on, fixed on the main thread before it starts.
    struct Signing {
        QVariantMap entitlements;
        QString identity;
        bool isApp;
        bool dontSignEnclosures;
    };

    void signByPerson(const QUrl &url);
    void chooseItem(const QString &identity);
    void startWithOriginal(const QString &identity);
    void signOnlyAsyncWithID(const QString &identity);
    bool isApp() const;

    // The background chain. Worker thread. A step that answers false has reported, or a cancel has.
    void runChain(const Signing &signing);
    [[nodiscard]] bool prepareCopy(const Signing &signing);
    [[nodiscard]] bool signCopy(const Signing &signing);
    void finish();

    // The two ends. Main thread.
    void endSilently();
    void endWithDialog();
    void endCommon();
};
