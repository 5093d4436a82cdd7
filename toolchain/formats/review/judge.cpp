#include "formats/review/judge.h"

using namespace Qt::StringLiterals;

namespace toolchain::review {

namespace {

constexpr quint32 oldestSdk = 0x000a0900; // 10.9

bool hasOldSdk(const SliceFacts &slice)
{
    return slice.sdk != 0 && slice.sdk < oldestSdk
        && (slice.platform.isEmpty() || slice.platform == "macos"_L1);
}

bool asksForTasks(const QVariantMap &entitlements)
{
    return entitlements.value(u"com.apple.security.get-task-allow"_s).toBool();
}

QList<Objection> objectionsToSignature(const SliceFacts &slice)
{
    const SignatureFacts &signature = slice.signature;
    if (signature.state == SignatureState::none)
        return {Objection::notSigned};
    if (signature.state == SignatureState::damaged)
        return {Objection::invalid};
    QList<Objection> objections;
    if (signature.isInvalid)
        objections.append(Objection::invalid);
    if (!signature.isDeveloperId)
        objections.append(Objection::notDeveloperId);
    if (!signature.timestamp.isValid())
        objections.append(Objection::noTimestamp);
    if (slice.isExecutable() && !signature.hasRuntime)
        objections.append(Objection::noRuntime);
    if (slice.isExecutable() && asksForTasks(signature.entitlements))
        objections.append(Objection::getTaskAllow);
    return objections;
}

} // namespace

QString message(Objection objection)
{
    switch (objection) {
    case Objection::damaged:
        return u"The binary is damaged and cannot be read."_s;
    case Objection::notSigned:
        return u"The binary is not signed."_s;
    case Objection::invalid:
        return u"The signature of the binary is invalid."_s;
    case Objection::notDeveloperId:
        return u"The binary is not signed with a valid Developer ID certificate."_s;
    case Objection::noTimestamp:
        return u"The signature does not include a secure timestamp."_s;
    case Objection::noRuntime:
        return u"The executable does not have the hardened runtime enabled."_s;
    case Objection::getTaskAllow:
        return u"The executable requests the com.apple.security.get-task-allow entitlement."_s;
    case Objection::oldSdk:
        return u"The binary uses an SDK older than the 10.9 SDK."_s;
    }
    return {};
}

QString documentUrl(Objection objection)
{
    const QString page =
        u"https://developer.apple.com/documentation/security/resolving-common-notarization-issues"_s;
    switch (objection) {
    case Objection::damaged:
        return {};
    case Objection::notSigned:
    case Objection::notDeveloperId:
        return page + u"#Use-a-valid-Developer-ID-certificate"_s;
    case Objection::invalid:
        return page + u"#Ensure-a-valid-code-signature"_s;
    case Objection::noTimestamp:
        return page + u"#Include-a-secure-timestamp"_s;
    case Objection::noRuntime:
        return page + u"#Enable-hardened-runtime"_s;
    case Objection::getTaskAllow:
        return page + u"#Avoid-the-get-task-allow-entitlement"_s;
    case Objection::oldSdk:
        return page + u"#Use-the-macOS-10.9-SDK-or-later"_s;
    }
    return {};
}

QList<Objection> objectionsTo(const SliceFacts &slice)
{
    if (!slice.mustBeSigned())
        return {};
    QList<Objection> objections = objectionsToSignature(slice);
    if (hasOldSdk(slice))
        objections.append(Objection::oldSdk);
    return objections;
}

QList<Objection> objectionsOnceSigned(const SliceFacts &slice)
{
    return slice.mustBeSigned() && hasOldSdk(slice) ? QList{Objection::oldSdk} : QList<Objection>();
}

} // namespace toolchain::review
