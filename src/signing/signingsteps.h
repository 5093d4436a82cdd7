#pragma once

#include "run/step.h"
#include "tools/slwtaskresponse.h"

namespace sealwright {

// The steps that sign the working copy. Worker thread.

/// Also makes the item's main script read-only.
[[nodiscard]] StepResult clearXattrs(Run &run);
/// Makes the item's main script read-only, so that running it does not break the seal. Never fails.
[[nodiscard]] StepResult lockMainScpt(Run &run);

/// Signs what is inside the item, from the inside out, and leaves the item itself to the step behind.
[[nodiscard]] StepResult codesignMembers(Run &run);
/// Signs all that is inside of what is no item to be signed by itself, such as a folder.
[[nodiscard]] StepResult codesignAllMembers(Run &run);

/// Signs the item itself, with the run's entitlements.
[[nodiscard]] StepResult codesignItem(Run &run);
/// Signs a disk image, which has none.
[[nodiscard]] StepResult codesignDiskImage(Run &run);
/// Has the signed item assessed. What comes of it is for the log file; it holds nothing up.
[[nodiscard]] StepResult assessSignature(Run &run);
/// Whether people want that, by their settings at this moment.
[[nodiscard]] bool wantsAssessment(Run &run);

/// The log line of a failed clearing of attributes.
[[nodiscard]] QString xattrFailureLine(const SLWTaskResponse &response);
/// The log line of a failed signing of a member.
[[nodiscard]] QString memberFailureLine(const SLWTaskResponse &response, const QString &item);

namespace step {
inline constexpr Step clearAttributes{.name = u"Clear extended attributes", .work = &clearXattrs};
inline constexpr Step lockScript{.name = u"Lock main script", .work = &lockMainScpt};
inline constexpr Step signContents{.name = u"Sign contents", .work = &codesignMembers};
inline constexpr Step signAllContents{.name = u"Sign contents", .work = &codesignAllMembers};
/// The check belongs to it: a cancel is looked for behind the two.
inline constexpr Step signMainFile{
    .name = u"Sign main file", .work = &codesignItem, .cancelTest = CancelTest::isLeftOut};
inline constexpr Step signDiskImage{.name = u"Sign main file", .work = &codesignDiskImage};
inline constexpr Step checkSignature{
    .name = u"Check code signature", .work = &assessSignature, .isWanted = &wantsAssessment};
} // namespace step

} // namespace sealwright
