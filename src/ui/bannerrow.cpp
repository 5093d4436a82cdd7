#include "ui/bannerrow.h"

#include <QBoxLayout>
#include <QEvent>
#include <QPushButton>
#include <QScreen>
#include <QStyle>

namespace sealwright {

namespace {

constexpr int charactersOfWords = 44; // that should fit beside the buttons
constexpr int besideBanner = 48; // pixels, at most, of its window and in it

} // namespace

BannerRow::BannerRow(QWidget &banner, QLayout *words)
    : QObject(&banner)
    , m_banner(banner)
    , m_all(new QBoxLayout(QBoxLayout::LeftToRight, &banner))
    , m_buttons(new QHBoxLayout)
{
    m_all->addLayout(words, 1);
    m_buttons->addStretch(1);
    m_all->addLayout(m_buttons);
    banner.installEventFilter(this);
}

void BannerRow::addButton(QPushButton &button)
{
    m_buttons->addWidget(&button);
    m_present.append(&button);
    arrange();
}

int BannerRow::widthOfButtons() const
{
    int width = 0;
    for (const QPushButton *const button : m_present) {
        if (!button->isHidden())
            width += button->sizeHint().width() + m_buttons->spacing();
    }
    return width;
}

/// Where the buttons would be wider than the banner they do without.
void BannerRow::showPicturesWithin(int room)
{
    const int side = m_banner.style()->pixelMetric(QStyle::PM_ButtonIconSize, nullptr, &m_banner);
    const auto show = [this](int size) {
        for (QPushButton *const button : m_present)
            button->setIconSize({size, size});
    };
    show(side);
    if (widthOfButtons() > room)
        show(0);
}

void BannerRow::arrange()
{
    const int words = m_banner.fontMetrics().averageCharWidth() * charactersOfWords;
    const int screen = m_banner.screen()->availableSize().width() - besideBanner;
    showPicturesWithin(qMin(screen, m_banner.contentsRect().width())); // a window is as wide as they are
    const int buttons = widthOfButtons();
    const bool isBeside = buttons == 0 || words + buttons <= m_banner.contentsRect().width();
    m_all->setDirection(isBeside ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

bool BannerRow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &m_banner && event->type() == QEvent::Resize)
        arrange();
    return QObject::eventFilter(watched, event);
}

} // namespace sealwright
