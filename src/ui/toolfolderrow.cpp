#include "ui/toolfolderrow.h"

#include "app/preferencekeys.h"
#include "platform/preferences.h"
#include "ui/filepanels.h"
#include "ui/named.h"
#include "ui/preferencebindings.h"
#include "ui/statetext.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

/// What a folder of tools lacks without which the application does not start; empty if it will do.
QString problemOfToolRoot(const QString &folder)
{
    if (folder.isEmpty())
        return {};
    if (!QFileInfo(folder).isDir())
        return ToolFolderRow::tr(
            "There is no such folder. Sealwright would find no tools at the next launch.");
    for (const auto tool : {"usr/bin/xcrun"_L1, "usr/bin/codesign"_L1}) {
        if (!QFileInfo(folder + u'/' + tool).isExecutable())
            return ToolFolderRow::tr("This folder has no %1. Sealwright would not work with it.").arg(tool);
    }
    return {};
}

} // namespace

ToolFolderRow::ToolFolderRow(platform::Preferences &preferences, QWidget *parent)
    : QWidget(parent)
    , m_preferences(preferences)
    , m_path(new QLineEdit(this))
    , m_problem(new QLabel(this))
{
    auto *const columns = new QGridLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    m_path->setObjectName(key::toolRoot);
    m_path->setPlaceholderText(tr("Sealwright's own"));
    m_path->setClearButtonEnabled(true);
    bindings::bind(*m_path, preferences, key::toolRoot);
    auto *const choose =
        named(new QPushButton(tr("&Choose…"), this), u"chooseToolRootButton"_s, tr("Choose folder of tools"));
    connect(choose, &QPushButton::clicked, this, &ToolFolderRow::choose);
    columns->addWidget(m_path, 0, 0);
    columns->addWidget(choose, 0, 1);
    columns->addWidget(m_problem, 1, 0, 1, 2);
    makeProblem();
}

void ToolFolderRow::makeProblem()
{
    m_problem->setObjectName(u"toolRootProblem"_s);
    m_problem->setTextFormat(Qt::PlainText);
    m_problem->setWordWrap(true);
    connect(m_path, &QLineEdit::textChanged, this, &ToolFolderRow::showProblem);
    connect(&m_preferences.changes, &Observable::changed, this,
            &ToolFolderRow::showProblem); // which the field follows in silence
    showProblem();
}

void ToolFolderRow::showProblem()
{
    statetext::put(*m_problem, problemOfToolRoot(m_path->text()), theme::Meaning::bad);
}

void ToolFolderRow::choose()
{
    const QString present = m_preferences.string(key::toolRoot);
    filepanels::choose(*this,
                       {tr("Choose the folder of tools"), present.isEmpty() ? QDir::homePath() : present},
                       [this](const QString &folder) { m_preferences.setValue(key::toolRoot, folder); });
}

} // namespace sealwright
