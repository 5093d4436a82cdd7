#include "ui/sidepane.h"

#include "document/mainwincontroller.h"
#include "ui/examinepane.h"
#include "ui/historypane.h"
#include "ui/issuetable.h"
#include "ui/named.h"
#include "ui/steppane.h"

using namespace Qt::StringLiterals;

SidePane::SidePane(MainWinController &document, QWidget *parent)
    : QTabWidget(parent)
{
    named(this, u"sidePane"_s, u"Steps and findings"_s);
    setDocumentMode(true);
    addTab(new StepPane(document, this), u"Steps"_s);
    addTab(new ExaminePane(document, this), u"Examine"_s);
    addTab(new IssueTable(document, this), u"Issues"_s);
    addTab(new HistoryPane(document, this), tr("History"));
}
