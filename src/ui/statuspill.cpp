#include "ui/statuspill.h"

#include "run/status.h"
#include "ui/shown.h"
#include "ui/theme.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace sealwright {

using theme::Meaning;

namespace {

constexpr int sideRoom = 8; // pixels, on either side of the word

Meaning meaningOf(const QString &word)
{
    if (word == status::ready || word.isEmpty())
        return Meaning::quiet;
    return word == status::interacting ? Meaning::caution : Meaning::underway;
}

/// Of all words, so that nothing moves when the word changes.
int widthOfWidestWord(const QFontMetrics &metrics)
{
    int width = 0;
    for (const QStringView word : {status::loading, status::ready, status::interacting, status::submitting,
                                   status::waiting, status::stapling, status::fetching})
        width = qMax(width, metrics.horizontalAdvance(StatusPill::wording(word.toString())));
    return width;
}

} // namespace

StatusPill::StatusPill(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

QString StatusPill::wording(const QString &word)
{
    return word == status::interacting ? tr("your turn") : shown(word);
}

QSize StatusPill::sizeHint() const
{
    return {widthOfWidestWord(fontMetrics()) + 2 * sideRoom, fontMetrics().height() + 4};
}

void StatusPill::paintEvent(QPaintEvent *)
{
    const Meaning meaning = meaningOf(text());
    const QColor ground = theme::groundOf(meaning, palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(rect()), height() / 2.0, height() / 2.0);
    painter.setPen(theme::readable(theme::colourOf(meaning, palette()), ground, theme::leastOfText));
    painter.drawText(rect(), Qt::AlignCenter, wording(text()));
}

} // namespace sealwright
