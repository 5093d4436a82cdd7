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
const QString widestWord = u"interacting"_s; // of the status words: nothing moves when the word changes

Meaning meaningOf(const QString &word)
{
    if (word == status::ready || word.isEmpty())
        return Meaning::quiet;
    return word == status::interacting ? Meaning::caution : Meaning::underway;
}

} // namespace

StatusPill::StatusPill(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

QSize StatusPill::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(shown(widestWord)) + 2 * sideRoom, fontMetrics().height() + 4};
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
    painter.drawText(rect(), Qt::AlignCenter, shown(text()));
}

} // namespace sealwright
