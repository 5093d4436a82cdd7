#pragma once

#include "examine/choices.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTemporaryDir>

/// Makes an item in a folder of its own. Names are from the item, which is an app called Foo unless `begin`
/// names another.
class ItemMaker {
public:
    /// Makes an app with a main executable for the architecture; with another name a plain folder, or an
    /// empty file.
    explicit ItemMaker(const QString &architecture = QStringLiteral("universal"));

    [[nodiscard]] QString item() const { return m_folder.filePath(m_name); }
    [[nodiscard]] QString path(const QString &name) const { return item() + u'/' + name; }
    [[nodiscard]] QString folder() const { return m_folder.path(); }
    /// The same contents under another name, such as that of a folder.
    void rename(const QString &name);

    void file(const QString &name, const QByteArray &bytes, int mode = 0644) const;
    void code(const QString &name, const QByteArray &bytes) const { file(name, bytes, 0755); }
    void link(const QString &name, const QString &target) const;
    void remove(const QString &name) const;
    /// A bundle with its executable; an extension of "framework" gives one with a version folder.
    void bundle(const QString &name, const QByteArray &executable) const;
    void info(const QString &name, const QString &executable, const QString &identifier) const;

    struct Packed {
        QString name;
        QByteArray bytes;
        QString target = {}; ///< of a link; empty for a file
    };
    /// What the item holds now, below its own name.
    [[nodiscard]] QList<Packed> contents() const;
    /// Replaces the item by a file beside which nothing of it is left.
    void become(const QString &name, const QByteArray &bytes);
    /// A flat package that would install the files.
    [[nodiscard]] QByteArray packageBytes(const QList<Packed> &files) const;
    /// A disk image with the files.
    [[nodiscard]] QByteArray imageBytes(const QList<Packed> &files) const;
    /// A zip archive, or by its extension a tar archive, compressed or not, a cpio archive or a xar archive.
    void archive(const QString &name, const QList<Packed> &files) const;
    /// One compressed file.
    void gzip(const QString &name, const QByteArray &bytes) const;
    [[nodiscard]] QByteArray archiveBytes(const QString &extension, const QList<Packed> &files) const;

    examine::Choices choices;

private:
    QTemporaryDir m_folder;
    QString m_name = QStringLiteral("Foo.app");
};
