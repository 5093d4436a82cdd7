#include "document/providersheet.h"

#include "document/applicationinterface.h"
#include "document/mainwincontroller.h"
#include "notarization/providernames.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int okCode = 1;
constexpr int cancelCode = 0;

} // namespace

const QString providerNameSheet = u"ProviderNameSheet"_s;

bool ProviderSheet::canBeListed() const
{
    return canListProviders(document.appDelegate().altoolVersionNumber());
}

void ProviderSheet::doListProviderShortnames()
{
    if (canBeListed())
        return listProviderShortnames();
    document.changeStatus(status::interacting);
    document.beginSheet(
        {u"Cannot List Provider Names"_s, u"This command relies on Xcode 11 or later being available."_s, {}},
        [this](int) { document.changeStatus(status::ready); });
}

void ProviderSheet::listProviderShortnames()
{
    document.suppressDialogs.set(false);
    const auto inputs = beginQuery({}); // a script would not be told of a blocked interface
    if (!inputs)
        return;
    beginSheet();
    document.startRun(*inputs, providersWorkflow(), [this, turn = m_sheetTurns](Run &run) {
        document.dispatchToMain([this, turn, response = run.response] {
            if (turn == m_sheetTurns)
                showReply(*response);
        });
    });
}

// The sheet

void ProviderSheet::beginSheet()
{
    ++m_sheetTurns;
    document.providerSheetPopup.setItems({});
    document.providerSheetErrorText.setStringValue(u""_s);
    document.providerSheetDetailText.setStringValue(u""_s);
    document.providerSheetProgress.startAnimation();
    document.providerSheetTabView.selectTabViewItemAtIndex(waitingPage);
    document.window().beginSheetNamed(providerNameSheet,
                                      [this, held = document.shared_from_this()](int) { sheetDidEnd(); });
}

void ProviderSheet::doProviderNameOK()
{
    document.providerNameField.setStringValue(document.providerSheetPopup.representedObjectOfSelectedItem());
    document.window().endSheet(okCode);
}

void ProviderSheet::doProviderNameCancel()
{
    document.window().endSheet(cancelCode);
}

void ProviderSheet::sheetDidEnd()
{
    ++m_sheetTurns;
    document.providerSheetProgress.stopAnimation();
    makeIdle();
    document.providerNameField.makeFirstResponder();
    document.changeStatus(status::ready);
}

void ProviderSheet::showReply(const SLWTaskResponse &response)
{
    const auto reply = readProviders(response);
    if (const auto *const message = std::get_if<ProviderMessage>(&reply))
        return showMessage(message->heading, message->detail);
    const Providers &providers = std::get<Providers>(reply);
    if (providers.size() == 1) {
        document.providerNameField.setStringValue(u""_s);
        return showMessage(
            u"Provider Short Name Not Needed"_s,
            u"You belong to only one Apple development team, so you do not need to enter a provider short name."_s);
    }
    QList<PopupItem> items;
    for (const Provider &team : providers)
        items.append({team.title, team.representedObject});
    document.providerSheetPopup.setItems(items);
    document.providerSheetTabView.selectTabViewItemAtIndex(choicePage);
}

void ProviderSheet::showMessage(const QString &heading, const QString &detail)
{
    document.providerSheetErrorText.setStringValue(heading);
    document.providerSheetDetailText.setStringValue(detail);
    document.providerSheetTabView.selectTabViewItemAtIndex(messagePage);
}

} // namespace sealwright
