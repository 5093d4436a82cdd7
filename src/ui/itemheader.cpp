#include "ui/itemheader.h"

#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "platform/mainqueue.h"
#include "platform/preferences.h"
#include "platform/workerqueue.h"
#include "run/item.h"
#include "run/status.h"
#include "ui/bindings.h"
#include "ui/busybar.h"
#include "ui/elidedlabel.h"
#include "ui/hintedlabel.h"
#include "ui/itemfacts.h"
#include "ui/itemicon.h"
#include "ui/itemlook.h"
#include "ui/keepplace.h"
#include "ui/named.h"
#include "ui/practice.h"
#include "ui/profilebutton.h"
#include "ui/progresstext.h"
#include "ui/setupbanner.h"
#include "ui/statuspill.h"
#include "ui/titlefont.h"

#include <QBoxLayout>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int charactersOfProgress = 26; // that the bar is as wide as
constexpr int charactersOfLongProgress = 46;
constexpr int lettersOfProfile = 24;
constexpr int fewLettersOfProfile = 10;
constexpr int charactersOfShortProgress = 16;
constexpr int charactersOfWideHeader = 140;
constexpr int charactersOfNarrowHeader = 100;
constexpr int interval = 1000; // milliseconds between two looks at the time
constexpr int linesOfIcon = 3; // that it is as tall as
constexpr qreal itemNameScale = 1.35;

} // namespace

ItemHeader::ItemHeader(MainWinController &document, const ItemLook &look, QWidget *parent)
    : QWidget(parent)
    , m_document(document)
    , m_look(look)
    , m_icon(named(new QLabel(this), u"itemIcon"_s, tr("Icon of the item")))
    , m_statusWord(new StatusPill(this))
    , m_profile(new ProfileButton(document, this))
    , m_practice(new QLabel(tr("Practice"), this))
    , m_progressText(named(new ElidedLabel(this), u"progressText"_s, tr("What is going on")))
    , m_facts(named(new HintedLabel(this), u"itemFacts"_s, tr("About the item")))
    , m_seconds(*this, interval, [this] { showProgress(); })
{
    m_statusWord->setObjectName(u"statusString"_s);
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_icon);
    row->addWidget(makeLines(), 1);
    for (Control *const control : std::initializer_list<Control *>{
             &document.appletNameField, &document.identitiesPopup, &document.createDiskImageCheckbox,
             &document.dontSignEnclosuresCheckbox, &document.submitAppButton})
        connect(control, &Control::changed, this, &ItemHeader::showItem);
    connect(&look, &ItemLook::ended, this, &ItemHeader::heedLook);
    connect(&document.progressIndicator, &Control::changed, this, &ItemHeader::followItem);
    connect(&document.host().preferences.changes, &Observable::changed, this, &ItemHeader::showPractice);
    showPractice();
    showItem();
}

QWidget *ItemHeader::makeLines()
{
    auto *const lines = new QWidget(this);
    auto *const grid = new QGridLayout(lines);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(1, 1);
    grid->addWidget(makeItemName(), 0, 0, 1, 2);
    grid->addWidget(makeProgress(), 0, 2);
    grid->addWidget(makeCancelButton(), 0, 3);
    grid->addWidget(m_profile, 0, 4);
    grid->addWidget(makeState(), 1, 0, Qt::AlignTop);
    grid->addWidget(makeFacts(), 1, 1, 1, 4); // below the others: it is long
    grid->setHorizontalSpacing(fontMetrics().averageCharWidth() * 2);
    return lines;
}

/// In as many lines as it takes: what is about to become of an item is read before a button is pressed.
QWidget *ItemHeader::makeFacts()
{
    constexpr int room = 2; // pixels above and below, as the status word beside it has
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    m_facts->setSizePolicy(policy);
    m_facts->setContentsMargins(0, room, 0, room);
    return m_facts;
}

