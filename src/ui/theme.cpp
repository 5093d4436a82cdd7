#include "ui/theme.h"

#include <cmath>

namespace sealwright {

namespace {

constexpr qreal step = 0.04; // of the way to black or white
constexpr qreal tint = 0.14; // of a meaning's colour in the ground of a banner

struct MeaningColours {
    QRgb onLight;
    QRgb onDark;
};

MeaningColours coloursOf(theme::Meaning meaning)
{
    switch (meaning) {
    case theme::Meaning::good:
        return {0xff1e7b34, 0xff5fd07a};
    case theme::Meaning::bad:
        return {0xffb3261e, 0xffff8a80};
    case theme::Meaning::caution:
        return {0xff8a5a00, 0xfff0b429};
    case theme::Meaning::underway: // has the colour of the controls
    case theme::Meaning::quiet:
        break;
    }
    return {0xff5f6368, 0xffa0a0a6};
}

qreal linear(qreal part)
{
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

qreal luminance(const QColor &colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF())
        + 0.0722 * linear(colour.blueF());
}

} // namespace

QColor theme::mixed(const QColor &from, const QColor &to, qreal share)
{
    const auto part = [share](float a, float b) { return float(a + (b - a) * share); };
    return QColor::fromRgbF(part(from.redF(), to.redF()), part(from.greenF(), to.greenF()),
                            part(from.blueF(), to.blueF()));
}

bool theme::isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

qreal theme::contrast(const QColor &one, const QColor &other)
{
    const qreal first = luminance(one) + 0.05;
    const qreal second = luminance(other) + 0.05;
    return qMax(first, second) / qMin(first, second);
}

QColor theme::readable(QColor colour, const QColor &ground, qreal least)
{
    const QColor away = contrast(Qt::white, ground) > contrast(Qt::black, ground) ? Qt::white : Qt::black;
    const QColor start = colour;
    for (qreal share = 0; contrast(colour, ground) < least && share < 1; share += step)
        colour = mixed(start, away, share + step);
    return colour;
}

QPalette theme::readable(QPalette palette)
{
    const auto mend = [&palette](QPalette::ColorGroup group, QPalette::ColorRole text,
                                 QPalette::ColorRole ground) {
        const QColor behind = palette.color(group, ground);
        const QColor seen = mixed(behind, palette.color(group, text), palette.color(group, text).alphaF());
        palette.setColor(group, text, readable(seen, behind, leastOfText));
    };
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        mend(group, QPalette::WindowText, QPalette::Window);
        mend(group, QPalette::Text, QPalette::Base);
        mend(group, QPalette::PlaceholderText, QPalette::Base);
        mend(group, QPalette::ButtonText, QPalette::Button);
        // The ground and not the text, as on a pressed button: dark writing on blue looks switched off.
        palette.setColor(group, QPalette::Highlight,
                         readable(palette.color(group, QPalette::Highlight),
                                  palette.color(group, QPalette::HighlightedText), leastOfText));
        mend(group, QPalette::Link, QPalette::Base);
    }
    return palette;
}

QColor theme::colourOf(Meaning meaning, const QPalette &palette)
{
    const MeaningColours colours = coloursOf(meaning);
    const QColor colour = meaning == Meaning::underway ? palette.color(QPalette::Active, QPalette::Highlight)
        : isDark(palette)                              ? QColor(colours.onDark)
                                                       : QColor(colours.onLight);
    const QColor onWindow = readable(colour, palette.color(QPalette::Window), leastOfText);
    return readable(onWindow, palette.color(QPalette::Base), leastOfText);
}

QColor theme::groundOf(Meaning meaning, const QPalette &palette)
{
    return mixed(palette.color(QPalette::Base), colourOf(meaning, palette), tint);
}

QColor theme::outline(const QPalette &palette)
{
    const QColor window = palette.color(QPalette::Window);
    const QColor middle = mixed(window, palette.color(QPalette::WindowText), 0.4);
    return readable(readable(middle, window, leastOfControls), palette.color(QPalette::Base),
                    leastOfControls);
}

} // namespace sealwright
