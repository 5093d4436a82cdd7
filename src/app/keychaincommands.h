#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

#include <optional>

namespace sealwright {

/// What the programs of the keychain are told and what they answer, as values. A secret is never an argument:
/// it is the program's input. Any thread.
namespace keychain {

/// A program of the tool root with what it is given.
struct Command {
    QString program; ///< path, as a workflow would name it
    QStringList arguments;
    QByteArray input = {}; ///< null: none
    bool operator==(const Command &) const = default;
};

enum class IdentityKind { application, installer };

/// A key from App Store Connect, which lies in a file.
struct ApiKey {
    QString item; ///< name of the password item
    QString file; ///< path
    QString keyId; ///< empty: the file's name tells it
    QString issuer; ///< empty: an individual key
};

[[nodiscard]] Command listIdentities();
/// An identity by the authority of this machine; the name is "NAME (TEAM)".
[[nodiscard]] Command makeIdentity(const QString &name, IdentityKind kind);
[[nodiscard]] Command importFile(const QString &path, const QString &passphrase);
[[nodiscard]] Command deleteIdentity(const QString &sha1);

[[nodiscard]] Command addApiKey(const ApiKey &key);
[[nodiscard]] Command makeApiKey(const QString &item);
[[nodiscard]] Command addPassword(const QString &item, const QString &account, const QString &password);
[[nodiscard]] Command findPassword(const QString &item);
[[nodiscard]] Command deletePassword(const QString &item);

[[nodiscard]] Command status();
[[nodiscard]] Command lock();
[[nodiscard]] Command unlock(const QString &passphrase);
[[nodiscard]] Command setPassphrase(const QString &passphrase);

/// What the private keys and passwords lie under.
enum class Protection { folderAlone, passphrase, secretService };
/// The desktop's Secret Service, or else a file: under the passphrase that it has, or under none.
[[nodiscard]] Command useStore(Protection protection);

struct State {
    Protection protection = Protection::folderAlone;
    bool isLocked = false;
    bool operator==(const State &) const = default;
};
/// Of what `status` printed; nothing where it does not say.
[[nodiscard]] std::optional<State> stateIn(const QString &status);

/// "apple", "local" or an address.
[[nodiscard]] Command useNotary(const QString &service);
[[nodiscard]] Command presentNotary();

/// One line of a listing of identities.
struct Identity {
    QString sha1;
    QString name; ///< common name
    bool operator==(const Identity &) const = default;
};
/// Of what `listIdentities` printed; lines of another form are passed over.
[[nodiscard]] QList<Identity> identitiesIn(const QString &listing);

/// What a program said of its failure, as a person wants to read it: without its own name in front.
[[nodiscard]] QString reasonIn(const QString &standardError);

/// A name with a made-up team behind it, as certificates of Developer ID have it; a name that has one already
/// stays. The same name gets the same team.
[[nodiscard]] QString withTeam(const QString &name);

} // namespace keychain

} // namespace sealwright
