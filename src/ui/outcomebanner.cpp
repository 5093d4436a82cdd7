#include "ui/outcomebanner.h"

#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/workspace.h"
#include "run/waits.h"
#include "run/workingfoldernames.h"
#include "ui/named.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QEvent>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

constexpr int edge = 4; // pixels of full colour at the leading end

QLabel *makeLabel(QWidget *parent, const QString &name)
{
    auto *const label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
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
    : QFrame(parent)
    , m_document(document)
    , m_title(makeLabel(this, u"outcomeTitle"_s))
    , m_sentence(makeLabel(this, u"outcomeSentence"_s))
{
    named(this, u"outcomeBanner"_s, u"Outcome"_s);
    setAutoFillBackground(true);
    QFont font = m_title->font();
    font.setBold(true);
    m_title->setFont(font);
    m_sentence->setWordWrap(true);
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(edge + row->spacing(), edge, row->spacing(), edge);
    row->addWidget(m_title);
    row->addWidget(m_sentence, 1);
    m_showInFolder =
        addButton(*row, u"outcomeShowInFolder"_s, u"Show in Folder"_s, &OutcomeBanner::showInFolder);
    m_copyIdentifier =
        addButton(*row, u"outcomeCopyIdentifier"_s, u"Copy Identifier"_s, &OutcomeBanner::copyIdentifier);
    m_goOnWaiting = addButton(*row, u"outcomeGoOnWaiting"_s, u"Go On Waiting"_s, &OutcomeBanner::goOnWaiting);
    m_tryAgain = addButton(*row, u"outcomeTryAgain"_s, u"Try Again"_s, &OutcomeBanner::tryAgain);
    connect(&document.stepList, &Observable::changed, this, &OutcomeBanner::follow);
    connect(&document.progressIndicator, &Control::changed, this, &OutcomeBanner::showButtons);
    connect(&document.statusTextView, &LogText::appended, this, &OutcomeBanner::heedLog);
    follow();
    setVisible(false);
}

QPushButton *OutcomeBanner::addButton(QBoxLayout &row, const QString &name, const QString &title,
                                      void (OutcomeBanner::*press)())
{
    auto *const button = named(new QPushButton(title, this), name, title);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, press);
    row.addWidget(button);
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
    m_words.errorLine = withoutTime(run.text);
    follow();
}

void OutcomeBanner::follow()
{
    if (m_document.stepList.running() && !m_document.stepList.wait())
        m_words = {}; // of the run before
    m_words.item = m_document.originalFileName();
    show(outcomeOf(m_document.stepList, m_words));
}

void OutcomeBanner::show(const RunOutcome &outcome)
{
    if (outcome == m_outcome)
        return;
    m_outcome = outcome;
    m_title->setText(outcome.title);
    m_sentence->setText(outcome.sentence);
    setAccessibleDescription(outcome.title + u". "_s + outcome.sentence);
    colour();
    showButtons();
    setVisible(outcome.kind != RunOutcome::Kind::none);
}

void OutcomeBanner::colour()
{
    const QPalette base = QApplication::palette(this);
    const theme::Meaning meaning = meaningOf(m_outcome.kind);
    QPalette own;
    own.setColor(QPalette::Window, theme::groundOf(meaning, base));
    setPalette(own);
    QPalette title;
    title.setColor(
        QPalette::WindowText,
        theme::readable(theme::colourOf(meaning, base), theme::groundOf(meaning, base), theme::leastOfText));
    m_title->setPalette(title);
}

void OutcomeBanner::changeEvent(QEvent *event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange)
        colour();
}

void OutcomeBanner::showButtons()
{
    const bool isOver = !m_document.progressIndicator.isAnimating();
    const bool canRepeat = actionOf(m_document.lastAction()) != Action::none;
    const bool hasGoneWrong = m_outcome.kind == RunOutcome::Kind::failed
        || m_outcome.kind == RunOutcome::Kind::refused || m_outcome.kind == RunOutcome::Kind::cancelled;
    m_showInFolder->setVisible(m_document.host().files.isReachable(folder()));
    m_copyIdentifier->setVisible(!identifier().isEmpty());
    m_goOnWaiting->setVisible(isOver && hasGoneWrong && waits::isFolderOfOne(m_document.host(), folder()));
    m_tryAgain->setVisible(isOver && canRepeat && hasGoneWrong);
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
