#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

namespace toolchain::codesignature {

/// Numbers of digests in code directories: CS_HASHTYPE_… of Apple's <kern/cs_blobs.h>.
enum class HashType : quint8 { none = 0, sha1 = 1, sha256 = 2, sha256Truncated = 3, sha384 = 4, sha512 = 5 };

/// The length of a digest as a code directory holds it; 0 for a number that is none.
[[nodiscard]] qsizetype hashSize(HashType type);

/// "sha1", "sha256", …; as codesign(1) names them.
[[nodiscard]] QString hashName(HashType type);

/// The digest whose name is given; None if it is unknown.
[[nodiscard]] HashType hashTypeNamed(QStringView name);

/// How good a digest is: of several code directories the one with the highest counts.
[[nodiscard]] int hashRank(HashType type);

/// A digest in the making. Used by one thread at a time, and again after `result`.
class Digest {
public:
    explicit Digest(HashType type);
    ~Digest();
    Digest(Digest &&) noexcept;
    Digest &operator=(Digest &&) = delete;

    void add(QByteArrayView bytes);
    /// `hashSize` bytes; and begins anew.
    [[nodiscard]] QByteArray result();
    /// The same, written to a place that has room for `hashSize` bytes.
    void resultInto(char *place);

private:
    void restart();

    struct Context;
    std::unique_ptr<Context> m_context;
};

[[nodiscard]] QByteArray digestOf(QByteArrayView bytes, HashType type);

} // namespace toolchain::codesignature
