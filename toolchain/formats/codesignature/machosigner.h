#pragma once

#include "formats/codesignature/machoimage.h"
#include "formats/codesignature/signatureplan.h"

#include <QList>

namespace toolchain::codesignature {

/// Called when the new file is whole and about to take the old one's place; a failure stops that.
using BeforeReplacing = std::function<platform::Outcome()>;

/// Signs a Mach-O file: one plan for each slice, whose page shift tells the size of pages. The file is
/// written anew beside itself as FILE.cstemp and put in its place whole, with its mode and attributes; other
/// names of it keep the old one. The bytes that a signature covers stay as they are, save for the head. The
/// error names the reason and, where it matters, the slice, without the file's name; the file is then as it
/// was. One at a time in a process.
[[nodiscard]] platform::Outcome signMachO(const QString &path, const QList<SignaturePlan> &plans,
                                          const BeforeReplacing &beforeReplacing = {});

/// Takes the signatures of all slices out, in the same way.
[[nodiscard]] platform::Outcome stripMachO(const QString &path);

} // namespace toolchain::codesignature
