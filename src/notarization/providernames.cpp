#include "notarization/providernames.h"

#include "app/appdelegate.h"
#include "document/mainwincontroller.h"
#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 lastVersionWithoutProviders = 3;
constexpr int okCode = 1;
constexpr int cancelCode = 0;

PopupItem popupItem(const QVariantMap &provider)
{
    const auto text = [&provider](const QString &key) {
        return provider.contains(key) ? provider.value(key).toString() : orNull({});
    };
    const QString shortName = u"ProviderShortname"_s;
    return {
        u"%1 (Name: %2, Team ID: %3)"_s.arg(text(shortName), text(u"ProviderName"_s), text(u"WWDRTeamID"_s)),
        provider.value(shortName).toString()};
}

} // namespace

const QString providerNameSheet = u"ProviderNameSheet"_s;

QString withoutTag(const QString &errorString)
{
    const qsizetype bracket = errorString.indexOf(u']');
    return bracket < 0 ? errorString : errorString.mid(bracket + 1).trimmed();
}

std::variant<Providers, ProviderMessage> readProviders(const SLWTaskResponse &response)
{
    if (response.status() != 0)
        return ProviderMessage{
            u"Problem Retrieving Apple Team Details"_s,
            u"Error returned: %1\n\nCheck that both the app-specific pasword and Apple ID are correct."_s.arg(
                orNull(withoutTag(response.errorString())))};
    const QString problem = u"Problem With Apple Team Details"_s;
    const auto list = platform::propertyListFromData(response.outputData());
    if (!list)
        return ProviderMessage{problem, u"Error returned: "_s + list.error};
    const QVariant entry = list.value.toMap().value(u"providers"_s);
    if (entry.typeId() != QMetaType::QVariantList)
        return ProviderMessage{problem, u"No providers were found in the data returned."_s};
    Providers providers;
    for (const QVariant &provider : entry.toList())
        providers.append(popupItem(provider.toMap()));
    return providers;
}

bool ProviderNames::canBeListed() const
{
    return document.appDelegate().altoolVersionNumber() > lastVersionWithoutProviders;
}

void ProviderNames::doListProviderShortnames()
{
    if (canBeListed())
        return listProviderShortnames();
    document.changeStatus(status::interacting);
    document.beginSheet(
        {u"Cannot List Provider Names"_s, u"This command relies on Xcode 11 or later being available."_s, {}},
        [this](int) { document.changeStatus(status::ready); });
}

void ProviderNames::listProviderShortnames()
{
    document.suppressDialogs.set(false);
    const auto credentials = beginQuery({}); // a script would not be told of a blocked interface
    if (!credentials)
        return;
    beginSheet();
    document.dispatchToWorker([this, asked = *credentials, turn = m_sheetTurns] {
        const auto response = ask(altoolarguments::listProviders(asked));
        document.dispatchToMain([this, response, turn] {
            if (turn == m_sheetTurns)
                showReply(*response);
        });
    });
}

// The sheet

void ProviderNames::beginSheet()
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

void ProviderNames::doProviderNameOK()
{
    document.providerNameField.setStringValue(document.providerSheetPopup.representedObjectOfSelectedItem());
    document.window().endSheet(okCode);
}

void ProviderNames::doProviderNameCancel()
{
    document.window().endSheet(cancelCode);
}

void ProviderNames::sheetDidEnd()
{
    ++m_sheetTurns;
    document.providerSheetProgress.stopAnimation();
    makeIdle();
    document.providerNameField.makeFirstResponder();
    document.changeStatus(status::ready);
}

void ProviderNames::showReply(const SLWTaskResponse &response)
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
    document.providerSheetPopup.setItems(providers);
    document.providerSheetTabView.selectTabViewItemAtIndex(choicePage);
}

void ProviderNames::showMessage(const QString &heading, const QString &detail)
{
    document.providerSheetErrorText.setStringValue(heading);
    document.providerSheetDetailText.setStringValue(detail);
    document.providerSheetTabView.selectTabViewItemAtIndex(messagePage);
}
