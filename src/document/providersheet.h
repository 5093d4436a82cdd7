#pragma once

#include "document/servicecommands.h"

namespace sealwright {

/// Lets a person choose among the teams of the account, by the short name that the notary tool knows each
/// by.
class ProviderSheet : private ServiceCommands {
public:
    explicit ProviderSheet(MainWinController &owner)
        : ServiceCommands(owner)
    {
    }

    /// The command: lists the names, or says that the notary tool is too old for it. Main thread.
    void doListProviderShortnames();
    /// Whether the notary tool is one that can tell them.
    [[nodiscard]] bool canBeListed() const;

    /// Asks for the teams and shows them in a sheet. Main thread.
    void listProviderShortnames();

    // What the sheet's buttons do. Main thread.
    void doProviderNameOK();
    void doProviderNameCancel();

private:
    void beginSheet();
    void sheetDidEnd();
    void showReply(const SLWTaskResponse &response);
    void showMessage(const QString &heading, const QString &detail);

    quint64 m_sheetTurns = 0; ///< how often a sheet has begun or ended, so that a late reply knows of it
};

/// The name of the sheet's description.
extern const QString providerNameSheet;

/// The pages of the sheet.
enum ProviderSheetPage { waitingPage = 0, choicePage = 1, messagePage = 2 };

} // namespace sealwright
