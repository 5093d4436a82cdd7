#include "ui/entitlementsgroup.h"

#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "signing/entitlements.h"
#include "ui/bindings.h"
#include "ui/elidedlabel.h"
#include "ui/settingrows.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

using Controls = DocumentControls;
using Rows = QList<settingrows::CheckboxRow>;

const Rows &resourceAccess()
{
    static const Rows rows{
        {&Controls::eventsCheckbox, u"eventsCheckbox"_s, u"Apple events"_s, {}},
        {&Controls::calendarsCheckbox, u"calendarsCheckbox"_s, u"Calendars"_s, {}},
        {&Controls::audioCheckbox, u"audioCheckbox"_s, u"Audio input"_s, {}},
        {&Controls::cameraCheckbox, u"cameraCheckbox"_s, u"Camera"_s, {}},
        {&Controls::locationCheckbox, u"locationCheckbox"_s, u"Location"_s, {}},
        {&Controls::photosCheckbox, u"photosCheckbox"_s, u"Photos library"_s, {}},
        {&Controls::addressBookCheckbox, u"addressBookCheckbox"_s, u"Address book"_s, {}},
    };
    return rows;
}

const Rows &runtimeExceptions()
{
    static const Rows rows{
        {&Controls::disableLibCheckbox, u"disableLibCheckbox"_s, u"Disable library validation"_s, {}},
        {&Controls::allowJITCheckbox, u"allowJITCheckbox"_s, u"Allow JIT"_s, {}},
        {&Controls::allowUnsignedExecMemCheckbox,
         u"allowUnsignedExecMemCheckbox"_s,
         u"Allow unsigned executable memory"_s,
         {}},
        {&Controls::allowDYLDEnvCheckbox,
         u"allowDYLDEnvCheckbox"_s,
         u"Allow DYLD environment variables"_s,
         {}},
        {&Controls::disableMemProtectionCheckbox,
         u"disableMemProtectionCheckbox"_s,
         u"Disable executable page protection"_s,
         {}},
    };
    return rows;
}

const Rows &debugging()
{
    static const Rows rows{
        {&Controls::isDebugToolCheckbox, u"isDebugToolCheckbox"_s, u"Debugging tool"_s, {}},
    };
    return rows;
}

/// The key that the checkbox puts into the entitlements.
QString entitlementKey(Checkbox DocumentControls::*control)
{
    DocumentControls settings;
    (settings.*control).setState(1);
    return entitlementsFromSettings(settings).firstKey();
}

/// One kind of entitlements, a heading over its checkboxes.
class Column {
public:
    Column(QGridLayout &grid, int column)
        : m_grid(grid)
        , m_column(column)
    {
    }

    void add(MainWinController &document, const QString &title, const Rows &rows)
    {
        QWidget *const parent = m_grid.parentWidget();
        auto *const heading = new QLabel(title, parent);
        heading->setForegroundRole(QPalette::PlaceholderText);
        m_grid.addWidget(heading, m_row++, m_column);
        for (settingrows::CheckboxRow row : rows) {
            row.toolTip = entitlementKey(row.control);
            auto *const box = settingrows::makeCheckbox(parent, document, row);
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
    : QGroupBox(u"Entitlements"_s, parent)
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
    left.add(m_document, u"Resource access"_s, resourceAccess());
    Column right(grid, 1);
    right.add(m_document, u"Hardened runtime exceptions"_s, runtimeExceptions());
    right.add(m_document, u"Debugging"_s, debugging());
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
        {&Controls::extraEntitlementsButton, u"extraEntitlementsButton"_s, u"E&xtra entitlements"_s,
         u"Asks for a property list, whose entries override the settings above"_s});
    connect(extra, &QCheckBox::clicked, &m_document,
            [this] { m_document.perform(Action::doExtraEntitlements); });
    settingrows::offerWhenIdle(*extra, m_document.extraEntitlementsButton, m_document);
    row->addWidget(extra);
    row->addWidget(makeExtraFileName(), 1);
    row->addWidget(settingrows::makeHelpButton(line, m_document, Action::doExtraEntitlementsHelp,
                                               u"extraEntitlementsHelpButton"_s, u"Extra entitlements"_s));
    return line;
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
