#include "ui/sheetbackdrop.h"

#include "ui/spacing.h"
#include "ui/theme.h"
#include "ui/titlefont.h"

#include <QDialog>
#include <QFrame>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr QColor dim(0, 0, 0, 80);
constexpr int margin = 12; // between the frame of a sheet and the edge of its page, pixels
constexpr qreal radius = 10; // pixels, of a corner of a sheet
constexpr qreal titleScale = 1.2; // of the text

bool takesTab(const QWidget &widget)
{
    return (widget.focusPolicy() & Qt::TabFocus) && !widget.focusProxy() && widget.isEnabled()
        && widget.isVisible();
}

enum class Direction { forward, backward };

/// The next part below `root` that the Tab key would lead to, beginning behind `from`; null if there is none.
QWidget *nextPart(const QWidget &root, QWidget &from, Direction direction)
{
    QWidget *part = &from;
    do {
        part = direction == Direction::forward ? part->nextInFocusChain() : part->previousInFocusChain();
        if (root.isAncestorOf(part) && takesTab(*part))
            return part;
    } while (part != &from);
    return nullptr;
}

/// The frame around a sheet, which the Tab key does not leave.
class SheetFrame : public QFrame {
public:
    explicit SheetFrame(QWidget *parent)
        : QFrame(parent)
    {
        setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Maximum);
        auto *const layout = new QGridLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
    }

    void setWantedSize(QSize size)
    {
        m_wanted = size;
        setMaximumSize(size);
    }

    QSize sizeHint() const override { return m_wanted.isValid() ? m_wanted : QFrame::sizeHint(); }

    void addTitle(const QString &text)
    {
        auto *const title = new QLabel(text, this);
        title->setObjectName(u"sheetTitle"_s);
        title->setTextFormat(Qt::PlainText);
        title->setWordWrap(true);
        title->setContentsMargins(spacing::sheetEdge, spacing::sheetEdge, spacing::sheetEdge, 0);
        title->setFont(titleFont(title->font(), titleScale));
        static_cast<QGridLayout *>(layout())->addWidget(title, 0, 0);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(theme::outline(palette()));
        painter.setBrush(palette().window());
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    }

    bool focusNextPrevChild(bool next) override
    {
        QWidget *const focused = window()->focusWidget();
        QWidget *const part = nextPart(*this, focused && isAncestorOf(focused) ? *focused : *this,
                                       next ? Direction::forward : Direction::backward);
        if (part)
            part->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }

private:
    QSize m_wanted; ///< of a dialog that has been given one
};

QWidget *defaultButton(const QDialog &dialog)
{
    for (auto *const button : dialog.findChildren<QPushButton *>()) {
        if (button->isDefault() && button->isVisible())
            return button;
    }
    return nullptr;
}

/// An alert says in its text what it is about.
bool hasTitleOnly(const QDialog &dialog)
{
    return !dialog.windowTitle().isEmpty() && !qobject_cast<const QMessageBox *>(&dialog);
}

bool hasFields(QDialog &dialog)
{
    const QWidget *const first = nextPart(dialog, dialog, Direction::forward);
    return first && !qobject_cast<const QPushButton *>(first);
}

} // namespace

SheetBackdrop::SheetBackdrop(QWidget &page)
    : QScrollArea(&page)
    , m_room(new QWidget(this))
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    auto *const middle = new QGridLayout(m_room);
    middle->setContentsMargins(margin, margin, margin, margin);
    setWidget(m_room);
    m_room->setAutoFillBackground(false); // as setWidget has it
}

void SheetBackdrop::hold(QDialog &dialog)
{
    auto *const frame = new SheetFrame(m_room);
    const QSize wanted = dialog.size();
    dialog.setParent(frame, Qt::Widget);
    dialog.setAttribute(Qt::WA_Moved); // or it would look for a place on the screen
    if (wanted.isValid() && dialog.testAttribute(Qt::WA_Resized))
        frame->setWantedSize(wanted.expandedTo(dialog.minimumSizeHint()));
    if (hasTitleOnly(dialog))
        frame->addTitle(dialog.windowTitle());
    static_cast<QGridLayout *>(frame->layout())->addWidget(&dialog, 1, 0);
    static_cast<QGridLayout *>(m_room->layout())->addWidget(frame, 0, 0, Qt::AlignCenter);
    frame->show();
    dialog.show();
}

void SheetBackdrop::letGo(QDialog &dialog)
{
    dialog.hide();
    auto *const frame = dynamic_cast<SheetFrame *>(dialog.parentWidget());
    dialog.setParent(nullptr);
    if (!frame)
        return; // it was never up
    frame->hide();
    frame->deleteLater();
}

void SheetBackdrop::giveKeys(QDialog &dialog)
{
    if (QWidget *const focused = dialog.window()->focusWidget(); focused && dialog.isAncestorOf(focused))
        return;
    QWidget *part = dialog.focusWidget();
    if (!part && !hasFields(dialog))
        part = defaultButton(dialog);
    if (!part)
        part = nextPart(dialog, dialog, Direction::forward);
    (part ? part : &dialog)->setFocus(Qt::ActiveWindowFocusReason);
}

void SheetBackdrop::paintEvent(QPaintEvent *event)
{
    QPainter(viewport()).fillRect(event->rect(), dim);
}

// What the dialog has no use for is not for the page behind it either.
void SheetBackdrop::keyPressEvent(QKeyEvent *event)
{
    event->accept();
}

void SheetBackdrop::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

} // namespace sealwright
