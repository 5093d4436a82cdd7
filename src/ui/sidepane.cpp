#include "ui/sidepane.h"

#include "document/mainwincontroller.h"
#include "ui/examinepane.h"
#include "ui/historypane.h"
#include "ui/issuetable.h"
#include "ui/named.h"
#include "ui/steppane.h"

using namespace Qt::StringLiterals;

namespace sealwright {

SidePane::SidePane(MainWinController &document, QWidget *parent)
    : QTabWidget(parent)
{
    named(this, u"sidePane"_s, tr("Steps and findings"));
    setDocumentMode(true);
    addTab(new StepPane(document, this), tr("Steps"));
    addTab(new ExaminePane(document, this), tr("Examine"));
    addTab(new IssueTable(document, this), tr("Issues"));
    addTab(new HistoryPane(document, this), tr("History"));
}

} // namespace sealwright
