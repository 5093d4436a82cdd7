#include "formats/hfsplus/hfsplusnames.h"

#include <QList>
#include <QStringDecoder>

#include <algorithm>
#include <array>

namespace toolchain::hfsplus {

namespace {

/// Units from `first` to `last`, every `step`th of them, that are compared as if they were `distance`
/// further.
struct Folding {
    char16_t first;
    char16_t last;
    char16_t step;
    char16_t distance;
};

constexpr std::array foldings{
    Folding{0x0041, 0x005a, 1, 32},   Folding{0x00c6, 0x00c6, 1, 32},   Folding{0x00d0, 0x00d0, 1, 32},
    Folding{0x00d8, 0x00d8, 1, 32},   Folding{0x00de, 0x00de, 1, 32},   Folding{0x0110, 0x0110, 1, 1},
    Folding{0x0126, 0x0126, 1, 1},    Folding{0x0132, 0x0132, 1, 1},    Folding{0x013f, 0x0141, 2, 1},
    Folding{0x014a, 0x014a, 1, 1},    Folding{0x0152, 0x0152, 1, 1},    Folding{0x0166, 0x0166, 1, 1},
    Folding{0x0181, 0x0181, 1, 0xd2}, Folding{0x0182, 0x0184, 2, 1},    Folding{0x0186, 0x0186, 1, 0xce},
    Folding{0x0187, 0x0187, 1, 1},    Folding{0x0189, 0x018a, 1, 0xcd}, Folding{0x018b, 0x018b, 1, 1},
    Folding{0x018e, 0x018e, 1, 0x4f}, Folding{0x018f, 0x018f, 1, 0xca}, Folding{0x0190, 0x0190, 1, 0xcb},
    Folding{0x0191, 0x0191, 1, 1},    Folding{0x0193, 0x0193, 1, 0xcd}, Folding{0x0194, 0x0194, 1, 0xcf},
    Folding{0x0196, 0x0196, 1, 0xd3}, Folding{0x0197, 0x0197, 1, 0xd1}, Folding{0x0198, 0x0198, 1, 1},
    Folding{0x019c, 0x019c, 1, 0xd3}, Folding{0x019d, 0x019d, 1, 0xd5}, Folding{0x019f, 0x019f, 1, 0xd6},
    Folding{0x01a2, 0x01a4, 2, 1},    Folding{0x01a7, 0x01a7, 1, 1},    Folding{0x01a9, 0x01a9, 1, 0xda},
    Folding{0x01ac, 0x01ac, 1, 1},    Folding{0x01ae, 0x01ae, 1, 0xda}, Folding{0x01b1, 0x01b2, 1, 0xd9},
    Folding{0x01b3, 0x01b5, 2, 1},    Folding{0x01b7, 0x01b7, 1, 0xdb}, Folding{0x01b8, 0x01b8, 1, 1},
    Folding{0x01bc, 0x01bc, 1, 1},    Folding{0x01c4, 0x01ca, 3, 2},    Folding{0x01c5, 0x01cb, 3, 1},
    Folding{0x01e4, 0x01e4, 1, 1},    Folding{0x01f1, 0x01f1, 1, 2},    Folding{0x01f2, 0x01f2, 1, 1},
    Folding{0x0391, 0x03a1, 1, 32},   Folding{0x03a3, 0x03a9, 1, 32},   Folding{0x03e2, 0x03ee, 2, 1},
    Folding{0x0402, 0x0402, 1, 80},   Folding{0x0404, 0x0406, 1, 80},   Folding{0x0408, 0x040b, 1, 80},
    Folding{0x040f, 0x040f, 1, 80},   Folding{0x0410, 0x0418, 1, 32},   Folding{0x041a, 0x042f, 1, 32},
    Folding{0x0460, 0x0474, 2, 1},    Folding{0x0478, 0x0480, 2, 1},    Folding{0x0490, 0x04be, 2, 1},
    Folding{0x04c3, 0x04c3, 1, 1},    Folding{0x04c7, 0x04c7, 1, 1},    Folding{0x04cb, 0x04cb, 1, 1},
    Folding{0x0531, 0x0556, 1, 48},   Folding{0x10a0, 0x10c5, 1, 48},   Folding{0x2160, 0x216f, 1, 16},
    Folding{0xff21, 0xff3a, 1, 32},
};

bool isWithin(char16_t unit, char16_t first, char16_t last)
{
    return unit >= first && unit <= last;
}

bool isIgnored(char16_t unit)
{
    return isWithin(unit, 0x200c, 0x200f) || isWithin(unit, 0x202a, 0x202e) || isWithin(unit, 0x206a, 0x206f)
        || unit == 0xfeff;
}

char16_t folded(char16_t unit)
{
    if (unit == 0)
        return 0xffff;
    for (const Folding &folding : foldings) {
        if (isWithin(unit, folding.first, folding.last) && (unit - folding.first) % folding.step == 0)
            return static_cast<char16_t>(unit + folding.distance);
    }
    return unit;
}

/// Characters that HFS+ leaves whole although Unicode knows their parts.
bool staysWhole(char32_t character)
{
    return (character >= 0x2000 && character <= 0x2fff) || (character >= 0xf900 && character <= 0xfaff)
        || (character >= 0x2f800 && character <= 0x2faff);
}

QString inForm(QString::NormalizationForm form, const QString &name)
{
    constexpr auto unicodeOfNames = QChar::Unicode_3_2; // macOS has kept to its characters since
    QString result;
    QString run;
    for (const char32_t character : name.toUcs4()) {
        const QString text = QString::fromUcs4(&character, 1);
        if (!staysWhole(character)) {
            run += text;
            continue;
        }
        result += run.normalized(form, unicodeOfNames) + text;
        run.clear();
    }
    return result + run.normalized(form, unicodeOfNames);
}

} // namespace

std::optional<QString> storedName(std::string_view fileName)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString name = decoder(QByteArrayView(fileName.data(), qsizetype(fileName.size())));
    if (decoder.hasError())
        return {};
    name.replace(u':', u'/');
    name = inForm(QString::NormalizationForm_D, name);
    return name.size() <= longestName ? std::optional(name) : std::nullopt;
}

std::optional<QByteArray> fileName(const QString &storedName, NameForm form)
{
    if (!storedName.isValidUtf16())
        return {};
    QString name = form == NameForm::composed ? inForm(QString::NormalizationForm_C, storedName) : storedName;
    name.replace(u'/', u':');
    const bool isPossible = !name.isEmpty() && !name.contains(QChar(u'\0')) && name != QStringView(u".")
        && name != QStringView(u"..");
    return isPossible ? std::optional(name.toUtf8()) : std::nullopt;
}

NameForm formOf(std::string_view name, const QString &storedName)
{
    const QByteArrayView bytes(name.data(), qsizetype(name.size()));
    const bool isComposed =
        fileName(storedName) != bytes && fileName(storedName, NameForm::composed) == bytes;
    return isComposed ? NameForm::composed : NameForm::asStored;
}

std::u16string foldedName(const QString &storedName)
{
    std::u16string result;
    for (const QChar unit : storedName) {
        if (!isIgnored(unit.unicode()))
            result.push_back(folded(unit.unicode()));
    }
    return result;
}

} // namespace toolchain::hfsplus
