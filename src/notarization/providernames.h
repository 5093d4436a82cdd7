#pragma once

#include "document/controls.h"
#include "notarization/servicequery.h"

#include <variant>

/// Lets a person choose among the teams of the account, by the short name that the notary tool knows each
/// by.
class ProviderNames : private ServiceQuery {
public:
    explicit ProviderNames(MainWinController &owner)
        : ServiceQuery(owner)
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

/// What the sheet says where there is nothing to choose from.
struct ProviderMessage {
    QString heading;
    QString detail;
};

/// The teams of the account, in the order of the reply: each with the line that names it, standing for its
/// short name.
using Providers = QList<PopupItem>;

/// Reads the notary tool's reply, an XML property list.
[[nodiscard]] std::variant<Providers, ProviderMessage> readProviders(const SLWTaskResponse &response);

/// The tool's error without the tag in brackets, and whatever else, that stands in front; null for null.
[[nodiscard]] QString withoutTag(const QString &errorString);
