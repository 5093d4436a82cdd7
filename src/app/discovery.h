#pragma once

#include <QString>
#include <QStringList>

namespace sealwright {

/// What launch reads from the tools, as values.
namespace discovery {

inline constexpr QStringView altoolInTransporter =
    u"/Contents/Frameworks/ITunesServices.framework/Frameworks/ITunesSoftwareService.framework/Support/"
    u"altool";

/// The notary tool's major version in its help; 1, which counts as old, when it does not tell.
[[nodiscard]] quint64 altoolMajorVersion(const QString &help);

struct Identities {
    QStringList applications; ///< never empty: a placeholder stands for none
    QStringList installers;
};

/// The Developer ID identities in what `security find-identity -v` prints, in its order, each once, without
/// prefixes.
[[nodiscard]] Identities identitiesInListing(const QString &listing);

/// The names of DropDMG's configurations in the names of its folder, unsorted.
[[nodiscard]] QStringList configurationNames(const QStringList &fileNames);

/// As the Finder sorts names: numbers by their value.
[[nodiscard]] QStringList sortedLikeFinder(QStringList names);

} // namespace discovery

} // namespace sealwright
