#pragma once

#include "platform/fileservice.h"
#include "platform/posix/replacementfolders.h"

namespace platform {

/// The files of a POSIX host.
class PosixFileService : public FileService {
public:
    bool isReachable(const QString &path) const override;
    bool exists(const QString &path) const override;
    bool isReadable(const QString &path) const override;
    FileKind kind(const QString &path) const override;
    std::optional<bool> isPackage(const QString &path) const override;
    QStringList contentsOfDirectory(const QString &path, FolderLink link) const override;
    QList<FolderEntry> entriesOfDirectory(const QString &path, FolderLink link) const override;
    Outcome createDirectory(const QString &path) override;
    Outcome createFile(const QString &path) override;
    Outcome removeItem(const QString &path) override;
    Outcome moveItem(const QString &from, const QString &to) override;
    Outcome copyItem(const QString &from, const QString &to) override;
    Outcome copyResolvedItem(const QString &from, const QString &to) override;
    Outcome trashItem(const QString &path) override;
    Outcome setPermissions(const QString &path, unsigned mode) override;
    Outcome setPermissionsInside(const QString &item, const QString &inside, unsigned mode) override;
    [[nodiscard]] std::shared_ptr<FolderClaim> claimFolder(const QString &path) override;
    bool isClaimed(const QString &path) const override;
    QByteArray stateOf(const QString &item) const override;
    Result<QByteArray> readFile(const QString &path) const override;
    Outcome writeFile(const QString &path, const QByteArray &bytes) override;
    Outcome writeFileAtomically(const QString &path, const QByteArray &bytes) override;
    [[nodiscard]] std::shared_ptr<FileHandle> openForAppending(const QString &path) override;
    Result<QString> replacementDirectory(const QString &forItem) override;
    Outcome replaceItem(const QString &path, const QString &replacement) override;
    /// For a process that ends without an end of this object. What a workflow still makes there is lost.
    void removeReplacementDirectories() { m_replacementFolders.removeAll(); }

private:
    ReplacementFolders m_replacementFolders;
};

} // namespace platform
