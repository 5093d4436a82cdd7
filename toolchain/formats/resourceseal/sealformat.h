#pragma once

#include "formats/resourceseal/sealrules.h"

#include <QHash>

#include <functional>
#include <vector>

namespace toolchain::seal {

/// What a seal says of one path.
struct Entry {
    QByteArray sha1; ///< 20 bytes; empty if the entry has none
    QByteArray sha256; ///< 32 bytes; empty if the entry has none
    QByteArray linkTarget; ///< null for anything but a symbolic link
    QByteArray cdHash; ///< of nested code, 20 bytes
    QString requirement; ///< the designated requirement of nested code as text
    bool isOptional = false;

    [[nodiscard]] bool isLink() const { return !linkTarget.isNull(); }
    [[nodiscard]] bool isNested() const { return !requirement.isNull() || !cdHash.isEmpty(); }
};

struct NamedEntry {
    QByteArray path; ///< UTF-8 as it stands on disk, relative to the folder that the seal starts from
    Entry entry;
};

/// A seal taken apart.
struct CodeSeal {
    QHash<QByteArray, Entry> files;
    QHash<QByteArray, Entry> files2;
    QList<Rule> rules;
    QList<Rule> rules2;
    int version = 2; ///< 1 if it has no "files2": a seal of before 2013
};

/// Whether a property list has the first key before the second one: by UTF-16 code units.
[[nodiscard]] bool comesBefore(QByteArrayView left, QByteArrayView right);

/// Takes the next bytes of a seal; false if it cannot.
using SealSink = std::function<bool(QByteArrayView bytes)>;
/// Calls the visitor with every entry of a list, in the order of `comesBefore`.
using EntryVisitor = std::function<void(const QByteArray &path, const Entry &entry)>;
using EntrySource = std::function<void(const EntryVisitor &visit)>;

/// What a seal is to say. Paths and texts must be valid UTF-8 and hold what XML can hold.
struct SealContents {
    EntrySource files;
    EntrySource files2;
    const RuleSet &rules;
    const RuleSet &rules2;
};

/// Writes a `CodeResources` file as codesign does, in blocks. Answers whether the sink has taken all of them.
[[nodiscard]] bool writeSeal(const SealSink &sink, const SealContents &contents);

/// The bytes of a `CodeResources` file as codesign writes them. Both lists may be in any order. The entries
/// must be valid UTF-8 and hold what XML can hold.
[[nodiscard]] QByteArray sealBytes(std::vector<NamedEntry> files, std::vector<NamedEntry> files2,
                                   const RuleSet &rules, const RuleSet &rules2);

/// Takes a `CodeResources` file apart, in the XML or in the binary form. What an entry has beside the keys
/// that are known is passed over. Fails with what is wrong and where.
[[nodiscard]] platform::Result<CodeSeal> readSeal(const QByteArray &bytes);

} // namespace toolchain::seal