void ItemHeader::showItem()
{
    const QString path = placeOfItem(m_document);
    const int side = m_icon->fontMetrics().height() * linesOfIcon;
    m_icon->setFixedSize(side, side);
    m_icon->setPixmap(itemicon::pictureOf(m_document.host().files, path, side));
    survey(path);
    showFacts();
    offerChoice();
}

/// A run that has ended well has moved its item.
void ItemHeader::followItem()
{
    if (!m_document.progressIndicator.isAnimating() && placeOfItem(m_document) != m_surveyed)
        showItem();
    else
        offerChoice();
}

/// So that nobody takes what is only practised for the real thing. Before the first steps nothing is either.
void ItemHeader::showPractice()
{
    m_practice->setVisible(practice::isOn(m_document.host().preferences)
                           && !SetupBanner::isNeeded(m_document));
}

QWidget *ItemHeader::makeState()
{
    QFont font = m_practice->font();
    font.setBold(true);
    m_practice->setFont(font);
    m_practice->setObjectName(u"practiceSign"_s);
    m_practice->setToolTip(
        tr("The notary service of this machine is asked, and not Apple's. What it notarizes is "
           "accepted by this machine alone."));
    m_practice->setVisible(false);
    auto *const place = new QWidget(this);
    auto *const row = new QHBoxLayout(place);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_statusWord);
    row->addWidget(m_practice);
    return place;
}

bool ItemHeader::isWithoutItem() const
{
    return m_document.appletNameField.stringValue().isEmpty() && m_document.submitAppButton.isEnabled();
}

/// The empty place of the item is a way to choose one.
void ItemHeader::offerChoice()
{
    m_icon->setCursor(isWithoutItem() ? Qt::PointingHandCursor : Qt::ArrowCursor);
    m_icon->setToolTip(isWithoutItem() ? tr("Chooses an item, and submits it") : QString());
    m_facts->setHint(isWithoutItem() ? tr("Drop one on this window, or press Submit…") : QString());
}

void ItemHeader::mouseReleaseEvent(QMouseEvent *event)
{
    const bool isOnIcon = m_icon->geometry().contains(event->position().toPoint());
    if (event->button() == Qt::LeftButton && isOnIcon && isWithoutItem())
        m_document.perform(m_document.submitAppButton.action());
    else
        QWidget::mouseReleaseEvent(event);
}

void ItemHeader::showFacts()
{
    QStringList facts{itemfacts::describe(m_document.host().files, m_surveyed),
                      itemfacts::describe(m_survey)};
    if (m_document.submitAppButton.action() == Action::doDirectSubmit)
        facts.append(itemfacts::intention(m_document, m_surveyed, m_survey.places));
    facts.removeAll(QString());
    m_facts->setText(facts.join(u" · "_s));
}

/// A look at a bundle finds all of this out too. Where nothing looks, or it cannot, the bundle is walked.
void ItemHeader::survey(const QString &path)
{
    if (path == m_surveyed)
        return;
    m_surveyed = path;
    m_survey = {};
    if (!Item(path).isBundle())
        m_survey.bytes = QFileInfo(path).size();
    else if (!m_look.isPossible())
        walk();
}

void ItemHeader::heedLook(const QJsonObject &examination)
{
    if (m_surveyed.isEmpty() || m_look.item() != m_surveyed)
        return;
    if (!examination.isEmpty())
        take(surveyIn(examination));
    else if (Item(m_surveyed).isBundle() && m_survey == ItemSurvey())
        walk();
}

/// On a worker: the walk takes its time, and the item is on show meanwhile.
void ItemHeader::walk()
{
    const platform::Host &host = m_document.host();
    host.workers.post([&host, path = m_surveyed, header = QPointer(this)] {
        const ItemSurvey survey = surveyOf(host.files, path);
        host.mainQueue.post([header, path, survey] {
            if (header && header->m_surveyed == path)
                header->take(survey);
        });
    });
}

void ItemHeader::take(const ItemSurvey &survey)
{
    const bool isFile = !Item(m_surveyed).isBundle();
    const qint64 bytesOfFile = m_survey.bytes;
    m_survey = survey;
    if (isFile) // as large as it lies there, and not as what is in it
        m_survey.bytes = bytesOfFile;
    showFacts();
}

