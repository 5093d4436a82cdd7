#include "examine/corpusmaking.h"

using namespace Qt::StringLiterals;

namespace {

const QStringList architectures{u"x86_64"_s, u"arm64"_s, u"universal"_s};

std::string named(const QString &text)
{
    QString name;
    bool startsWord = false;
    for (const QChar character : text) {
        if (character.isLetterOrNumber())
            name += startsWord ? character.toUpper() : character;
        startsWord = !character.isLetterOrNumber();
    }
    return name.toStdString();
}

} // namespace

void Corpus::add(const QString &name, std::function<void(ItemMaker &)> make, const QStringList &errors,
                 const QStringList &warnings)
{
    items.append({named(name), u"universal"_s, std::move(make), errors, warnings});
}

void Corpus::forEach(const QString &name, const std::function<void(ItemMaker &, const QString &)> &make,
                     const QStringList &errors)
{
    for (const QString &architecture : architectures)
        items.append({named(name + u' ' + architecture), architecture,
                      [make, architecture](ItemMaker &item) { make(item, architecture); }, errors});
}
