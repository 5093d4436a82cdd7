// What the controls measure, where the desktop has no style of its own.

#include "ui/controlkinds.h"
#include "ui/spacing.h"

#include <QDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <QSplitter>
#include <QStackedWidget>
#include <QStyleOption>

namespace sealwright {

using namespace controlkinds;

namespace {

constexpr int scrollBarWidth = 12; // pixels
constexpr int shortestSlider = 28;
constexpr int titleMargin = 8; // over the title of a group
constexpr int titleIndent = spacing::edge + 1; // as what stands below it, within the line of the card
constexpr int besideTitleOfTab = 10;
constexpr int roomInRow = 6; // pixels, of a list or tree
constexpr int roomInButton = 8; // more than a button of that style has beside its title

bool hasMenu(const QStyleOption &option)
{
    const auto *const button = qstyleoption_cast<const QStyleOptionToolButton *>(&option);
    return button && button->features.testFlag(QStyleOptionToolButton::HasMenu);
}

bool dividesColumns(const QWidget *widget)
{
    const auto *const splitter = qobject_cast<const QSplitter *>(widget);
    return splitter && splitter->orientation() == Qt::Horizontal;
}

/// A page of tabs stands flush with their bar; the room round a sheet is larger than that in a window.
int marginOf(QStyle::PixelMetric side, const QWidget *widget, int given)
{
    if (qobject_cast<const QDialog *>(widget))
        return spacing::sheetEdge;
    if (widget && qobject_cast<const QStackedWidget *>(widget->parentWidget()))
        return side == QStyle::PM_LayoutTopMargin ? spacing::between : 0;
    if (qobject_cast<const QGroupBox *>(widget) && side == QStyle::PM_LayoutTopMargin)
        return spacing::inCell; // below its title
    const bool isAtSide = side == QStyle::PM_LayoutLeftMargin || side == QStyle::PM_LayoutRightMargin;
    return isAtSide ? spacing::edge : given;
}

/// The title stands within the card, over its contents.
QRect partOfGroup(const QStyleOption &option, QStyle::SubControl part)
{
    const int title = option.fontMetrics.height() + titleMargin;
    switch (part) {
    case QStyle::SC_GroupBoxLabel:
        return {option.rect.left() + titleIndent, option.rect.top() + titleMargin,
                option.rect.width() - 2 * titleIndent, option.fontMetrics.height()};
    case QStyle::SC_GroupBoxContents:
        return option.rect.adjusted(1, title, -1, -1);
    default:
        return option.rect;
    }
}

/// A scroll bar without arrows: what is before the slider, the slider, and what is behind it.
QRect partOfScrollBar(const QStyleOptionSlider &bar, QStyle::SubControl part)
{
    const bool isUpright = bar.orientation == Qt::Vertical;
    const int room = isUpright ? bar.rect.height() : bar.rect.width();
    const qint64 all = qint64(bar.maximum) - bar.minimum + bar.pageStep;
    const int proportional = all > 0 ? int(qint64(room) * bar.pageStep / all) : room;
    const int length =
        bar.maximum == bar.minimum ? room : qBound(qMin(shortestSlider, room), proportional, room);
    const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                      room - length, bar.upsideDown);
    const auto piece = [&](int from, int size) {
        const QRect rect = isUpright ? QRect(bar.rect.x(), bar.rect.y() + from, bar.rect.width(), size)
                                     : QRect(bar.rect.x() + from, bar.rect.y(), size, bar.rect.height());
        return QStyle::visualRect(bar.direction, bar.rect, rect);
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return bar.rect;
    case QStyle::SC_ScrollBarSlider:
        return piece(start, length);
    case QStyle::SC_ScrollBarSubPage:
        return piece(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return piece(start + length, room - start - length);
    default:
        return {};
    }
}

} // namespace

int ControlStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    const int given = QProxyStyle::pixelMetric(metric, option, widget);
    if (!isPlain())
        return given;
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_SmallIconSize:
    case PM_ButtonIconSize:
    case PM_TabCloseIndicatorWidth:
    case PM_TabCloseIndicatorHeight:
        return widget ? qMax(given, widget->fontMetrics().ascent() + 2) : given;
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarTabShiftVertical:
        return 0; // the line below says which one shows
    case PM_ScrollBarExtent:
        return scrollBarWidth;
    case PM_TabBarTabHSpace:
        return 2 * besideTitleOfTab;
    case PM_SplitterWidth:
        return dividesColumns(widget) ? spacing::between : given;
    case PM_HeaderMargin:
        return spacing::inCell;
    case PM_FocusFrameHMargin:
        return spacing::inCell - 1; // the style adds one
    case PM_LayoutHorizontalSpacing:
        return spacing::between;
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin:
        return marginOf(metric, widget, given);
    case PM_DefaultFrameWidth:
        return qobject_cast<const QLineEdit *>(widget) ? fieldMargin : given;
    default:
        return given;
    }
}

QSize ControlStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                     const QWidget *widget) const
{
    const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    if (!isPlain())
        return size;
    const QSize control(0, spacing::heightOfControl(option->fontMetrics));
    switch (type) {
    case CT_PushButton:
        return (size + QSize(roomInButton, 0)).expandedTo(control);
    case CT_ComboBox:
    case CT_SpinBox:
        return size.expandedTo(control);
    case CT_LineEdit:
        return isFramed(*option) ? size.expandedTo(control) : size;
    case CT_ToolButton:
        if (isRoundSign(widget))
            return {option->fontMetrics.height() + spacing::between,
                    option->fontMetrics.height() + spacing::between};
        return (size + QSize(hasMenu(*option) ? roomForArrow : 0, 0)).expandedTo(control);
    case CT_TabBarTab:
        return size + QSize(0, 2);
    case CT_ItemViewItem:
        return size + QSize(0, roomInRow);
    default:
        return size;
    }
}

QRect ControlStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                                   const QWidget *widget) const
{
    const auto *const bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control == CC_ScrollBar && isPlain() && bar)
        return partOfScrollBar(*bar, part);
    if (control == CC_GroupBox && isPlain())
        return partOfGroup(*option, part);
    return QProxyStyle::subControlRect(control, option, part, widget);
}

} // namespace sealwright
