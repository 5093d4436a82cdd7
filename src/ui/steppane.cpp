#include "ui/steppane.h"

#include "document/mainwincontroller.h"
#include "platform/preferences.h"
#include "ui/practice.h"
#include "ui/steplistmodel.h"
#include "ui/steplistview.h"

#include <QBoxLayout>

using namespace Qt::StringLiterals;

namespace sealwright {

StepPane::StepPane(MainWinController &document, QWidget *parent)
    : QWidget(parent)
{
    auto *const steps = new StepListView(document.stepList, this);
    auto *const rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, rows->spacing(), 0, 0);
    rows->addWidget(steps, 1);
    const auto &preferences = document.host().preferences;
    const auto nameService = [steps, &preferences] {
        using Service = StepListModel::Service;
        steps->steps().setService(practice::isOn(preferences) ? Service::ofThisMachine : Service::apples);
    };
    connect(&preferences.changes, &Observable::changed, this, nameService);
    nameService();
}

} // namespace sealwright
