#include "ui/alertbox.h"

#include "ui/letterbutton.h"
#include "ui/shown.h"
#include "ui/titlefont.h"

#include <QApplication>
#include <QIcon>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int iconSize = 48;
constexpr int charactersAcross = 48; // at least, or a short text would stand in a narrow column
constexpr int charactersAcrossLong = 68; // of a text that would else be too tall for its page
constexpr qsizetype longText = 500; // characters
constexpr int beside = 3 * iconSize; // pixels: the icon, and what is free round the text
constexpr qreal titleScale = 1.15; // of the text
constexpr auto cancelTitle = "Cancel"_L1;

/// The one that cancels, else the one that takes note and does nothing more, else the last.
qsizetype indexOfEscape(const QStringList &titles)
{
    for (const auto harmless : {cancelTitle, "OK"_L1}) {
        if (const qsizetype index = titles.indexOf(harmless); index >= 0)
            return index;
    }
    return titles.size() - 1;
}

} // namespace

AlertBox::AlertBox(const platform::Alert &alert, QWidget *parent)
    : QMessageBox(parent)
{
    setWindowModality(parent ? Qt::NonModal : Qt::ApplicationModal); // a sheet holds up its document alone
    setWindowTitle(QApplication::applicationDisplayName());
    setIconPixmap(QApplication::windowIcon().pixmap(iconSize));
    setText(shown(alert.messageText));
    setInformativeText(shown(alert.informativeText));
    styleText();
    QStringList titles = alert.buttons.isEmpty() ? QStringList{u"OK"_s} : alert.buttons;
    if (!alert.remedy.isEmpty())
        titles.append(alert.remedy);
    addButtons(titles);
}

void AlertBox::styleText()
{
    // The box offers no other way to its two labels; the second would take an address in brackets for markup.
    for (const QString &name : {u"qt_msgbox_label"_s, u"qt_msgbox_informativelabel"_s}) {
        if (auto *const label = findChild<QLabel *>(name)) {
            label->setTextFormat(Qt::PlainText);
            label->setMinimumWidth(widthOfText());
        }
    }
    if (auto *const message = findChild<QLabel *>(u"qt_msgbox_label"_s))
        message->setFont(titleFont(message->font(), titleScale));
}

int AlertBox::widthOfText() const
{
    const bool isLong = informativeText().size() > longText;
    const int wanted = fontMetrics().averageCharWidth() * (isLong ? charactersAcrossLong : charactersAcross);
    return parentWidget() ? qMin(wanted, qMax(0, parentWidget()->width() - beside)) : wanted;
}

void AlertBox::addButtons(const QStringList &titles)
{
    for (const QString &title : titles) {
        auto *const button = new LetterButton(shown(title), this);
        addButton(button, title == cancelTitle ? RejectRole : AcceptRole);
        m_buttons.append(button);
    }
    setDefaultButton(m_buttons.first());
    setEscapeButton(m_buttons.at(indexOfEscape(titles)));
    LetterButton::assignLetters(m_buttons);
}

int AlertBox::answer() const
{
    return platform::alertFirstButton + static_cast<int>(m_buttons.indexOf(clickedButton()));
}

} // namespace sealwright
