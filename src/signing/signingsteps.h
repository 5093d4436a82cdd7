#pragma once

#include "document/documentextension.h"
#include "signing/signingarguments.h"
#include "tools/slwtaskresponse.h"

/// The steps that sign the working copy. Worker thread. Each answers false after a failure, which it has
/// reported and for which it has renamed the working folder.
class SigningSteps : private DocumentExtension {
public:
    explicit SigningSteps(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    [[nodiscard]] bool clearXattrs();

    /// Makes the item's main script read-only, so that running it does not break the seal. Never fails.
    [[nodiscard]] bool lockMainScpt();

    /// Signs what is inside the item, from the inside out. `identity` is a name without prefix. With
    /// `skipMain` the item itself is left to the step below.
    [[nodiscard]] bool codesignMembersWithID(const QString &identity, bool skipMain);

    /// Signs the item itself and, if the user wants it, has the result assessed.
    [[nodiscard]] bool signAndCheckAppWithID(const QString &identity, bool needsEntitlements);

private:
    QStringList membersInSigningOrder();
    bool signMember(const QString &item, const QString &identity);
    void checkSignature();
    void lockScriptIn(const QString &app);
    QString entitlementsPath() const;
    signingarguments::CodesignOptions options() const;
    QString itemPath() const;
};

/// The log line of a failed clearing of attributes.
[[nodiscard]] QString xattrFailureLine(const SLWTaskResponse &response);
/// The log line of a failed signing of a member.
[[nodiscard]] QString memberFailureLine(const SLWTaskResponse &response, const QString &item);
