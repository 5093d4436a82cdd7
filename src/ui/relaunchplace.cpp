#include "ui/relaunchplace.h"

#include "platform/preferences.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStringList>
#include <QWidget>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString key = u"placeForNewStart"_s; ///< "X Y WIDTH HEIGHT"; there during a new start alone
constexpr qsizetype numbers = 4;

QRect rectangleOf(const QString &text)
{
    const QStringList words = text.split(u' ');
    if (words.size() != numbers)
        return {};
    return {words[0].toInt(), words[1].toInt(), words[2].toInt(), words[3].toInt()};
}

bool isOnScreen(const QRect &place)
{
    const auto screens = QGuiApplication::screens();
    return std::any_of(screens.cbegin(), screens.cend(), [&place](const QScreen *screen) {
        return screen->availableGeometry().contains(place.topLeft());
    });
}

} // namespace

void relaunchplace::remember(platform::Preferences &preferences, const QWidget &widget)
{
    const QWidget &window = *widget.window();
    preferences.setValue(
        key, u"%1 %2 %3 %4"_s.arg(window.x()).arg(window.y()).arg(window.width()).arg(window.height()));
}

void relaunchplace::takeUp(platform::Preferences &preferences, QWidget &window)
{
    const QString text = preferences.string(key);
    if (text.isEmpty())
        return;
    preferences.remove(key);
    const QRect place = rectangleOf(text);
    if (!place.isValid() || !isOnScreen(place))
        return;
    window.move(place.topLeft());
    window.resize(place.size().expandedTo(window.minimumSizeHint()));
}

} // namespace sealwright
