#include "app/preferencekeys.h"

namespace sealwright {

QVariantMap key::registeredDefaults()
{
    return {
        {allowAppleEvents, true},
        {pollingDelay, 30.0},
        {dontClearLogEachTime, false},
        {dontSignEnclosures, false},
        {allowFrameworks, true},
        {prefCodesignDeep, false},
        {prefCodesignForce, true},
        {logFontSize, 12},
        {userInfoShowWhenActive, true},
        {detailedLogToFile, true},
        {prefDoPostCodesignCheck, false},
        {preferXcodeAltool, true},
        {prefRetryLimitFor239Failure, 1000},
        // Not one of the thirteen: only hosts whose tools are the bundled ones know this pause.
        {toolPause, 0.15},
    };
}

} // namespace sealwright
