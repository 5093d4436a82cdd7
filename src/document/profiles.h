#pragma once

#include "platform/fileservice.h"
#include "platform/result.h"

#include <QStringList>
#include <QVariantMap>

namespace sealwright {

class MainWinController;

/// What a document of one product is set to, under a name: credentials, identity, entitlements and options.
/// No secret is in it: a password or key is named by its keychain item.
///
/// The keys are those of the preferences that new documents start from, and `skipPaths` (a list of texts) and
/// `extraEntitlements` (path of a property list).
using Profile = QVariantMap;

namespace profiles {

/// What the document is set to now. Main thread.
[[nodiscard]] Profile profileOf(const MainWinController &document);
/// Sets the document to it. Fails, and changes nothing, where an identity is named that cannot be chosen.
/// What the profile does not mention stays. Main thread.
[[nodiscard]] platform::Outcome apply(MainWinController &document, const Profile &profile);
/// The same with one that is kept under that name, which the document has from then on. Main thread.
[[nodiscard]] platform::Outcome use(MainWinController &document, const QString &name);

/// The form of the file: a JSON object (RFC 8259), made to be shared.
[[nodiscard]] QByteArray textOf(const Profile &profile);
/// Fails for what is no profile. Keys that are not known are passed over, as are values of another type.
[[nodiscard]] platform::Result<Profile> profileIn(const QByteArray &text);

} // namespace profiles

/// The profiles in a folder, one in each file. Whoever puts a file there shares it. Any thread.
class ProfileStore {
public:
    ProfileStore(platform::FileService &files, QString folder);

    /// Sorted as a person reads them.
    [[nodiscard]] QStringList names() const;
    [[nodiscard]] platform::Result<Profile> read(const QString &name) const;
    /// Takes the place of one of that name. Fails for a name that no file can have.
    [[nodiscard]] platform::Outcome save(const QString &name, const Profile &profile) const;
    /// Moves it to the trash.
    [[nodiscard]] platform::Outcome remove(const QString &name) const;
    [[nodiscard]] QString path(const QString &name) const;

private:
    platform::FileService &m_files;
    const QString m_folder;
};

} // namespace sealwright
