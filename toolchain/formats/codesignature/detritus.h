#pragma once

#include <QString>

namespace toolchain::codesignature {

/// A file or folder with a resource fork or Finder information, which signatures do not cover and signed code
/// therefore must not have: the item itself, or what lies in it; links are not followed. Empty if there is
/// none. Public document: Apple's Technical Q&A QA1940. Any thread.
[[nodiscard]] QString detritusIn(const QString &path);

/// The path's last words in a message about it.
[[nodiscard]] QString detritusDetail(const QString &path);

} // namespace toolchain::codesignature
