#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QList>
#include <QString>

/// Writes xar archives by hand, so that tests need no writer that is under test, and can write bad ones.
namespace xarbuilder {

/// A file whose bytes are stored as they are.
struct XarFile {
    QString name;
    QByteArray content;
    quint64 offset = 0; ///< in the heap; 0: behind the one before
};

struct XarOptions {
    QString style = QStringLiteral("sha1"); ///< of the table's checksum
    QCryptographicHash::Algorithm algorithm = QCryptographicHash::Sha1;
    quint32 algorithmNumber = 1; ///< in the header
};

/// The XML of the table; the first file lies right behind the checksum.
[[nodiscard]] QByteArray tocOf(const QList<XarFile> &files, const XarOptions &options = {});

/// An archive with any table in front of a heap that begins with the table's checksum; holes stay holes.
void writeArchive(const QString &path, const QByteArray &toc, const QList<XarFile> &files,
                  const XarOptions &options = {});

/// Both at once.
void writeArchive(const QString &path, const QList<XarFile> &files, const XarOptions &options = {});

/// A zlib stream.
[[nodiscard]] QByteArray packed(const QByteArray &bytes);

} // namespace xarbuilder
