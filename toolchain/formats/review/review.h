#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// What the notary service finds in an item that is sent to it.
namespace toolchain::review {

/// One entry of the service's log. Public document: Apple's "Resolving common notarization issues".
struct ReviewIssue {
    QString severity; ///< "error" or "warning"
    QString path; ///< from the archive's own name, such as "Foo.zip/Foo.app/Contents/MacOS/Foo"
    QString message;
    QString docUrl; ///< null if there is none
    QString architecture; ///< null if the issue is not about one
};

/// Code that was found good, as a ticket names it.
struct TicketContent {
    QString path; ///< as in an issue
    QString architecture; ///< empty for what has none, such as a disk image
    QByteArray cdHash; ///< 20 bytes
    int hashType = 2; ///< 1 for SHA-1, as for the checksum of a package's table of contents; 2 for SHA-256
};

/// What became of a review.
struct ItemReview {
    QList<ReviewIssue> issues;
    QList<TicketContent> ticketContents; ///< empty where there is an error among the issues
    bool isDamaged = false; ///< the item is no archive that the service reads, or cannot be read to its end

    [[nodiscard]] bool isAccepted() const;
};

/// Looks into a zip archive, a disk image or a flat package, and into the archives in it, finds every Mach-O
/// file however deep, and judges it by the service's published rules. `archiveName` is the name under which
/// the item was sent. Unpacks into a temporary folder, which is gone afterwards. The locale must be a UTF-8
/// one. Any thread.
[[nodiscard]] ItemReview reviewItem(const QString &path, const QString &archiveName);

} // namespace toolchain::review
