#include "ui/outcomebanner.h"

#include "app/appdelegate.h"
#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "document/profiles.h"
#include "document/recentwaits.h"
#include "notarization/staplingsteps.h"
#include "notarization/uploadstep.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/workspace.h"
#include "run/waits.h"
#include "run/workingfoldernames.h"
#include "ui/bannerrow.h"
#include "ui/icons.h"
#include "ui/named.h"
#include "ui/practice.h"
#include "ui/progresstext.h"
#include "ui/runsign.h"
#include "ui/shown.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QEvent>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sealwright {

using icons::Command;

namespace {

constexpr int interval = 1000; // milliseconds
constexpr qsizetype mostHeeded = 100'000; // characters of an error, of which one line is shown

QLabel *makeLabel(QWidget *parent, const QString &name)
{
    auto *const label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

/// The rest stands in the sheet and in the log.
QString firstSentence(const QString &text)
{
    const qsizetype end = text.indexOf(u". "_s);
    return end < 0 ? text : text.left(end + 1);
}

/// What repeats the latest run; none if nothing is to be repeated.
Action actionOf(quint64 lastAction)
{
    switch (lastAction) {
    case submitAction:
        return Action::doSubmitAgain;
    case stapleAction:
        return Action::doStapleAgain;
    case signAction:
        return Action::doSignAgain;
    default:
        return Action::none;
    }
}

} // namespace

OutcomeBanner::OutcomeBanner(MainWinController &document, QWidget *parent)
    : BannerFrame(theme::Meaning::quiet, parent)
    , m_document(document)
    , m_sign(new RunSign(this))
    , m_title(makeLabel(this, u"outcomeTitle"_s))
    , m_sentence(makeLabel(this, u"outcomeSentence"_s))
    , m_recentWaits(makeLabel(this, u"outcomeRecentWaits"_s))
    , m_seconds(*this, interval, [this] { follow(); })
{
    named(this, u"outcomeBanner"_s, tr("Outcome"));
    m_row = new BannerRow(*this, makeWords());
    spaceOut();
    m_showInFolder = addButton(u"outcomeShowInFolder"_s, tr("Show in Folder"), &OutcomeBanner::showInFolder);
    m_showInFolder->setIcon(icons::of(Command::showInFolder));
    m_copyIdentifier =
        addButton(u"outcomeCopyIdentifier"_s, tr("Copy Identifier"), &OutcomeBanner::copyIdentifier);
    m_copyIdentifier->setIcon(icons::of(Command::copy));
    m_goOnWaiting = addButton(u"outcomeGoOnWaiting"_s, tr("Go On Waiting"), &OutcomeBanner::goOnWaiting);
    m_goOnWaiting->setIcon(icons::of(Command::goOnWaiting));
    m_tryAgain = addButton(u"outcomeTryAgain"_s, tr("Try Again"), &OutcomeBanner::tryAgain);
    m_tryAgain->setIcon(icons::of(Command::repeat));
    m_newDocument = addButton(u"outcomeNewDocument"_s, tr("New Document"), &OutcomeBanner::newDocument);
    m_newDocument->setIcon(icons::of(Command::newDocument));
    connect(&document.stepList, &Observable::changed, this, &OutcomeBanner::follow);
    connect(&document.progressIndicator, &Control::changed, this, [this] {
        follow();
        showButtons(); // also where the outcome stays as it was
    });
    connect(&document.statusTextView, &LogText::appended, this, &OutcomeBanner::heedLog);
    follow();
    setVisible(false);
}

QLayout *OutcomeBanner::makeWords()
{
    QFont font = m_title->font();
    font.setBold(true);
    m_title->setFont(font);
    m_sentence->setWordWrap(true);
    m_recentWaits->setWordWrap(true);
    auto *const texts = new QVBoxLayout;
    texts->setSpacing(1);
    for (QLabel *const label : {m_title, m_sentence, m_recentWaits})
        texts->addWidget(label);
    auto *const words = new QHBoxLayout;
    words->addWidget(m_sign);
    words->addLayout(texts, 1);
    return words;
}

QPushButton *OutcomeBanner::addButton(const QString &name, const QString &title,
                                      void (OutcomeBanner::*press)())
{
    auto *const button = named(new QPushButton(title, this), name, title);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, press);
    m_row->addButton(*button);
    return button;
}

