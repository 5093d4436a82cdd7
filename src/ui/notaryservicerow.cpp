#include "ui/notaryservicerow.h"

#include "ui/named.h"
#include "ui/practice.h"
#include "ui/statetext.h"
#include "ui/toplevel.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString apple = u"apple"_s;
const QString local = u"local"_s;
const QString address; // what a person types

constexpr int leastLetters = 12; // of a choice that are in sight, in a window that has no room for more

} // namespace

NotaryServiceRow::NotaryServiceRow(KeychainTools keychain, QWidget *parent)
    : QWidget(parent)
    , m_keychain(std::move(keychain))
    , m_choice(new QComboBox(this))
    , m_address(named(new QLineEdit(this), u"notaryAddress"_s, tr("Address of the notary service")))
    , m_problem(new QLabel(this))
{
    m_choice->setObjectName(u"notaryService"_s);
    m_choice->addItem(tr("Apple's"), apple);
    m_choice->addItem(tr("That of this machine, to practise"), local);
    m_choice->addItem(tr("At another address"), address);
    m_choice->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_choice->setMinimumContentsLength(leastLetters);
    m_choice->setCurrentIndex(-1);
    toplevel::leaveTheWheelToScrolling(*m_choice);
    m_address->setPlaceholderText(u"https://notary.example.com:8443"_s);
    m_address->setVisible(false);
    m_problem->setObjectName(u"notaryServiceProblem"_s);
    m_problem->setTextFormat(Qt::PlainText);
    m_problem->setWordWrap(true);
    auto *const rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    for (QWidget *const part : std::initializer_list<QWidget *>{m_choice, m_address, m_problem})
        rows->addWidget(part);
    connect(m_choice, &QComboBox::activated, this, &NotaryServiceRow::choose);
    connect(m_address, &QLineEdit::editingFinished, this, &NotaryServiceRow::useAddress);
    tell({});
    ask();
}

void NotaryServiceRow::ask()
{
    m_keychain.run(keychain::presentNotary(), *this, [this](const KeychainTools::Answer &answer) {
        if (answer) {
            practice::heedService(m_keychain.preferences(), answer->trimmed());
            showChoice(answer->trimmed());
        }
        tell(answer.error());
    });
}

void NotaryServiceRow::showChoice(const QString &service)
{
    const int found = m_choice->findData(service);
    const int other = m_choice->findData(address);
    m_choice->setCurrentIndex(found >= 0 ? found : other);
    m_address->setVisible(found < 0);
    if (found < 0)
        m_address->setText(service);
}

void NotaryServiceRow::choose(int index)
{
    const QString service = m_choice->itemData(index).toString();
    m_address->setVisible(service.isEmpty());
    if (service.isEmpty())
        m_address->setFocus();
    else
        use(service);
}

void NotaryServiceRow::useAddress()
{
    if (m_address->isModified() && !m_address->text().trimmed().isEmpty())
        use(m_address->text().trimmed());
    m_address->setModified(false);
}

void NotaryServiceRow::use(const QString &service)
{
    m_keychain.run(keychain::useNotary(service), *this, [this, service](const KeychainTools::Answer &answer) {
        if (answer)
            practice::heedService(m_keychain.preferences(), service);
        tell(answer.error());
    });
}

void NotaryServiceRow::tell(const QString &problem)
{
    statetext::put(*m_problem, problem, theme::Meaning::bad);
}

} // namespace sealwright
