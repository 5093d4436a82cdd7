#pragma once

// Every step that there is, by the names in `step`.

#include "notarization/archivesteps.h"
#include "notarization/credentialcheck.h"
#include "notarization/pollingsteps.h"
#include "notarization/staplingsteps.h"
#include "notarization/uploadstep.h"
#include "run/workingcopy.h"
#include "signing/entitlements.h"
#include "signing/packagesteps.h"
#include "signing/signingsteps.h"
#include "support/core.h"
