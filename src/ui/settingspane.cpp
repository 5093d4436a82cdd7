#include "ui/settingspane.h"

#include "document/mainwincontroller.h"
#include "ui/entitlementsgroup.h"
#include "ui/settingrows.h"
#include "ui/signinggroups.h"
#include "ui/toplevel.h"

#include <QBoxLayout>
#include <QEvent>

namespace sealwright {

namespace {

constexpr int leastVisibleRows = 2;

} // namespace

SettingsPane::SettingsPane(MainWinController &document, QWidget *parent)
    : QScrollArea(parent)
{
    auto *const contents = new QWidget(this);
    m_columns = new QBoxLayout(QBoxLayout::LeftToRight, contents);
    m_columns->setContentsMargins(0, 0, 0, 0);
    auto *const account = new QVBoxLayout;
    m_columns->addLayout(account, 1);
    account->addWidget(new CredentialsGroup(document, contents));
    account->addWidget(new SigningGroup(document, contents));
    account->addStretch(1);
    settingrows::alignCaptions(*contents);
    m_columns->addWidget(new EntitlementsGroup(document, contents), 1);
    setWidget(contents);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    toplevel::keepFocusInSight(*this);
}

QSize SettingsPane::sizeHint() const
{
    return widget()->sizeHint();
}

QSize SettingsPane::minimumSizeHint() const
{
    return {0, leastVisibleRows * fontMetrics().lineSpacing()};
}

/// What comes up below a field makes the whole higher.
bool SettingsPane::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}

void SettingsPane::resizeEvent(QResizeEvent *event)
{
    int widthOfBoth = m_columns->spacing();
    for (int index = 0; index < m_columns->count(); ++index)
        widthOfBoth += m_columns->itemAt(index)->minimumSize().width();
    m_columns->setDirection(widthOfBoth <= viewport()->width() ? QBoxLayout::LeftToRight
                                                               : QBoxLayout::TopToBottom);
    updateGeometry();
    QScrollArea::resizeEvent(event);
}

} // namespace sealwright
