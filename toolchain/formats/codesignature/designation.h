#pragma once

#include "formats/codesignature/requirement.h"
#include "formats/codesignature/signaturereader.h"

namespace toolchain::codesignature {

/// By what a seal knows code inside a bundle.
struct NestedDesignation {
    QByteArray cdHash; ///< 20 bytes: of the native slice, by its best digest
    QString requirement; ///< the text of the designated requirement
};

/// The designated requirement of signed code as a blob: the one that its signature holds; else, of what is
/// signed ad hoc, the digests of its code directories, those of the native slice first.
[[nodiscard]] platform::Result<QByteArray> designatedRequirementOf(const SignedCode &code);

/// What a seal says of an item. The error is a sentence of codebundle.h for one that is not signed.
[[nodiscard]] platform::Result<NestedDesignation> designationOf(const QString &path);

/// All digests of all slices, 20 bytes each, those of the native slice first and within a slice SHA-1 first.
[[nodiscard]] QList<QByteArray> cdHashesOf(const SignedCode &code);

} // namespace toolchain::codesignature