void OutcomeBanner::heedSheet(const platform::Alert &alert)
{
    m_words.alertTitle = alert.messageText;
    m_words.alertText = alert.informativeText;
    follow();
}

void OutcomeBanner::heedLog(const LogText::Run &run)
{
    if (run.style != LogStyle::error)
        return;
    m_words.errorLine = withoutTime(QStringView(run.text).left(mostHeeded));
    follow();
}

void OutcomeBanner::follow()
{
    if (m_document.stepList.running() && !m_document.stepList.wait())
        m_words = {}; // of the run before
    m_words.item = nameOfResult();
    m_words.finding = findingIn(m_document.serviceIssues());
    show(withAdvice(outcomeOf(m_document.stepList, m_words)));
    m_seconds.setIsWanted(m_outcome.kind == RunOutcome::Kind::cancelled);
}

/// What has been stapled: the item, or the disk image that was made of it.
QString OutcomeBanner::nameOfResult() const
{
    const auto &rows = m_document.stepList.rows();
    const bool isStapled = !rows.isEmpty() && rows.last().step == step::staple;
    const QString uploaded = m_document.submitFilePath();
    return isStapled && m_document.useDiskImage() && !uploaded.isEmpty() ? itempath::lastComponent(uploaded)
                                                                         : m_document.originalFileName();
}

/// Whether this run has come so far that its folder holds an identifier of its own.
bool OutcomeBanner::isPastUpload() const
{
    const auto &rows = m_document.stepList.rows();
    const auto upload =
        std::find_if(rows.cbegin(), rows.cend(), [](const auto &row) { return row.step == step::upload; });
    return upload == rows.cend() || upload->state == StepState::done;
}

/// A cancel that found no tool running outlives its run, and stops the next one of the document.
RunOutcome OutcomeBanner::withAdvice(RunOutcome outcome) const
{
    if (outcome.kind != RunOutcome::Kind::cancelled)
        return outcome;
    outcome.sentence = firstSentence(shown(outcome.sentence));
    if (!m_document.cancelPressed())
        return outcome;
    if (m_document.progressIndicator.isAnimating()) {
        outcome.title = tr("This run has stopped");
        outcome.sentence =
            tr("The cancel before it has stopped it at its beginning, and nothing goes on here. "
               "Close this document, and go on in a new one.");
    } else {
        outcome.sentence +=
            u' ' + tr("Go on in a new document, which takes the item and its settings along.");
    }
    return outcome;
}

/// Where a person finds what has become of the item, which is no longer where it was; and what it is worth.
QString OutcomeBanner::withWhereabouts(const QString &sentence) const
{
    const bool isDone =
        m_outcome.kind == RunOutcome::Kind::notarized || m_outcome.kind == RunOutcome::Kind::isSigned;
    QStringList sentences{sentence};
    if (const QString name = itempath::lastComponent(folder()); isDone && hasOriginal())
        sentences.append(tr("It lies in the folder “%1”, with the original.").arg(name));
    if (m_outcome.kind == RunOutcome::Kind::notarized && practice::isOn(m_document.host().preferences))
        sentences.append(tr("For practice: other Macs do not accept it."));
    return sentences.join(u' ');
}

bool OutcomeBanner::hasOriginal() const
{
    const QString base = itempath::withoutExtension(m_document.originalFileName());
    const QString original = itempath::appending(folder(), workingfolder::unmodifiedOriginalName(base));
    return m_document.host().files.isReachable(original);
}

