#pragma once

#include <QString>

namespace sealwright {

/// The keys of the user's settings.
namespace key {

inline const QString allowAppleEvents = QStringLiteral("allowAppleEvents");
inline const QString pollingDelay = QStringLiteral("pollingDelay"); ///< seconds between polls of the service
inline const QString dontClearLogEachTime = QStringLiteral("dontClearLogEachTime");
inline const QString dontSignEnclosures = QStringLiteral("dontSignEnclosures");
inline const QString allowFrameworks = QStringLiteral("allowFrameworks");
inline const QString prefCodesignDeep = QStringLiteral("prefCodesignDeep");
inline const QString prefCodesignForce = QStringLiteral("prefCodesignForce");
inline const QString logFontSize = QStringLiteral("logFontSize"); ///< points
inline const QString userInfoShowWhenActive = QStringLiteral("userInfoShowWhenActive");
inline const QString detailedLogToFile = QStringLiteral("detailedLogToFile");
inline const QString prefDoPostCodesignCheck = QStringLiteral("prefDoPostCodesignCheck");
inline const QString preferXcodeAltool = QStringLiteral("preferXcodeAltool");
inline const QString prefRetryLimitFor239Failure = QStringLiteral("prefRetryLimitFor239Failure");

// Document defaults without a registered value
inline const QString providerNameValue = QStringLiteral("providerNameValue");
inline const QString appleIDValue = QStringLiteral("appleIDValue");
inline const QString appPassValue = QStringLiteral("appPassValue");
inline const QString lastUsedIdentity = QStringLiteral("lastUsedIdentity");
inline const QString createDiskImage = QStringLiteral("createDiskImage");
inline const QString useDropDMGForImages = QStringLiteral("useDropDMGForImages");
inline const QString dropDMGConfigName = QStringLiteral("dropDMGConfigName");
inline const QString allowCalendars = QStringLiteral("allowCalendars");
inline const QString allowAudio = QStringLiteral("allowAudio");
inline const QString allowCamera = QStringLiteral("allowCamera");
inline const QString allowLocation = QStringLiteral("allowLocation");
inline const QString allowPhotos = QStringLiteral("allowPhotos");
inline const QString allowAddressBook = QStringLiteral("allowAddressBook");
inline const QString allowJITCode = QStringLiteral("allowJITCode");
inline const QString allowUnsignedExecMem = QStringLiteral("allowUnsignedExecMem");
inline const QString allowDYLDEnvVariables = QStringLiteral("allowDYLDEnvVariables");
inline const QString disableMemProtection = QStringLiteral("disableMemProtection");
inline const QString isDebuggingTool = QStringLiteral("isDebuggingTool");

// Of hosts without Apple's tools
inline const QString toolRoot = QStringLiteral("toolRoot");
inline const QString toolPause =
    QStringLiteral("toolPause"); ///< seconds that a runner waits after a tool's end
/// Whether launch goes on by itself with what still waits for a verdict.
inline const QString resumeWaiting = QStringLiteral("resumeWaiting");
/// Whether the end of a run is announced while no window of the application is active.
inline const QString notifiesOfEndings = QStringLiteral("notifiesOfEndings");
/// "Dark" or absent; follows the desktop.
inline const QString AppleInterfaceStyle = QStringLiteral("AppleInterfaceStyle");

} // namespace key

// The limits of what may be set; those of the delay are kept by running workflows as well.
inline constexpr float shortestPollingDelay = 20.0F; ///< seconds
inline constexpr float longestPollingDelay = 300.0F;
inline constexpr int lowestRetryLimit = 3;

/// The value of `AppleInterfaceStyle` on a dark desktop.
inline constexpr QStringView darkInterfaceStyle = u"Dark";

} // namespace sealwright
