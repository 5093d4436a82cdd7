#pragma once

#include "document/documentextension.h"
#include "document/steplist.h"
#include "tools/slwtaskresponse.h"

#include <QString>
#include <QStringList>

/// Packs the signed bundle into the one file that the notary service takes. Worker thread.
class ArchiveSteps : private DocumentExtension {
public:
    explicit ArchiveSteps(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    /// Which archive would be made now, of the three kinds that there are.
    [[nodiscard]] Step chosenStep() const;

    /// Makes the archive and sets `submitFilePath`. What kind it makes is what is chosen now, not what was
    /// chosen when the submission began. False after a failure that has been reported; the signed copy is
    /// then gone.
    [[nodiscard]] bool makeArchiveForUploading();

    /// The identifier of the first app in the disk image that is the document's item; null if there is none.
    [[nodiscard]] QString primaryBundleID();

private:
    bool makeZipArchive();
    bool makeDiskImage();
    bool makeDiskImageWithDropDMG();
    void takeDropDMGImage(const QString &image);
    void deleteSignedBundle();
    QString itemPath() const;
};

/// The names of the archives and the argument lists that make them; `item` is the path of the signed bundle.
namespace archive {

[[nodiscard]] QString zipPath(const QString &item);
[[nodiscard]] QString diskImagePath(const QString &item);
[[nodiscard]] QStringList dittoArguments(const QString &item, const QString &zip);
[[nodiscard]] QStringList hdiutilCreateArguments(const QString &item, const QString &image);
[[nodiscard]] QString dropDMGSource(const QString &item, const QString &configuration);
/// The mount point in what `hdiutil attach` prints: the last tab-separated field, trimmed.
[[nodiscard]] QString mountPoint(const QString &attachOutput);

} // namespace archive
