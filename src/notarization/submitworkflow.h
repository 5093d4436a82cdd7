#pragma once

#include "document/itemworkflow.h"
#include "notarization/altoolarguments.h"

#include <QUrl>
#include <QVariantMap>

#include <memory>

/// What an item is, by its lower-cased extension; it decides which steps apply.
enum class ItemKind { app, pkg, fmplugin, plugin, dmg, other };

[[nodiscard]] ItemKind itemKind(const QString &path);
[[nodiscard]] bool isBundleKind(ItemKind kind);
/// The extensions that can be submitted.
[[nodiscard]] const QStringList &submittableExtensions();
/// The identifier of an upload that has none of its own: a random UUID with the item's extension directly
/// behind it.
[[nodiscard]] QString fallbackIdentifier(const QString &itemPath);

/// Carries one item from the user's hands to the upload.
class SubmitWorkflow : private ItemWorkflow {
public:
    explicit SubmitWorkflow(MainWinController &owner)
        : ItemWorkflow(owner)
    {
    }

    // Commands and entries. Main thread.
    void doSubmit();
    void doDirectSubmit();
    void doSubmitAgain();
    void doCancelDirectSubmit();
    void scriptedSubmit(const QUrl &url);

    /// Checks what was entered and starts the submission of the item, or asks for one if the URL is empty.
    void submitURL(const QUrl &url);

    /// Loads the document with an item, plans its steps and waits for a person; starts nothing. A null
    /// identity keeps the selection.
    void prepareForDirectSubmit(const QUrl &url, const QString &identity);

    /// The titles and actions of the buttons outside of direct-submit mode.
    void setOrdinaryButtons();

private:
    /// What the background chain works on, fixed on the main thread before it starts.
    struct Submission {
        Credentials credentials;
        QString identity;
        QVariantMap entitlements;
        ItemKind kind;
        bool dontSignEnclosures;
    };

    bool checkFields(const QUrl &url);
    bool checkKind();
    void chooseItem();
    void startWithOriginal();
    void planSteps();
    void keepStepsPlanned();
    void submitAsync(const Credentials &credentials, const QString &identity);
    void submitByPerson(const QUrl &url);
    void _prepareDirectSubmitUI();
    void _cancelDirectSubmitUI();
    void setOrdinaryControlsHidden(bool isHidden);

    // The background chain. Worker thread. A step that answers false has reported, or a cancel has.
    void runChain(const Submission &submission);
    [[nodiscard]] bool prepareItem(const Submission &submission, QString &identifier);
    [[nodiscard]] bool preparePackage(const Submission &submission);
    [[nodiscard]] bool prepareBundle(const Submission &submission, QString &identifier);
    [[nodiscard]] bool prepareDiskImage(const Submission &submission, QString &identifier);
    void upload(const Submission &submission, const QString &identifier);

    std::unique_ptr<QObject> m_waiting; ///< there while an item waits for a person
};
