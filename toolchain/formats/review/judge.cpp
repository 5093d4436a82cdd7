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
    if (signature.state == SignatureState::None)
        return {Objection::NotSigned};
    if (signature.state == SignatureState::Damaged || signature.isInvalid)
        return {Objection::Invalid};
    QList<Objection> objections;
    if (!signature.isDeveloperId)
        objections.append(Objection::NotDeveloperId);
    if (!signature.timestamp.isValid())
        objections.append(Objection::NoTimestamp);
    if (slice.isExecutable() && !signature.hasRuntime)
        objections.append(Objection::NoRuntime);
    if (slice.isExecutable() && asksForTasks(signature.entitlements))
        objections.append(Objection::GetTaskAllow);
    return objections;
}

} // namespace

QString message(Objection objection)
{
    switch (objection) {
    case Objection::Damaged:
        return u"The binary is damaged and cannot be read."_s;
    case Objection::NotSigned:
        return u"The binary is not signed."_s;
    case Objection::Invalid:
        return u"The signature of the binary is invalid."_s;
    case Objection::NotDeveloperId:
        return u"The binary is not signed with a valid Developer ID certificate."_s;
    case Objection::NoTimestamp:
        return u"The signature does not include a secure timestamp."_s;
    case Objection::NoRuntime:
        return u"The executable does not have the hardened runtime enabled."_s;
    case Objection::GetTaskAllow:
        return u"The executable requests the com.apple.security.get-task-allow entitlement."_s;
    case Objection::OldSdk:
        return u"The binary uses an SDK older than the 10.9 SDK."_s;
    }
    return {};
}

QString documentUrl(Objection objection)
{
    const QString page =
        u"https://developer.apple.com/documentation/security/resolving-common-notarization-issues"_s;
    switch (objection) {
    case Objection::Damaged:
        return {};
    case Objection::NotSigned:
    case Objection::NotDeveloperId:
        return page + u"#Use-a-valid-Developer-ID-certificate"_s;
    case Objection::Invalid:
        return page + u"#Ensure-a-valid-code-signature"_s;
    case Objection::NoTimestamp:
        return page + u"#Include-a-secure-timestamp"_s;
    case Objection::NoRuntime:
        return page + u"#Enable-hardened-runtime"_s;
    case Objection::GetTaskAllow:
        return page + u"#Avoid-the-get-task-allow-entitlement"_s;
    case Objection::OldSdk:
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
        objections.append(Objection::OldSdk);
    return objections;
}

QList<Objection> objectionsOnceSigned(const SliceFacts &slice)
{
    return slice.mustBeSigned() && hasOldSdk(slice) ? QList{Objection::OldSdk} : QList<Objection>();
}

} // namespace toolchain::review
