#pragma once

#include <QByteArray>
#include <QList>

#include <optional>

namespace toolchain {

/// One value of the basic encoding rules (ITU-T X.690), definite or indefinite in length.
struct BerValue {
    int tag = -1; ///< the number, without class and form
    int tagClass = 0; ///< V_ASN1_UNIVERSAL, V_ASN1_CONTEXT_SPECIFIC …
    QByteArray whole; ///< with header, and with the end mark of an indefinite length
    QByteArray content; ///< without both

    [[nodiscard]] bool isUniversal(int number) const { return tagClass == 0 && tag == number; }
    [[nodiscard]] bool isContext(int number) const { return tagClass == 0x80 && tag == number; }
};

/// The first value of the bytes; nothing if there is none or it does not fit into them. Indefinite lengths
/// may lie 32 deep.
[[nodiscard]] std::optional<BerValue> readBer(const QByteArray &bytes);

/// The values that follow one another in the bytes, at most 1,000; nothing if any of them is damaged.
[[nodiscard]] std::optional<QList<BerValue>> readBerList(const QByteArray &bytes);

} // namespace toolchain
