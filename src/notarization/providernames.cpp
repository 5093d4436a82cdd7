#include "notarization/providernames.h"

#include "notarization/altoolarguments.h"
#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr quint64 lastVersionWithoutProviders = 3;

Provider readProvider(const QVariantMap &provider)
{
    const auto text = [&provider](const QString &key) {
        return provider.contains(key) ? provider.value(key).toString() : orNull({});
    };
    const QString shortName = u"ProviderShortname"_s;
    return {
        u"%1 (Name: %2, Team ID: %3)"_s.arg(text(shortName), text(u"ProviderName"_s), text(u"WWDRTeamID"_s)),
        provider.value(shortName).toString()};
}

StepResult listProviders(Run &run)
{
    run.response = run.tools.askService(altoolarguments::listProviders(run.inputs().credentials));
    return Done{};
}

constexpr Step list{.name = {}, .work = &listProviders, .cancelTest = CancelTest::isLeftOut};

} // namespace

Workflow providersWorkflow()
{
    return {list};
}

bool canListProviders(quint64 altoolVersionNumber)
{
    return altoolVersionNumber > lastVersionWithoutProviders;
}

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
    const auto reply = platform::propertyListFromData(response.outputData());
    if (!reply)
        return ProviderMessage{problem, u"Error returned: "_s + reply.error()};
    const QVariant entry = reply->toMap().value(u"providers"_s);
    if (entry.typeId() != QMetaType::QVariantList)
        return ProviderMessage{problem, u"No providers were found in the data returned."_s};
    Providers providers;
    for (const QVariant &provider : entry.toList())
        providers.append(readProvider(provider.toMap()));
    return providers;
}

} // namespace sealwright
