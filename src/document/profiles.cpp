#include "document/profiles.h"

#include "document/applicationinterface.h"
#include "document/documentdefaults.h"
#include "document/mainwincontroller.h"
#include "platform/host.h"
#include "platform/itempath.h"
#include "run/preferencekeys.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype mostBytes = 256 * 1024;
constexpr qsizetype longestName = 100;

const QString mark = u"sealwrightProfile"_s; ///< the number of the form
const QString skipPaths = u"skipPaths"_s;
const QString extraEntitlements = u"extraEntitlements"_s;

/// Whether the value has the type that the document's default of that key has.
bool isOfItsType(const QString &key, const QJsonValue &value)
{
    static const QStringList texts{key::providerNameValue, key::appleIDValue,      key::lastUsedIdentity,
                                   key::appPassValue,      key::dropDMGConfigName, extraEntitlements};
    if (key == skipPaths)
        return value.isArray();
    if (texts.contains(key))
        return value.isString();
    const auto &defaults = documentDefaults();
    return value.isBool()
        && std::any_of(defaults.cbegin(), defaults.cend(),
                       [&key](const DocumentDefault &known) { return known.key == key; });
}

void setText(TextField &field, const Profile &profile, const QString &key)
{
    if (profile.contains(key))
        field.setStringValue(profile.value(key).toString());
}

void setFlags(MainWinController &document, const Profile &profile)
{
    if (profile.contains(key::createDiskImage))
        document.useDiskImage.set(profile.value(key::createDiskImage).toBool());
    if (profile.contains(key::useDropDMGForImages))
        document.useDropDMG.set(profile.value(key::useDropDMGForImages).toBool()
                                && document.appDelegate().hasDropDMG());
    for (const auto &[key, checkbox] : checkboxDefaults()) {
        if (profile.contains(key))
            (document.*checkbox).setState(profile.value(key).toBool() ? 1 : 0);
    }
}

void setFiles(MainWinController &document, const Profile &profile)
{
    if (profile.contains(skipPaths))
        document.skipPaths.set(profile.value(skipPaths).toStringList());
    if (!profile.contains(extraEntitlements))
        return;
    const QString path = profile.value(extraEntitlements).toString();
    document.extraEntitlementsURL.set(path.isEmpty() ? QUrl() : itempath::toUrl(path));
}

/// The identity that is to be chosen; empty if the profile leaves that open.
QString identityOf(const Profile &profile)
{
    const QString identity = profile.value(key::lastUsedIdentity).toString();
    return identity == noIdentitiesPlaceholder ? QString() : identity;
}

ProfileStore storeOf(const MainWinController &document)
{
    return {document.host().files, document.appDelegate().profilesFolder()};
}

} // namespace

Profile profiles::profileOf(const MainWinController &document)
{
    Profile profile;
    for (const auto &[key, value] : documentDefaults())
        profile.insert(key, value(document));
    if (identityOf(profile).isEmpty())
        profile.remove(key::lastUsedIdentity);
    profile.insert(skipPaths, document.skipPaths());
    profile.insert(extraEntitlements, itempath::fromUrl(document.extraEntitlementsURL()));
    return profile;
}

platform::Outcome profiles::apply(MainWinController &document, const Profile &profile)
{
    const QString identity = identityOf(profile);
    if (!identity.isEmpty() && !document.identitiesPopup.itemTitles().contains(identity))
        return platform::Error{u"The keychain has no identity “%1”."_s.arg(identity)};
    document.identitiesPopup.selectItemWithTitle(identity);
    setText(document.providerNameField, profile, key::providerNameValue);
    setText(document.appleIDField, profile, key::appleIDValue);
    setText(document.appPassField, profile, key::appPassValue);
    document.dropDMGConfigsPopup.selectItemWithTitle(profile.value(key::dropDMGConfigName).toString());
    setFlags(document, profile);
    setFiles(document, profile);
    return {};
}

platform::Outcome profiles::use(MainWinController &document, const QString &name)
{
    const auto profile = storeOf(document).read(name);
    if (!profile)
        return profile.failure();
    const auto applied = apply(document, *profile);
    if (applied)
        document.profile.set(name);
    return applied;
}

QByteArray profiles::textOf(const Profile &profile)
{
    QJsonObject form = QJsonObject::fromVariantMap(profile);
    form.insert(mark, 1);
    return QJsonDocument(form).toJson();
}

platform::Result<Profile> profiles::profileIn(const QByteArray &text)
{
    const QJsonObject form = text.size() > mostBytes ? QJsonObject() : QJsonDocument::fromJson(text).object();
    if (form.value(mark).toInt() != 1)
        return platform::Error{u"this is no profile of Sealwright"_s};
    Profile profile;
    for (auto entry = form.begin(); entry != form.end(); ++entry) {
        if (isOfItsType(entry.key(), entry.value()))
            profile.insert(entry.key(), entry.value().toVariant());
    }
    return profile;
}

// Files

ProfileStore::ProfileStore(platform::FileService &files, QString folder)
    : m_files(files)
    , m_folder(std::move(folder))
{
}

QStringList ProfileStore::names() const
{
    QStringList names;
    for (const QString &file : m_files.contentsOfDirectory(m_folder, platform::FolderLink::follow)) {
        if (itempath::extension(file) == "json"_L1)
            names.append(itempath::withoutExtension(file));
    }
    names.sort(Qt::CaseInsensitive);
    return names;
}

QString ProfileStore::path(const QString &name) const
{
    return itempath::appending(m_folder, name + u".json"_s);
}

platform::Result<Profile> ProfileStore::read(const QString &name) const
{
    if (!names().contains(name))
        return platform::Error{u"There is no profile “%1”."_s.arg(name)};
    const auto text = m_files.readFile(path(name));
    if (!text)
        return text.failure();
    const auto profile = profiles::profileIn(*text);
    return profile ? profile : platform::Error{path(name) + u": "_s + profile.error()};
}

platform::Outcome ProfileStore::save(const QString &name, const Profile &profile) const
{
    if (name.isEmpty() || name.size() > longestName || name.contains(u'/') || name.startsWith(u'.'))
        return platform::Error{u"“%1” cannot be the name of a profile."_s.arg(name)};
    if (const auto made = m_files.createDirectory(m_folder); !made)
        return made;
    return m_files.writeFileAtomically(path(name), profiles::textOf(profile));
}

platform::Outcome ProfileStore::remove(const QString &name) const
{
    if (!names().contains(name))
        return platform::Error{u"There is no profile “%1”."_s.arg(name)};
    return m_files.trashItem(path(name));
}

} // namespace sealwright
