#include "ui/entitlementsgroup.h"

#include "document/entitlementswitches.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "ui/bindings.h"
#include "ui/elidedlabel.h"
#include "ui/settingrows.h"
#include "ui/shown.h"
#include "ui/spacing.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

using Controls = DocumentControls;
using Kind = EntitlementSwitch::Kind;

/// One kind of entitlements, a heading over its checkboxes.
class Column {
public:
    Column(QGridLayout &grid, int column)
        : m_grid(grid)
        , m_column(column)
    {
    }

    void add(MainWinController &document, const QString &title, Kind kind)
    {
        QWidget *const parent = m_grid.parentWidget();
        auto *const heading = new QLabel(title, parent);
        heading->setForegroundRole(QPalette::PlaceholderText);
        m_grid.addWidget(heading, m_row++, m_column);
        for (const EntitlementSwitch &row : entitlementSwitches()) {
            if (row.kind != kind)
                continue;
            auto *const box = settingrows::makeCheckbox(
                parent, document, {row.control, row.controlName, shown(row.label), row.entitlement});
            box->setAccessibleDescription(title);
            m_grid.addWidget(box, m_row++, m_column);
        }
    }

private:
    QGridLayout &m_grid;
    const int m_column;
    int m_row = 0;
};

} // namespace

EntitlementsGroup::EntitlementsGroup(MainWinController &document, QWidget *parent)
    : QGroupBox(tr("Entitlements"), parent)
    , m_document(document)
{
    auto *const rows = new QVBoxLayout(this);
    auto *const grid = new QGridLayout;
    rows->addLayout(grid);
    addKinds(*grid);
    rows->addStretch(1);
    rows->addWidget(makeExtra());
}

void EntitlementsGroup::addKinds(QGridLayout &grid)
{
    Column left(grid, 0);
    left.add(m_document, tr("Resource access"), Kind::resourceAccess);
    Column right(grid, 1);
    right.add(m_document, tr("Hardened runtime exceptions"), Kind::runtimeException);
    right.add(m_document, tr("Debugging"), Kind::debugging);
    grid.setHorizontalSpacing(2 * spacing::apart);
    grid.setColumnStretch(1, 1);
}

QWidget *EntitlementsGroup::makeExtra()
{
    auto *const line = new QWidget(this);
    settingrows::setHelp(*line, Action::doExtraEntitlementsHelp);
    auto *const row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    auto *const extra = settingrows::makeCheckbox(
        line, m_document,
        {&Controls::extraEntitlementsButton, u"extraEntitlementsButton"_s, tr("E&xtra entitlements"),
         tr("Asks for a property list, whose entries override the settings above")});
    connect(extra, &QCheckBox::clicked, &m_document,
            [this] { m_document.perform(Action::doExtraEntitlements); });
    connect(extra, &QCheckBox::toggled, this, &EntitlementsGroup::askAboutToggling, Qt::QueuedConnection);
    settingrows::offerWhenIdle(*extra, m_document.extraEntitlementsButton, m_document);
    row->addWidget(extra);
    row->addWidget(makeExtraFileName(), 1);
    row->addWidget(settingrows::makeHelpButton(line, m_document, Action::doExtraEntitlementsHelp,
                                               u"extraEntitlementsHelpButton"_s, tr("Extra entitlements")));
    return line;
}

/// A screen reader toggles the box without a click on it, after which nobody has been asked for the file yet.
void EntitlementsGroup::askAboutToggling(bool isOn)
{
    const bool hasFile = !m_document.extraEntitlementsURL().isEmpty();
    if (isOn != hasFile && m_document.statusString() == status::ready)
        m_document.perform(Action::doExtraEntitlements);
}

QWidget *EntitlementsGroup::makeExtraFileName()
{
    auto *const name = new ElidedLabel(this);
    name->setObjectName(u"extraEntitlementsFile"_s);
    const auto show = [this, name] {
        const QString path = itempath::fromUrl(m_document.extraEntitlementsURL());
        name->setText(itempath::lastComponent(path));
        name->setToolTip(path);
    };
    connect(&m_document.extraEntitlementsURL, &Observable::changed, name, show);
    show();
    return name;
}

} // namespace sealwright
