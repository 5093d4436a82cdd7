#include "examine/comparison.h"

#include "examine/examination.h"
#include "examine/examiner.h"
#include "platform/itempath.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

using namespace Qt::StringLiterals;

namespace sealwright {

using platform::Result;

namespace examine {

namespace {

/// The one item in a folder that a run has left; the path itself for anything else.
QString itemAt(const QString &path)
{
    const QString folder = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    static const QStringList endings{u" - Notarized"_s, u" - Signed"_s, u" - Submitted"_s};
    const auto isResult = std::any_of(endings.cbegin(), endings.cend(),
                                      [&](const QString &ending) { return folder.endsWith(ending); });
    if (!isResult || !QFileInfo(folder).isDir())
        return folder;
    static const QStringList extensions{u"app"_s, u"plugin"_s, u"fmplugin"_s, u"pkg"_s, u"dmg"_s};
    const auto entries = QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QString &extension : extensions) {
        for (const QString &name : entries) {
            if (itempath::lowerExtension(name) == extension)
                return folder + u'/' + name;
        }
    }
    return folder;
}

/// What of an entry is compared, by the words for it.
QMap<QString, QJsonValue> traits(const QJsonObject &entry, const CodeEntry &code)
{
    QJsonObject signature = entry.value("signature"_L1).toObject();
    signature.remove("timestamp"_L1); // of course it differs
    const QString identifier =
        code.identifier.isEmpty() ? signature.value("identifier"_L1).toString() : code.identifier;
    signature.remove("identifier"_L1);
    return {{u"architectures"_s, entry.value("architectures"_L1)},
            {u"entitlements"_s, entry.value("entitlements"_L1)},
            {u"minimumSystem"_s, entry.value("minimumSystem"_L1)},
            {u"sdk"_s, entry.value("sdk"_L1)},
            {u"identifier"_s, identifier},
            {u"version"_s, code.version},
            {u"signature"_s, signature}};
}

/// Nobody knows whether what cannot be read is the same.
Result<Examination> readWhole(const QString &item)
{
    auto examination = collectItem(item);
    if (!examination || examination->unread.isEmpty())
        return examination;
    const QString place = examination->unread.first();
    const QString path = place == "."_L1 ? examination->item : examination->item + u'/' + place;
    return platform::Error{u"\"%1\" cannot be read."_s.arg(path)};
}

struct Side {
    QMap<QString, QMap<QString, QJsonValue>> traitsByPath;
    QMap<QString, QString> kinds;
    QMap<QString, QString> builds;
};

Side sideOf(const Examination &examination)
{
    Side side;
    const QJsonArray code = QJsonDocument::fromJson(toJson(examination)).object().value("code"_L1).toArray();
    for (qsizetype i = 0; i < examination.code.size(); ++i) {
        const CodeEntry &entry = examination.code[i];
        side.traitsByPath.insert(entry.path, traits(code[i].toObject(), entry));
        side.kinds.insert(entry.path, entry.kind);
        side.builds.insert(entry.path, entry.build);
    }
    return side;
}

void compareTraits(const QString &path, const QMap<QString, QJsonValue> &old,
                   const QMap<QString, QJsonValue> &recent, QList<Difference> &differences)
{
    for (auto trait = old.cbegin(); trait != old.cend(); ++trait) {
        if (recent.value(trait.key()) != *trait)
            differences.append({path, trait.key(), *trait, recent.value(trait.key())});
    }
}

/// Builds of one version differ in the number that counts them.
void compareBuilds(const QString &path, const Side &left, const Side &right, QList<Difference> &differences)
{
    const auto versionIn = [&path](const Side &side) { return side.traitsByPath[path].value(u"version"_s); };
    const QString old = left.builds.value(path);
    const QString recent = right.builds.value(path);
    if (old != recent && versionIn(left) == versionIn(right))
        differences.append({path, u"version"_s, old, recent});
}

void compareEntry(const QString &path, const Side &left, const Side &right, QList<Difference> &differences)
{
    compareTraits(path, left.traitsByPath[path], right.traitsByPath[path], differences);
    compareBuilds(path, left, right, differences);
}

} // namespace

Result<QList<Difference>> compareItems(const QString &old, const QString &recent)
{
    const auto before = readWhole(itemAt(old));
    if (!before)
        return before.failure();
    const auto after = readWhole(itemAt(recent));
    if (!after)
        return after.failure();
    const Side left = sideOf(*before);
    const Side right = sideOf(*after);
    QList<Difference> differences;
    for (auto entry = left.traitsByPath.cbegin(); entry != left.traitsByPath.cend(); ++entry) {
        if (right.traitsByPath.contains(entry.key()))
            compareEntry(entry.key(), left, right, differences);
        else
            differences.append({entry.key(), u"removed"_s, left.kinds.value(entry.key()), QJsonValue()});
    }
    for (auto entry = right.kinds.cbegin(); entry != right.kinds.cend(); ++entry) {
        if (!left.kinds.contains(entry.key()))
            differences.append({entry.key(), u"added"_s, QJsonValue(), *entry});
    }
    if (before->size != after->size)
        differences.append({u"."_s, u"size"_s, before->size, after->size});
    return differences;
}

QByteArray toJson(const QList<Difference> &differences)
{
    QJsonArray list;
    for (const Difference &difference : differences)
        list.append(QJsonObject{{u"path"_s, difference.path},
                                {u"what"_s, difference.what},
                                {u"old"_s, difference.old},
                                {u"new"_s, difference.recent}});
    return QJsonDocument(QJsonObject{{u"differences"_s, list}}).toJson(QJsonDocument::Indented);
}

} // namespace examine

} // namespace sealwright
