#include "ui/alertbox.h"

#include "ui/letterbutton.h"

#include <QApplication>
#include <QIcon>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace {

constexpr int iconSize = 48;
constexpr int charactersAcross = 48; // at least, or a short text would stand in a narrow column

} // namespace

AlertBox::AlertBox(const platform::Alert &alert, QWidget *parent)
    : QMessageBox(parent)
{
    setWindowTitle(QApplication::applicationDisplayName());
    setIconPixmap(QApplication::windowIcon().pixmap(iconSize));
    setText(alert.messageText);
    setInformativeText(alert.informativeText);
    styleText();
    addButtons(alert.buttons.isEmpty() ? QStringList{u"OK"_s} : alert.buttons);
}

void AlertBox::styleText()
{
    // The box offers no other way to its two labels; the second would take an address in brackets for markup.
    for (const QString &name : {u"qt_msgbox_label"_s, u"qt_msgbox_informativelabel"_s}) {
        if (auto *const label = findChild<QLabel *>(name)) {
            label->setTextFormat(Qt::PlainText);
            label->setMinimumWidth(label->fontMetrics().averageCharWidth() * charactersAcross);
        }
    }
    if (auto *const message = findChild<QLabel *>(u"qt_msgbox_label"_s)) {
        QFont font = message->font();
        font.setBold(true);
        message->setFont(font);
    }
}

void AlertBox::addButtons(const QStringList &titles)
{
    for (const QString &title : titles) {
        const bool cancels = title == "Cancel"_L1;
        auto *const button = new LetterButton(title, this);
        addButton(button, cancels ? RejectRole : AcceptRole);
        m_buttons.append(button);
        if (cancels || titles.size() == 1)
            setEscapeButton(button);
        if (m_buttons.size() == 1)
            setDefaultButton(button);
    }
    LetterButton::assignLetters(m_buttons);
}

int AlertBox::answer() const
{
    return platform::alertFirstButton + static_cast<int>(m_buttons.indexOf(clickedButton()));
}
