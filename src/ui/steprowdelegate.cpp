#include "ui/steprowdelegate.h"

#include "ui/steplistmodel.h"
#include "ui/theme.h"

#include <QAbstractItemView>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr qreal dimness = 0.35; // of what has not been done: how much of the background is in its colour
constexpr qreal signStroke = 0.12; // of the sign's side
constexpr int tallestRow = 10'000;

QFont bold(QFont font)
{
    font.setBold(true);
    return font;
}

/// Where the parts of a row stand, in a row of that width. All of it grows with the font.
struct RowLayout {
    RowLayout(const QFont &font, const QRect &row, bool isStep)
        : metrics(isStep ? bold(font) : font) // of any step, so that none changes its height when it runs
        , gap(metrics.height() / 3)
    {
        const int side = metrics.ascent();
        const QRect inner = row.adjusted(gap, margin(), -gap, -margin());
        const int durationWidth = isStep ? metrics.horizontalAdvance(u"0:00:00"_s) : 0;
        sign = QRect(inner.left(), inner.top() + (metrics.height() - side) / 2, side, side);
        duration = QRect(inner.right() + 1 - durationWidth, inner.top(), durationWidth, metrics.height());
        name = inner;
        name.setLeft(sign.right() + 1 + gap);
        name.setRight(duration.left() - 1 - (isStep ? gap : 0));
    }

    int margin() const { return metrics.height() / 6; }

    QFontMetrics metrics;
    int gap;
    QRect sign;
    QRect name;
    QRect duration;
};

bool isStep(const QModelIndex &index)
{
    return index.data(StepListModel::stateRole).isValid();
}

QColor dimmed(const QPalette &palette)
{
    const QColor text = palette.color(QPalette::WindowText);
    const QColor ground = palette.color(QPalette::Window);
    const auto mixed = [](int from, int to) { return qRound(from + (to - from) * dimness); };
    return {mixed(text.red(), ground.red()), mixed(text.green(), ground.green()),
            mixed(text.blue(), ground.blue())};
}

bool isDim(const QVariant &state)
{
    return state.isValid()
        && (state.value<StepState>() == StepState::waiting || state.value<StepState>() == StepState::skipped);
}

QColor colourOf(StepState state, const QPalette &palette, const QColor &otherwise)
{
    switch (state) {
    case StepState::running:
        return theme::colourOf(theme::Meaning::underway, palette);
    case StepState::done:
        return theme::colourOf(theme::Meaning::good, palette);
    case StepState::failed:
        return theme::colourOf(theme::Meaning::bad, palette);
    case StepState::cancelled:
        return theme::colourOf(theme::Meaning::caution, palette);
    case StepState::waiting:
    case StepState::skipped:
        break;
    }
    return otherwise;
}

void drawSign(QPainter &painter, const QRectF &place, StepState state, const QPalette &palette)
{
    const qreal side = place.width();
    const auto at = [&](qreal x, qreal y) { return place.topLeft() + QPointF(x, y) * side; };
    const QRectF inner = place.adjusted(side / 6, side / 6, -side / 6, -side / 6);
    const QColor colour = colourOf(state, palette, painter.pen().color());
    painter.setPen(QPen(colour, qMax(1.0, side * signStroke), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    switch (state) {
    case StepState::waiting:
        painter.drawEllipse(inner);
        break;
    case StepState::running:
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawEllipse(inner);
        break;
    case StepState::done:
        painter.drawPolyline(QPolygonF({at(0.1, 0.55), at(0.38, 0.85), at(0.9, 0.2)}));
        break;
    case StepState::failed:
        painter.drawLine(at(0.17, 0.17), at(0.83, 0.83));
        painter.drawLine(at(0.17, 0.83), at(0.83, 0.17));
        break;
    case StepState::cancelled:
        painter.drawRect(inner);
        break;
    case StepState::skipped:
        painter.drawLine(at(0.2, 0.5), at(0.8, 0.5));
        break;
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
    const RowLayout layout(option.font, option.rect, isStep(index));
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
    const int leading = QStyle::visualAlignment(option.direction, Qt::AlignLeft) | Qt::AlignTop;
    const int trailing = QStyle::visualAlignment(option.direction, Qt::AlignRight) | Qt::AlignTop;
    painter->drawText(mirrored(layout.name), leading | Qt::TextWordWrap, index.data().toString());
    painter->drawText(mirrored(layout.duration), trailing,
                      index.data(StepListModel::durationRole).toString());
    if (state.isValid())
        drawSign(*painter, mirrored(layout.sign), state.value<StepState>(), option.palette);
    painter->restore();
    if (option.state.testFlag(QStyle::State_HasFocus))
        drawFocus(*painter, option);
}

QSize StepRowDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const auto *const view = qobject_cast<const QAbstractItemView *>(option.widget);
    const int width = view ? view->viewport()->width() : option.rect.width();
    const RowLayout layout(option.font, {0, 0, width, tallestRow}, isStep(index));
    const QRect text =
        layout.metrics.boundingRect(layout.name, Qt::AlignTop | Qt::TextWordWrap, index.data().toString());
    return {0, text.height() + 2 * layout.margin()}; // the view makes a row as wide as itself
}

int StepRowDelegate::widthFor(const QString &text, const QFont &font)
{
    const RowLayout layout(font, {}, true);
    const int rest = -layout.name.width(); // what an empty row lacks for the parts that are not its name
    return rest + layout.metrics.horizontalAdvance(text);
}

int StepRowDelegate::heightOfOneLine(const QFont &font)
{
    const RowLayout layout(font, {}, true);
    return layout.metrics.height() + 2 * layout.margin();
}
