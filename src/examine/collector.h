#pragma once

#include "examine/examination.h"
#include "formats/review/contentwalk.h"
#include "formats/review/linktarget.h"
#include "platform/fileservice.h"

#include <QHash>

namespace sealwright::examine {

/// Collects the code of an item as a walk comes by it, and what the walk itself finds wrong.
class Collector : public toolchain::review::WalkVisitor {
public:
    enum class Sizes { counted, leftOut };

    Collector(Examination &examination, const platform::FileService &files, Sizes sizes);

    void folder(const toolchain::review::WalkPlace &place, const QStringList &names) override;
    void machO(const toolchain::review::WalkFile &file) override;
    void script(const toolchain::review::WalkFile &file) override;
    void file(const toolchain::review::WalkFile &file) override;
    void link(const toolchain::review::WalkPlace &place, const QString &target) override;
    void special(const toolchain::review::WalkPlace &place) override;
    void unreadable(const toolchain::review::WalkPlace &place, const QString &reason) override;
    void enterArchive(const toolchain::review::WalkFile &file) override;
    void leaveArchive(const toolchain::review::WalkFile &file) override;
    void tooDeep(const toolchain::review::WalkFile &file) override;
    void damagedArchive(const toolchain::review::WalkFile &file, const QString &reason) override;

    /// The paths of code that lies in an archive within the item.
    [[nodiscard]] bool isInArchive(const QString &path) const;

private:
    [[nodiscard]] toolchain::review::LinkTarget judge(const toolchain::review::WalkPlace &place,
                                                      const QString &target) const;
    void addBundle(const toolchain::review::WalkPlace &place, const QString &kind, const QString &executable);
    void take(const toolchain::review::WalkFile &file);
    void judgeContainer(const toolchain::review::WalkFile &file);
    void checkNames(const toolchain::review::WalkPlace &place, const QStringList &names);
    void checkCharacters(const toolchain::review::WalkPlace &place, const QStringList &names);
    void checkLength(const toolchain::review::WalkPlace &place);
    void checkAttributes(const toolchain::review::WalkFile &file);
    void find(const QString &rule, Severity severity, const QString &path, const QString &message,
              const QString &advice = {});

    Examination &m_examination;
    const platform::FileService &m_files;
    const toolchain::TrustStore m_store = toolchain::TrustStore::ofThisMachine();
    const Sizes m_sizes;
    const int m_ownDepth; ///< of archives: an image or a package is one itself
    QHash<QString, QString> m_folders; ///< of bundles in archives, by their executables; absolute
    QHash<QString, qsizetype> m_byExecutable; ///< entries of bundles by the paths of their executables
    toolchain::review::BundleLinks m_links; ///< of bundles in archives
    QStringList m_archives; ///< that are being walked, and were, within the item
    QList<qsizetype> m_openArchives; ///< how many entries there were when each was entered
};

} // namespace sealwright::examine