void OutcomeBanner::show(const RunOutcome &outcome)
{
    if (outcome == m_outcome)
        return;
    m_outcome = outcome;
    m_title->setText(shown(outcome.title));
    m_sentence->setText(withWhereabouts(shown(outcome.sentence.trimmed())));
    m_sentence->setVisible(!outcome.sentence.trimmed().isEmpty());
    const bool isWaiting = outcome.kind == RunOutcome::Kind::waiting;
    const QString waits = progresstext::recentWaits(recentwaits::range(m_document.host().preferences));
    m_recentWaits->setText(isWaiting ? waits : QString());
    m_recentWaits->setVisible(isWaiting && !waits.isEmpty());
    setAccessibleDescription(m_title->text() + u". "_s + m_sentence->text());
    colour();
    showButtons();
    setVisible(outcome.kind != RunOutcome::Kind::none);
}

void OutcomeBanner::colour()
{
    const QPalette base = QApplication::palette(this);
    const theme::Meaning meaning = meaningOf(m_outcome.kind);
    m_sign->showState(stateOf(m_outcome.kind));
    setMeaning(meaning);
    QPalette title;
    title.setColor(
        QPalette::WindowText,
        theme::readable(theme::colourOf(meaning, base), theme::groundOf(meaning, base), theme::leastOfText));
    m_title->setPalette(title);
}

void OutcomeBanner::changeEvent(QEvent *event)
{
    BannerFrame::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange)
        colour();
}

void OutcomeBanner::showButtons()
{
    const bool isOver = !m_document.progressIndicator.isAnimating();
    const bool canRepeat = actionOf(m_document.lastAction()) != Action::none;
    const bool hasGoneWrong = m_outcome.kind == RunOutcome::Kind::failed
        || m_outcome.kind == RunOutcome::Kind::refused || m_outcome.kind == RunOutcome::Kind::cancelled;
    const bool stopsNextRun = m_outcome.kind == RunOutcome::Kind::cancelled && m_document.cancelPressed();
    m_newDocument->setVisible(stopsNextRun);
    m_showInFolder->setVisible(m_document.host().files.isReachable(folder()));
    m_showInFolder->setToolTip(folder());
    m_copyIdentifier->setVisible(isPastUpload() && !identifier().isEmpty());
    m_goOnWaiting->setVisible(isOver && hasGoneWrong && waits::isFolderOfOne(m_document.host(), folder()));
    m_tryAgain->setVisible(isOver && canRepeat && hasGoneWrong && !stopsNextRun);
    m_row->arrange();
}

QString OutcomeBanner::folder() const
{
    const QString copy = itempath::fromUrl(m_document.appletURL());
    return copy.isEmpty() ? QString() : itempath::folder(copy);
}

QString OutcomeBanner::identifier() const
{
    const auto text = m_document.host().files.readFile(
        itempath::appending(folder(), workingfolder::requestUUIDName.toString()));
    return text ? QString::fromUtf8(*text).trimmed() : QString();
}

/// With the item and all that has been set for it, ready to be submitted.
void OutcomeBanner::newDocument()
{
    constexpr int asTheDesktopLikes = 0;
    ApplicationInterface &application = m_document.appDelegate();
    application.newDocument(asTheDesktopLikes);
    MainWinController &next = *application.allControllers().last();
    if (profiles::apply(next, profiles::profileOf(m_document)))
        next.profile.set(m_document.profile());
    if (m_document.host().files.isReachable(itempath::fromUrl(m_document.originalAppletURL())))
        next.commands().submit.prepareForDirectSubmit(m_document.originalAppletURL(), {});
}

void OutcomeBanner::showInFolder()
{
    const QString item = itempath::fromUrl(m_document.appletURL());
    m_document.host().workspace.revealItem(m_document.host().files.isReachable(item) ? item : folder());
}

void OutcomeBanner::copyIdentifier()
{
    QApplication::clipboard()->setText(identifier());
}

void OutcomeBanner::goOnWaiting()
{
    m_document.commands().resume.goOnInFolder(folder());
}

void OutcomeBanner::tryAgain()
{
    m_document.perform(actionOf(m_document.lastAction()));
}

} // namespace sealwright
