#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

namespace sealwright {

/// What an item is, by its lower-cased extension; it decides which steps apply.
enum class ItemKind { app, pkg, fmplugin, plugin, dmg, other };

[[nodiscard]] ItemKind itemKind(const QString &path);
[[nodiscard]] bool isBundleKind(ItemKind kind);
/// The extensions that can be submitted.
[[nodiscard]] const QStringList &submittableExtensions();

/// Something on disk that a person or a script has named, by its path. Made once, where its URL comes in.
class Item {
public:
    Item() = default;
    explicit Item(QString path)
        : m_path(std::move(path))
    {
    }
    /// Of a file URL; a slash at its end goes.
    static Item fromUrl(const QUrl &url);

    bool isNone() const { return m_path.isEmpty(); }
    const QString &path() const { return m_path; }
    QUrl url() const;
    /// The last component of the path, extension included.
    QString fileName() const;
    /// The same without the extension: what the names of folders begin with.
    QString base() const;
    /// The folder that it lies in.
    QString folder() const;
    ItemKind kind() const { return itemKind(m_path); }
    bool isApp() const { return kind() == ItemKind::app; }
    bool isBundle() const { return isBundleKind(kind()); }

private:
    QString m_path;
};

} // namespace sealwright
