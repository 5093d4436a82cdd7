#include "ui/providernamesheet.h"

#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "ui/bindings.h"
#include "ui/busybar.h"
#include "ui/letterbutton.h"
#include "ui/named.h"
#include "ui/toplevel.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int charactersAcross = 84; // of a short name with what it stands for

QLabel *makeCaption(QWidget *parent, const QString &text, QWidget *buddy)
{
    auto *const caption = new QLabel(text, parent);
    caption->setBuddy(buddy);
    return caption;
}

QLabel *makeText(QWidget *parent, TextField &field, const QString &name)
{
    auto *const text = new QLabel(parent);
    text->setObjectName(name); // without an accessible name, so that its text is what is read
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    bindings::bind(*text, field);
    return text;
}

} // namespace

ProviderNameSheet::ProviderNameSheet(MainWinController &document, QWidget *parent)
    : QDialog(parent)
    , m_document(document)
{
    setWindowTitle(tr("Provider Short Name"));
    named(this, u"providerSheetWindow"_s, windowTitle());
    setMinimumWidth(toplevel::widthOfSheet(*this, charactersAcross));
    m_pages = new QStackedWidget(this);
    m_pages->setObjectName(u"providerSheetTabView"_s);
    m_pages->addWidget(makeWaitingPage());
    m_pages->addWidget(makeChoicePage());
    m_pages->addWidget(makeMessagePage());
    auto *const rows = new QVBoxLayout(this);
    rows->addWidget(m_pages, 1);
    rows->addWidget(makeButtons());
    connect(m_pages, &QStackedWidget::currentChanged, this, &ProviderNameSheet::showButtonsOfPage);
    bindings::bind(*m_pages, document.providerSheetTabView);
    showButtonsOfPage(m_pages->currentIndex());
}

void ProviderNameSheet::accept()
{
    m_document.commands().providers.doProviderNameOK();
}

void ProviderNameSheet::reject()
{
    m_document.commands().providers.doProviderNameCancel();
}

QWidget *ProviderNameSheet::makeWaitingPage()
{
    const QString label = tr("Asking Apple for your development teams…");
    auto *const page = new QWidget(m_pages);
    auto *const rows = new QVBoxLayout(page);
    auto *const progress = named(new BusyBar(page), u"providerSheetProgress"_s, label);
    bindings::bind(*progress, m_document.providerSheetProgress);
    rows->addWidget(makeCaption(page, label, progress));
    rows->addWidget(progress);
    rows->addStretch(1);
    return page;
}

QWidget *ProviderNameSheet::makeChoicePage()
{
    const QString label = tr("Development team");
    auto *const page = new QWidget(m_pages);
    auto *const rows = new QVBoxLayout(page);
    m_popup = named(new QComboBox(page), u"providerSheetPopup"_s, label);
    m_popup->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    bindings::bind(*m_popup, m_document.providerSheetPopup);
    rows->addWidget(makeCaption(page, label, m_popup));
    rows->addWidget(m_popup);
    rows->addStretch(1);
    return page;
}

QWidget *ProviderNameSheet::makeMessagePage()
{
    auto *const page = new QWidget(m_pages);
    auto *const rows = new QVBoxLayout(page);
    QLabel *const heading = makeText(page, m_document.providerSheetErrorText, u"providerSheetErrorText"_s);
    QFont font = heading->font();
    font.setBold(true);
    heading->setFont(font);
    rows->addWidget(heading);
    auto *const detail = new QScrollArea(page); // a tool may say more than a screen holds
    detail->setFrameShape(QFrame::NoFrame);
    detail->setWidgetResizable(true);
    detail->setWidget(makeText(page, m_document.providerSheetDetailText, u"providerSheetDetailText"_s));
    rows->addWidget(detail, 1);
    return page;
}

QDialogButtonBox *ProviderNameSheet::makeButtons()
{
    auto *const buttons = new QDialogButtonBox(this);
    m_ok = named(new LetterButton(tr("OK"), buttons), u"providerSheetOK"_s, tr("OK"));
    m_cancel = named(new LetterButton(tr("Cancel"), buttons), u"providerSheetCancel"_s, tr("Cancel"));
    buttons->addButton(m_ok, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_cancel, QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &ProviderNameSheet::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ProviderNameSheet::reject);
    return buttons;
}

void ProviderNameSheet::showButtonsOfPage(int page)
{
    // Only a choice can be taken; from the other pages there is one way out.
    m_ok->setVisible(page == choicePage);
    if (page == choicePage)
        m_popup->setFocus(); // Return then takes the choice
    (page == choicePage ? m_ok : m_cancel)->setDefault(true);
    m_cancel->setText(page == messagePage ? tr("Close") : tr("Cancel"));
    m_cancel->setAccessibleName(m_cancel->text());
    LetterButton::assignLetters({m_ok, m_cancel});
}

} // namespace sealwright
