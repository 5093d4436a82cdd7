#pragma once

#include "document/steplist.h"

enum class ItemKind;

/// What of the settings decides which steps a run has.
struct StepOptions {
    bool signsContents = true; ///< and not the main file alone
    bool checksSignature = false; ///< has a signed bundle assessed
    Step archive = Step::makeZipArchive; ///< which of the three a bundle is packed by
};

/// The steps that a run has by what its item is, in their order.
[[nodiscard]] QList<Step> submitSteps(ItemKind kind, const StepOptions &options);
/// Of an app, or of anything else, which is signed as a folder is.
[[nodiscard]] QList<Step> signOnlySteps(bool isApp, const StepOptions &options);
[[nodiscard]] QList<Step> stapleOnlySteps();
