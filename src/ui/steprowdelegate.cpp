#include "ui/steprowdelegate.h"

#include "ui/runsign.h"
#include "ui/spacing.h"
#include "ui/steplistmodel.h"
#include "ui/theme.h"

#include <QAbstractItemView>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qreal dimness = 0.35; // of what has not been done: how much of the background is in its colour
constexpr int tallestRow = 10'000;

QFont bold(QFont font)
{
    font.setBold(true);
    return font;
}

/// What a painter takes to draw a text beside that edge, at the top.
int atTop(Qt::Alignment edge)
{
    return static_cast<int>((edge | Qt::AlignTop).toInt());
}

/// Where the parts of a row stand, in a row of that width. All of it grows with the font.
enum class RowKind { step, heading };

struct RowLayout {
    RowLayout(const QFont &font, const QRect &row, RowKind kind, int spare = 0)
        : metrics(kind == RowKind::step ? bold(font)
                                        : font) // of any step, so that none changes its height when it runs
        , gap(metrics.height() / 2)
        , margin(metrics.height() / 4 + spare / 2)
    {
        const bool isStep = kind == RowKind::step;
        const int side = metrics.ascent();
        const QRect inner = row.adjusted(spacing::near, margin, -spacing::near, -margin);
        const int durationWidth = isStep ? metrics.horizontalAdvance(u"0:00:00"_s) : 0;
        sign = QRect(inner.left(), inner.top() + (metrics.height() - side) / 2, side, side);
        duration = QRect(inner.right() + 1 - durationWidth, inner.top(), durationWidth, metrics.height());
        name = inner;
        name.setLeft(sign.right() + 1 + gap);
        name.setRight(duration.left() - 1 - (isStep ? gap : 0));
    }

    QFontMetrics metrics;
    int gap;
    int margin;
    QRect sign;
    QRect name;
    QRect duration;
};

RowKind kindOf(const QModelIndex &index)
{
    return index.data(StepListModel::stateRole).isValid() ? RowKind::step : RowKind::heading;
}

/// The name, and how much of the work is done.
QString textOf(const QModelIndex &index)
{
    const QString parts = index.data(StepListModel::partsRole).toString();
    return parts.isEmpty() ? index.data().toString() : index.data().toString() + u" · "_s + parts;
}

/// What took no time worth a word has none.
QString shownDuration(const QModelIndex &index)
{
    const QString duration = index.data(StepListModel::durationRole).toString();
    return duration == durationText(0) ? QString() : duration;
}

QColor dimmed(const QPalette &palette)
{
    return theme::mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window), dimness);
}

bool isDim(const QVariant &state)
{
    return state.isValid()
        && (state.value<StepState>() == StepState::waiting || state.value<StepState>() == StepState::skipped);
}

StepState stateOf(const QModelIndex &index)
{
    return index.data(StepListModel::stateRole).value<StepState>();
}

/// Rows stand apart where their view has the room for all of them like that, and close where not.
int spareOfRow(const QStyleOptionViewItem &option)
{
    const auto *const view = qobject_cast<const QAbstractItemView *>(option.widget);
    const int rows = view ? view->model()->rowCount() : 0;
    const int spare = QFontMetrics(option.font).height() * 2 / 7;
    const int roomy = StepRowDelegate::heightOfOneLine(option.font) + spare;
    return rows > 0 && rows * roomy <= view->viewport()->height() ? spare : 0;
}

/// The line that leads from the step before to this one, and on to the next.
void drawLine(QPainter &painter, const QRectF &sign, const QRect &row, const QModelIndex &index,
              const QPalette &palette)
{
    const QModelIndex next = index.siblingAtRow(index.row() + 1);
    const QColor quiet =
        theme::groundOf(theme::Meaning::quiet, palette).darker(theme::isDark(palette) ? 70 : 115);
    const auto pen = [&](bool isPassed) {
        const QColor colour = isPassed ? theme::colourOf(theme::Meaning::good, palette) : quiet;
        return QPen(colour, qMax(1.0, sign.width() * runsign::stroke));
    };
    const QPointF middle(sign.center().x(), 0);
    if (index.row() > 0) {
        painter.setPen(pen(runsign::isReached(stateOf(index))));
        painter.drawLine(middle + QPointF(0, row.top()), middle + QPointF(0, sign.top()));
    }
    if (next.isValid() && kindOf(next) == RowKind::step) {
        painter.setPen(pen(runsign::isReached(stateOf(next))));
        painter.drawLine(middle + QPointF(0, sign.bottom()), middle + QPointF(0, row.bottom() + 1));
    }
}

void drawFocus(QPainter &painter, const QStyleOptionViewItem &option)
{
    QStyleOptionFocusRect frame;
    frame.QStyleOption::operator=(option);
    frame.state |= QStyle::State_KeyboardFocusChange; // styles draw it for no other
    frame.backgroundColor = option.palette.color(QPalette::Window);
    option.widget->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &frame, &painter, option.widget);
}

} // namespace

void StepRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    const RowLayout layout(option.font, option.rect, kindOf(index), spareOfRow(option));
    const auto mirrored = [&option](const QRect &place) {
        return QStyle::visualRect(option.direction, option.rect, place);
    };
    const QVariant state = index.data(StepListModel::stateRole);
    const bool isRunning = state.isValid() && state.value<StepState>() == StepState::running;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(isRunning ? bold(option.font) : option.font);
    const QColor colour = isDim(state) ? dimmed(option.palette) : option.palette.color(QPalette::WindowText);
    painter->setPen(colour);
    const int leading = atTop(QStyle::visualAlignment(option.direction, Qt::AlignLeft));
    const int trailing = atTop(QStyle::visualAlignment(option.direction, Qt::AlignRight));
    painter->drawText(mirrored(layout.name), leading | Qt::TextWordWrap, textOf(index));
    painter->drawText(mirrored(layout.duration), trailing, shownDuration(index));
    if (state.isValid()) {
        painter->save();
        drawLine(*painter, mirrored(layout.sign), option.rect, index, option.palette);
        painter->restore();
        runsign::draw(*painter, mirrored(layout.sign), state.value<StepState>(), option.palette);
    }
    painter->restore();
    if (option.state.testFlag(QStyle::State_HasFocus))
        drawFocus(*painter, option);
}

QSize StepRowDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const auto *const view = qobject_cast<const QAbstractItemView *>(option.widget);
    const int width = view ? view->viewport()->width() : option.rect.width();
    const RowLayout layout(option.font, {0, 0, width, tallestRow}, kindOf(index), spareOfRow(option));
    const QRect text =
        layout.metrics.boundingRect(layout.name, Qt::AlignTop | Qt::TextWordWrap, textOf(index));
    return {0, text.height() + 2 * layout.margin}; // the view makes a row as wide as itself
}

int StepRowDelegate::widthFor(const QString &text, const QFont &font)
{
    const RowLayout layout(font, {}, RowKind::step);
    const int rest = -layout.name.width(); // what an empty row lacks for the parts that are not its name
    return rest + layout.metrics.horizontalAdvance(text);
}

int StepRowDelegate::heightOfOneLine(const QFont &font)
{
    const RowLayout layout(font, {}, RowKind::step);
    return layout.metrics.height() + 2 * layout.margin;
}

} // namespace sealwright
