#pragma once

#include "examine/prediction.h"
#include "examine/product.h"
#include "formats/review/codefacts.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace sealwright::examine {

enum class Severity { error, warning };

/// Something that would be refused, or that is seldom meant. The rules keep their names.
struct Finding {
    QString rule;
    Severity severity = Severity::error;
    QString path; ///< from the item
    QString architecture; ///< empty if it is not about one
    QString message; ///< the sentence in which it would be refused
    QString advice;
};

/// One thing that is code or holds some.
struct CodeEntry {
    QString path; ///< from the item; "." for the item itself
    QString kind;
    QString mainExecutable; ///< of a bundle, from the item; empty for anything else
    QString identifier; ///< of a bundle, by its Info.plist
    QString version; ///< the same
    QString build; ///< the same, CFBundleVersion
    std::optional<int> order; ///< from 1; nothing if this run does not sign it
    QString reason; ///< why this run does not sign it; empty if it does
    toolchain::review::CodeFacts
        facts; ///< of the bundle's main executable; no slices for what is no Mach-O file
    std::optional<toolchain::review::SignatureFacts> ownSignature; ///< of what is no Mach-O file
};

/// What is found in an item.
struct Examination {
    QString item; ///< absolute
    ItemKind kind = ItemKind::folder;
    qint64 size = 0; ///< of all regular files, in bytes, where they are to be counted
    Product product; ///< likewise
    QList<CodeEntry> code;
    QList<Finding> findings;
    QStringList unread; ///< paths from the item of what may not or cannot be read

    [[nodiscard]] bool isRefused() const;
};

[[nodiscard]] QString name(ItemKind kind);

/// The form in which programs read it: one object, described in docs/scripting.md.
[[nodiscard]] QByteArray toJson(const Examination &examination);

} // namespace sealwright::examine
