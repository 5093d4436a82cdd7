#include "examine/examination.h"

#include "formats/codesignature/machoimage.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

using toolchain::review::SignatureFacts;
using toolchain::review::SignatureState;
using toolchain::review::SliceFacts;

namespace examine {

namespace {

QString name(SignatureState state)
{
    switch (state) {
    case SignatureState::none:
        return u"none"_s;
    case SignatureState::adHoc:
        return u"adhoc"_s;
    case SignatureState::linker:
        return u"linker"_s;
    case SignatureState::certified:
        return u"signed"_s;
    case SignatureState::damaged:
        return u"damaged"_s;
    }
    return {};
}

QString versionOrNothing(quint32 packed)
{
    return packed == 0 ? u""_s : toolchain::codesignature::versionText(packed);
}

/// The least of the slices' versions, of those that tell one.
quint32 least(const QList<SliceFacts> &slices, quint32 SliceFacts::*version)
{
    quint32 smallest = 0;
    for (const SliceFacts &slice : slices) {
        if (slice.*version != 0 && (smallest == 0 || slice.*version < smallest))
            smallest = slice.*version;
    }
    return smallest;
}

/// The signature that is shown for all slices: that of the first, unless a later one is worse.
SignatureFacts shownSignature(const CodeEntry &entry)
{
    if (entry.ownSignature)
        return *entry.ownSignature;
    const auto &slices = entry.facts.slices;
    const auto unsignedSlice = std::find_if(slices.cbegin(), slices.cend(), [](const SliceFacts &slice) {
        return slice.signature.state == SignatureState::none;
    });
    if (unsignedSlice != slices.cend())
        return unsignedSlice->signature;
    return slices.isEmpty() ? SignatureFacts() : slices.first().signature;
}

QJsonValue orNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonObject signatureObject(const SignatureFacts &signature)
{
    const QString stamp =
        signature.timestamp.isValid() ? signature.timestamp.toString(Qt::ISODate) : QString();
    return {{u"state"_s, name(signature.state)},  {u"authority"_s, signature.authorities.value(0) + u""_s},
            {u"team"_s, signature.team + u""_s},  {u"identifier"_s, signature.identifier + u""_s},
            {u"runtime"_s, signature.hasRuntime}, {u"timestamp"_s, orNull(stamp)}};
}

QJsonArray architectures(const CodeEntry &entry)
{
    QJsonArray names;
    for (const SliceFacts &slice : entry.facts.slices)
        names.append(slice.architecture);
    return names;
}

QJsonObject codeObject(const CodeEntry &entry)
{
    const SignatureFacts signature = shownSignature(entry);
    const auto &slices = entry.facts.slices;
    return {{u"path"_s, entry.path},
            {u"kind"_s, entry.kind},
            {u"order"_s, entry.order ? QJsonValue(*entry.order) : QJsonValue()},
            {u"reason"_s, entry.order ? QJsonValue() : orNull(entry.reason)},
            {u"architectures"_s, architectures(entry)},
            {u"platform"_s, slices.isEmpty() ? u""_s : slices.first().platform + u""_s},
            {u"minimumSystem"_s, versionOrNothing(least(slices, &SliceFacts::minimumSystem))},
            {u"sdk"_s, versionOrNothing(least(slices, &SliceFacts::sdk))},
            {u"signature"_s, signatureObject(signature)},
            {u"entitlements"_s, QJsonObject::fromVariantMap(signature.entitlements)}};
}

QJsonObject productObject(const Product &product)
{
    return {{u"identifier"_s, product.identifier},
            {u"version"_s, product.version},
            {u"volume"_s, product.volume}};
}

QJsonObject findingObject(const Finding &finding)
{
    return {{u"rule"_s, finding.rule},
            {u"severity"_s, finding.severity == Severity::error ? u"error"_s : u"warning"_s},
            {u"path"_s, finding.path},
            {u"architecture"_s, orNull(finding.architecture)},
            {u"message"_s, finding.message},
            {u"advice"_s, finding.advice}};
}

} // namespace

bool Examination::isRefused() const
{
    return std::any_of(findings.cbegin(), findings.cend(),
                       [](const Finding &finding) { return finding.severity == Severity::error; });
}

QString name(ItemKind kind)
{
    switch (kind) {
    case ItemKind::app:
        return u"app"_s;
    case ItemKind::plugin:
        return u"plugin"_s;
    case ItemKind::fmplugin:
        return u"fmplugin"_s;
    case ItemKind::package:
        return u"pkg"_s;
    case ItemKind::diskImage:
        return u"dmg"_s;
    case ItemKind::folder:
        return u"folder"_s;
    }
    return {};
}

QByteArray toJson(const Examination &examination)
{
    QJsonArray code;
    for (const CodeEntry &entry : examination.code)
        code.append(codeObject(entry));
    QJsonArray findings;
    for (const Finding &finding : examination.findings)
        findings.append(findingObject(finding));
    QJsonObject object{{u"item"_s, examination.item},
                       {u"kind"_s, name(examination.kind)},
                       {u"refused"_s, examination.isRefused()},
                       {u"code"_s, code},
                       {u"findings"_s, findings}};
    if (examination.size > 0)
        object.insert(u"size"_s, examination.size);
    if (examination.product != Product())
        object.insert(u"product"_s, productObject(examination.product));
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

} // namespace examine

} // namespace sealwright
