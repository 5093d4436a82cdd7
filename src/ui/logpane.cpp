#include "ui/logpane.h"

#include "document/mainwincontroller.h"
#include "ui/findbar.h"
#include "ui/icons.h"
#include "ui/logview.h"
#include "ui/named.h"
#include "ui/settingrows.h"
#include "ui/shown.h"
#include "ui/toplevel.h"
#include "ui/twopartrow.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QFontInfo>
#include <QLabel>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int leastLines = 8;
constexpr int leastLinesBelowABanner = 3; // which with a large font takes the room of the others

} // namespace

LogPane::LogPane(MainWinController &document, QWidget *parent)
    : QWidget(parent)
    , m_document(document)
    , m_log(named(new LogView(document.statusTextView, this), u"statusTextView"_s, tr("Log")))
    , m_findBar(new FindBar(*m_log, this))
{
    m_log->setAcceptDrops(false); // files that are dropped here are for the window
    const auto showHint = [this] {
        const bool hasItem = m_document.submitAppButton.action() == Action::doDirectSubmit;
        const QString hint = hasItem
            ? tr("A copy of the item is worked on, and the original is kept. To begin, press %1")
            : tr("Drop an app, plug-in, package or disk image on this window, or press %1");
        m_log->setHint(hint.arg(shown(m_document.submitAppButton.title())),
                       icons::of(hasItem ? icons::Command::submit : icons::Command::drop));
    };
    connect(&document.submitAppButton, &Control::changed, m_log, showHint);
    showHint();
    m_log->setSizeOfInterface(QFontInfo(font()).pointSizeF());
    setRoom(Room::plenty);
    auto *const rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    addCaption(*rows);
    rows->addWidget(m_log, 1);
    rows->addWidget(m_findBar);
}

void LogPane::setRoom(Room room)
{
    m_log->setMinimumHeight(m_log->heightOfLines(room == Room::plenty ? leastLines : leastLinesBelowABanner));
}

void LogPane::addCaption(QBoxLayout &rows)
{
    auto *const row = new TwoPartRow(this);
    row->first().addWidget(settingrows::makeHeading(this, tr("Lo&g"), *m_log));
    row->first().addWidget(makeFilter());
    row->second().addWidget(settingrows::makeCheckbox(
        this, m_document,
        {&DocumentControls::dontClearCheckbox, u"dontClearCheckbox"_s, tr("&Keep log between runs"), {}}));
    QWidget *const clear = makeClearButton();
    row->second().addWidget(clear);
    rows.addWidget(row);
    setTabOrder(clear, m_log); // which stands below them
    setTabOrder(m_log, m_findBar->words());
}

QWidget *LogPane::makeFilter()
{
    auto *const filter = named(new QComboBox(this), u"logFilterPopup"_s, tr("Show in the log"));
    filter->setToolTip(tr("Which lines are in sight; the log keeps all of them"));
    filter->addItem(tr("All"), QVariant::fromValue(int(LogFilter::all)));
    filter->addItem(tr("Steps"), QVariant::fromValue(int(LogFilter::steps)));
    filter->addItem(tr("Errors"), QVariant::fromValue(int(LogFilter::errors)));
    toplevel::leaveTheWheelToScrolling(*filter);
    connect(filter, &QComboBox::currentIndexChanged, m_log,
            [this, filter] { m_log->setFilter(static_cast<LogFilter>(filter->currentData().toInt())); });
    // Who looks for something that is hidden gets it shown.
    connect(m_findBar, &FindBar::found, m_log, [this, filter] {
        m_log->revealCursor();
        filter->setCurrentIndex(filter->findData(int(m_log->filter())));
    });
    return filter;
}

QWidget *LogPane::makeClearButton()
{
    auto *const clear = named(new QToolButton(this), u"clearLogButton"_s, tr("Clear"));
    clear->setText(tr("Clear"));
    clear->setIcon(icons::of(icons::Command::clear));
    clear->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    clear->setToolTip(tr("Empties the log of this window, not the one in the item's folder"));
    clear->setFocusPolicy(Qt::TabFocus);
    connect(clear, &QToolButton::clicked, this, [this] { m_document.perform(Action::doClearStatus); });
    return clear;
}

} // namespace sealwright
