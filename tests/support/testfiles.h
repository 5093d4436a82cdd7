#pragma once

#include "platform/posix/posixfileservice.h"

#include <QSet>

#include <functional>

/// The real file service, with a trash of its own and operations that fail where a test wants it.
class TestFiles : public platform::PosixFileService {
public:
    explicit TestFiles(QString trash)
        : m_trash(std::move(trash))
    {
    }

    /// Asked before each changing operation ("copyItem" and so on, with its target path); a text that is not
    /// null is the error with which the operation fails.
    std::function<QString(const QString &operation, const QString &path)> failure;
    QStringList trashed;
    /// Entries that can be neither listed nor told the kind of.
    QSet<QString> unreadable;
    /// Lists by name, so that a walk meets everything in one order on all file systems.
    bool sortsListings = false;

    platform::FileKind kind(const QString &path) const override;
    QStringList contentsOfDirectory(const QString &path, platform::FolderLink link) const override;
    QList<platform::FolderEntry> entriesOfDirectory(const QString &path,
                                                    platform::FolderLink link) const override;
    platform::Outcome createDirectory(const QString &path) override;
    platform::Outcome createFile(const QString &path) override;
    platform::Outcome removeItem(const QString &path) override;
    platform::Outcome moveItem(const QString &from, const QString &to) override;
    platform::Outcome copyItem(const QString &from, const QString &to) override;
    platform::Outcome copyResolvedItem(const QString &from, const QString &to) override;
    platform::Outcome trashItem(const QString &path) override;
    platform::Outcome setPermissions(const QString &path, unsigned mode) override;
    platform::Outcome setPermissionsInside(const QString &item, const QString &inside,
                                           unsigned mode) override;
    platform::Result<QByteArray> readFile(const QString &path) const override;
    bool isReadable(const QString &path) const override;
    platform::Outcome writeFile(const QString &path, const QByteArray &bytes) override;
    platform::Outcome writeFileAtomically(const QString &path, const QByteArray &bytes) override;
    platform::Result<QString> replacementDirectory(const QString &forItem) override;
    platform::Outcome replaceItem(const QString &path, const QString &replacement) override;

private:
    QString failureOf(const char *operation, const QString &path) const;

    const QString m_trash;
};
