#include "ui/differenceentries.h"

#include <QHash>
#include <QJsonObject>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int isDifferencesRole = Qt::UserRole + 2; ///< of the entry that holds them

QString shownWord(const QString &what)
{
    static const QHash<QString, const char *> words{
        {u"added"_s, QT_TRANSLATE_NOOP("QObject", "added")},
        {u"removed"_s, QT_TRANSLATE_NOOP("QObject", "removed")},
        {u"architectures"_s, QT_TRANSLATE_NOOP("QObject", "architectures")},
        {u"entitlements"_s, QT_TRANSLATE_NOOP("QObject", "entitlements")},
        {u"minimumSystem"_s, QT_TRANSLATE_NOOP("QObject", "oldest system")},
        {u"sdk"_s, QT_TRANSLATE_NOOP("QObject", "SDK")},
        {u"identifier"_s, QT_TRANSLATE_NOOP("QObject", "identifier")},
        {u"version"_s, QT_TRANSLATE_NOOP("QObject", "version")},
        {u"signature"_s, QT_TRANSLATE_NOOP("QObject", "signature")},
        {u"size"_s, QT_TRANSLATE_NOOP("QObject", "size in bytes")},
    };
    const char *const word = words.value(what);
    return word ? QObject::tr(word) : what;
}

QString shownValue(const QJsonValue &value)
{
    if (value.isArray())
        return value.toVariant().toStringList().join(u", "_s);
    return value.toVariant().toString();
}

/// "key value" for each entry of the object that the other has not, or not with that value.
QString shownDifference(const QJsonObject &object, const QJsonObject &other)
{
    QStringList parts;
    for (auto entry = object.constBegin(); entry != object.constEnd(); ++entry) {
        if (*entry != other.value(entry.key()))
            parts.append((entry.key() + u' ' + shownValue(*entry)).trimmed());
    }
    return parts.join(u", "_s);
}

QString detailOf(const QJsonObject &difference)
{
    const QJsonValue before = difference.value("old"_L1);
    const QJsonValue after = difference.value("new"_L1);
    const bool areObjects = before.isObject() || after.isObject();
    const QString old =
        areObjects ? shownDifference(before.toObject(), after.toObject()) : shownValue(before);
    const QString recent =
        areObjects ? shownDifference(after.toObject(), before.toObject()) : shownValue(after);
    const QString what = shownWord(difference.value("what"_L1).toString());
    if (before.isNull() || after.isNull())
        return u"%1: %2"_s.arg(what, old + recent);
    const QString nothing = QObject::tr("none");
    return u"%1: %2 → %3"_s.arg(what, old.isEmpty() ? nothing : old, recent.isEmpty() ? nothing : recent);
}

QTreeWidgetItem *entryFor(const QJsonObject &difference, const QString &item)
{
    const QString path = difference.value("path"_L1).toString();
    const QString detail = detailOf(difference);
    auto *const entry = new QTreeWidgetItem({path == "."_L1 ? item : path, detail});
    entry->setData(0, Qt::UserRole, path);
    entry->setToolTip(0, path);
    entry->setToolTip(1, detail);
    return entry;
}

} // namespace

void showDifferences(QTreeWidget &tree, const Compared &compared, const QJsonArray &differences)
{
    if (tree.topLevelItemCount() > 0 && tree.topLevelItem(0)->data(0, isDifferencesRole).toBool())
        delete tree.takeTopLevelItem(0);
    const QString count = differences.isEmpty() ? QObject::tr("none") : QString::number(differences.size());
    auto *const group = new QTreeWidgetItem({QObject::tr("Changes since %1").arg(compared.old), count});
    group->setData(0, isDifferencesRole, true);
    for (const auto &difference : differences)
        group->addChild(entryFor(difference.toObject(), compared.item));
    tree.insertTopLevelItem(0, group);
    group->setExpanded(true);
}

} // namespace sealwright