void ItemHeader::setStatusWord(const QString &word)
{
    m_statusWord->setText(word);
    m_statusWord->setAccessibleName(StatusPill::wording(word));
}

QWidget *ItemHeader::makeItemName()
{
    auto *const name = named(new QLineEdit(this), u"appletNameField"_s, tr("Item"));
    name->setReadOnly(true);
    name->setFrame(false);
    name->setFocusPolicy(Qt::ClickFocus); // nothing can be typed there
    name->setAcceptDrops(false);
    name->setPlaceholderText(tr("No item chosen"));
    QPalette palette = name->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    name->setPalette(palette);
    name->setFont(titleFont(name->font(), itemNameScale));
    bindings::bind(*name, m_document.appletNameField);
    return name;
}

QWidget *ItemHeader::makeProgress()
{
    auto *const place = m_progressPlace = new QWidget(this);
    m_progressText->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_progress = named(new BusyBar(place), u"progressIndicator"_s, tr("Progress"));
    keepPlace(*m_progress);
    bindings::bind(*m_progress, m_document.progressIndicator);
    auto *const rows = new QVBoxLayout(place);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(2);
    rows->addWidget(m_progressText);
    rows->addWidget(m_progress);
    connect(&m_document.stepList, &Observable::changed, this, &ItemHeader::showProgress);
    connect(&m_document.progressIndicator, &Control::changed, this, &ItemHeader::showProgress);
    showProgress();
    return place;
}

/// In a wide window all of the text has its place; in a narrow one, and while nothing goes on, the name of
/// the item does.
void ItemHeader::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    shareWidth();
}

void ItemHeader::shareWidth()
{
    const int letter = fontMetrics().averageCharWidth();
    const int letters = width() / letter;
    const int wanted = letters > charactersOfWideHeader ? charactersOfLongProgress
        : letters > charactersOfNarrowHeader            ? charactersOfProgress
                                                        : charactersOfShortProgress;
    m_progressPlace->setFixedWidth(letter * wanted);
    m_profile->setRoom(letters > charactersOfNarrowHeader ? lettersOfProfile : fewLettersOfProfile);
}

/// A run that a cancel of an earlier one has stopped keeps its document busy; nothing goes on in it.
void ItemHeader::showProgress()
{
    const StepList &steps = m_document.stepList;
    const StepList::Row *const row = steps.running();
    const bool hasStopped = !steps.rows().isEmpty() && !row
        && steps.rows().first().state != StepState::waiting
        && m_document.statusString() == status::submitting;
    const bool isGoingOn = m_document.progressIndicator.isAnimating();
    m_progressText->setText(isGoingOn ? progresstext::present(steps) : QString());
    m_progressText->setToolTip(m_progressText->text());
    m_progress->showParts(row ? row->parts.done : 0, row ? row->parts.all : 0);
    m_progress->setIsStill(hasStopped);
    m_seconds.setIsWanted(steps.wait().has_value());
}

QPushButton *ItemHeader::makeCancelButton()
{
    auto *const cancel = named(new QPushButton(tr("Cancel"), this), u"cancelButton"_s, tr("Cancel"));
    cancel->setToolTip(tr("Stops the run in progress (Ctrl+.)"));
    cancel->setShortcut(QKeySequence(u"Ctrl+."_s));
    cancel->setAutoDefault(false);
    keepPlace(*cancel);
    const auto show = [this, cancel] {
        cancel->setEnabled(m_document.canCancel());
        cancel->setVisible(m_document.canCancel() || m_document.progressIndicator.isAnimating());
    };
    connect(&m_document.canCancel, &Observable::changed, cancel, show);
    connect(&m_document.progressIndicator, &Control::changed, cancel, show);
    show();
    connect(cancel, &QPushButton::clicked, this, [this] { m_document.perform(Action::doCancel); });
    return cancel;
}

} // namespace sealwright
