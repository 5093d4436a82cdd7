#include "examine/product.h"

#include "examine/prediction.h"
#include "formats/imagevolume.h"
#include "formats/xar/archive.h"

#include <QFile>
#include <QXmlStreamReader>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright::examine {

namespace {

constexpr qint64 mostXml = 1 << 20; // bytes
constexpr qsizetype mostLetters = 200; // of an identifier or a version

QString lineOf(QStringView text)
{
    const bool isLine = text.size() <= mostLetters
        && std::all_of(text.cbegin(), text.cend(), [](QChar letter) { return letter.isPrint(); });
    return isLine ? text.toString() : QString();
}

/// What an element says of itself; nothing of one that is neither.
Product toldBy(const QXmlStreamReader &xml)
{
    const auto attributes = xml.attributes();
    const bool isComponent = xml.name() == "pkg-info"_L1;
    const bool isPart = xml.name() == "product"_L1 || xml.name() == "pkg-ref"_L1;
    if (!isComponent && !isPart)
        return {};
    return {.identifier = lineOf(attributes.value(isComponent ? "identifier"_L1 : "id"_L1)),
            .version = lineOf(attributes.value("version"_L1)),
            .volume = {}};
}

/// A Distribution refers to each component more than once, and tells the version at one place.
void add(const Product &component, QList<Product> &components)
{
    const auto known = std::find_if(components.begin(), components.end(), [&](const Product &each) {
        return each.identifier == component.identifier;
    });
    if (known == components.end())
        components.append(component);
    else if (known->version.isEmpty())
        known->version = component.version;
}

Product productOfPackage(const QString &path)
{
    const auto archive = toolchain::xar::Archive::open(path);
    if (!archive)
        return {};
    for (const auto name : {u"Distribution", u"PackageInfo"}) {
        const auto *const file = archive->toc().file(name);
        const auto xml =
            file ? archive->contentOf(*file, mostXml) : platform::Result<QByteArray>(QByteArray());
        const Product product = productIn(xml.valueOr({}));
        if (!product.identifier.isEmpty())
            return product;
    }
    return {};
}

Product productOfImage(const QString &path)
{
    const toolchain::ImageVolume image(QFile::encodeName(path).toStdString());
    return {.identifier = {},
            .version = {},
            .volume = image.outcome() ? lineOf(image.volume().volumeName()) : QString()};
}

} // namespace

Product productIn(const QByteArray &text)
{
    QXmlStreamReader xml(text);
    QList<Product> components;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const Product found = toldBy(xml);
        if (!found.identifier.isEmpty() && xml.name() == "product"_L1)
            return found;
        if (!found.identifier.isEmpty())
            add(found, components);
    }
    return components.size() == 1 && !xml.hasError() ? components.first() : Product();
}

Product productOf(const QString &item, ItemKind kind)
{
    switch (kind) {
    case ItemKind::package:
        return productOfPackage(item);
    case ItemKind::diskImage:
        return productOfImage(item);
    default:
        return {};
    }
}

} // namespace sealwright::examine
