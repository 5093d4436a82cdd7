#include "ui/dropoverlay.h"

#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "run/waits.h"
#include "ui/itemfacts.h"
#include "ui/spacing.h"
#include "ui/theme.h"
#include "ui/titlefont.h"

#include <QCoreApplication>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qreal veil = 0.82; // how much of what lies behind is hidden
constexpr qreal radius = 12; // pixels, of a corner
constexpr qreal dash = 2.5;
constexpr int inset = 10; // pixels between the edge of the page and the line
constexpr qreal titleScale = 1.6;
constexpr int charactersAcross = 60;

QString text(const char *source)
{
    return QCoreApplication::translate("DropOverlay", source);
}

QString ofOne(MainWinController &document, const QString &item, FirstItem first)
{
    if (waits::isFolderOfOne(document.host(), item))
        return text(QT_TRANSLATE_NOOP("DropOverlay", "Goes on waiting for the verdict."));
    const QString intention = itemfacts::intention(document, item);
    return first == FirstItem::staysHere
        ? text(QT_TRANSLATE_NOOP("DropOverlay", "It %1 when you press Submit Now.")).arg(intention)
        : text(
            QT_TRANSLATE_NOOP("DropOverlay", "It opens in a window of its own, since this one has an item."));
}

} // namespace

QString dropSentence(MainWinController &document, const QStringList &items, FirstItem first)
{
    if (items.size() == 1)
        return ofOne(document, items.first(), first);
    return first == FirstItem::staysHere
        ? text(QT_TRANSLATE_NOOP("DropOverlay",
                                 "The first stays here, each of the others opens in a window of its own."))
        : text(QT_TRANSLATE_NOOP("DropOverlay", "Each opens in a window of its own."));
}

DropOverlay::DropOverlay(QWidget *page)
    : QRubberBand(Rectangle, page)
{
}

void DropOverlay::showFor(const QStringList &items, const QString &sentence)
{
    m_title = items.size() == 1 ? tr("Drop “%1” here").arg(itempath::lastComponent(items.first()))
                                : tr("Drop %1 items here").arg(items.size());
    m_sentence = sentence;
    setAccessibleName(m_title);
    setAccessibleDescription(m_sentence);
    setGeometry(parentWidget()->rect());
    show();
    raise();
    update();
}

void DropOverlay::resizeEvent(QResizeEvent *event)
{
    // Without the mask of a rubber band, which leaves the outline alone.
    QWidget::resizeEvent(event); // NOLINT(bugprone-parent-virtual-call)
}

void DropOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintVeil(painter);
    paintCard(painter);
}

void DropOverlay::paintVeil(QPainter &painter) const
{
    QColor ground = theme::groundOf(theme::Meaning::underway, palette());
    ground.setAlphaF(float(veil));
    painter.fillRect(rect(), ground);
    painter.setPen(QPen(theme::colourOf(theme::Meaning::underway, palette()), dash, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
}

/// The title and the sentence, with as much room above as below.
void DropOverlay::paintCard(QPainter &painter) const
{
    constexpr int words = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;
    const QFontMetrics titles(titleFont(font(), titleScale));
    const int width = qMin(this->width() - 4 * inset, fontMetrics().averageCharWidth() * charactersAcross);
    QRect title(0, 0, width - 4 * inset, titles.height());
    QRect sentence = fontMetrics().boundingRect(QRect(0, 0, title.width(), height()), words, m_sentence);
    QRect card(0, 0, width, title.height() + spacing::between + sentence.height() + 4 * inset);
    card.moveCenter(rect().center());
    title.moveTopLeft(card.topLeft() + QPoint(2 * inset, 2 * inset));
    sentence = QRect(title.left(), title.bottom() + spacing::between, title.width(), sentence.height());
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(card, radius, radius);
    painter.setPen(theme::readable(theme::colourOf(theme::Meaning::underway, palette()),
                                   palette().color(QPalette::Base), theme::leastOfText));
    painter.setFont(titleFont(font(), titleScale));
    painter.drawText(title, Qt::AlignCenter, titles.elidedText(m_title, Qt::ElideMiddle, title.width()));
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(sentence, words, m_sentence);
}

} // namespace sealwright
