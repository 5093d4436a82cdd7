#pragma once

#include "formats/resourceseal/filedigests.h"
#include "formats/resourceseal/sealformat.h"

namespace toolchain::seal {

/// Which digests the entries under "files2" carry; those under "files" are SHA-1 always.
enum class Digests { sha1, sha256, sha1AndSha256 };

/// A file that a seal covers.
struct SealedFile : DigestJob {
    Coverage first = Coverage::omitted; ///< by "rules"
    Coverage second = Coverage::omitted; ///< by "rules2"
};

/// A seal that is made and not yet text. It takes some 200 bytes a file, the text twice as much.
class MadeSeal {
public:
    /// The files' digests are made; `others` are links and nested code. Both in any order.
    MadeSeal(Layout layout, Digests digests, std::vector<SealedFile> files, std::vector<NamedEntry> others);

    /// Writes the bytes of `_CodeSignature/CodeResources`, the same ones each time. Answers whether the sink
    /// has taken all of them.
    [[nodiscard]] bool write(const SealSink &sink) const;

    [[nodiscard]] QByteArray bytes() const;

private:
    void visitFiles(const EntryVisitor &visit) const;
    void visitFiles2(const EntryVisitor &visit) const;

    Layout m_layout;
    Digests m_digests;
    std::vector<SealedFile> m_files;
    std::vector<NamedEntry> m_others;
};

} // namespace toolchain::seal
