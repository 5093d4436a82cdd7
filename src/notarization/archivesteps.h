#pragma once

#include "run/step.h"

#include <QStringList>

namespace sealwright {

// The steps that pack the signed bundle into the one file that the notary service takes, and find what the
// upload is to be called by. Worker thread. After a failed packing the signed copy is gone.

[[nodiscard]] StepResult makeZipArchive(Run &run);
[[nodiscard]] StepResult makeDiskImage(Run &run);
[[nodiscard]] StepResult makeDiskImageWithDropDMG(Run &run);
/// Finds the identifier of the first app in the disk image that is the item.
[[nodiscard]] StepResult findPrimaryBundleID(Run &run);

namespace step {
inline constexpr Step makeZipArchive{.name = u"Make zip archive", .work = &sealwright::makeZipArchive};
inline constexpr Step makeDiskImage{.name = u"Make disk image", .work = &sealwright::makeDiskImage};
inline constexpr Step makeDiskImageWithDropDMG{.name = u"Make disk image with DropDMG",
                                               .work = &sealwright::makeDiskImageWithDropDMG};
/// A cancel in the gap between this step and the upload does not stop the upload.
inline constexpr Step findIdentifier{
    .name = u"Find bundle identifier", .work = &findPrimaryBundleID, .cancelTest = CancelTest::isLeftOut};
} // namespace step

/// The step that makes that archive.
[[nodiscard]] const Step &archiveStep(ArchiveKind kind);
/// The row for it: people see the kind that is chosen now, and made is the one that is chosen when its turn
/// comes.
[[nodiscard]] Step archiveRow(ArchiveKind planned);

/// The names of the archives and the argument lists that make them; `item` is the path of the signed bundle.
namespace archive {

[[nodiscard]] QString zipPath(const QString &item);
[[nodiscard]] QString diskImagePath(const QString &item);
[[nodiscard]] QStringList dittoArguments(const QString &item, const QString &zip);
[[nodiscard]] QStringList hdiutilCreateArguments(const QString &item, const QString &image);
[[nodiscard]] QString dropDMGSource(const QString &item, const QString &configuration);
/// The mount point in what `hdiutil attach` prints: the last tab-separated field, trimmed.
[[nodiscard]] QString mountPoint(const QString &attachOutput);

} // namespace archive

} // namespace sealwright
