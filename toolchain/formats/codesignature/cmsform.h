#pragma once

#include <QByteArray>
#include <QString>

namespace toolchain {

/// The parts of a CMS that stand outside of its signed attributes and that libcrypto reads generously: the
/// letters of a name in either case, any version, any form of a set. Nothing vouches for these bytes, so that
/// a change of one of them would go unnoticed if they were not held to the form that RFC 5652 gives them.
enum class CmsContent { detached, timeStamp };

/// What is wrong with the form of a CMS of one signer, in DER or in the half indefinite form; empty if
/// nothing is. `leaf` is the signer's certificate in DER form.
[[nodiscard]] QString objectionToForm(const QByteArray &cms, const QByteArray &leaf, CmsContent content);

} // namespace toolchain
