// The mode in which a document holds a dropped item and waits for a person to confirm it.

#include "document/submitcommands.h"

#include "document/mainwincontroller.h"
#include "platform/itempath.h"

using namespace Qt::StringLiterals;

namespace sealwright {

void SubmitCommands::prepareForDirectSubmit(const QUrl &url, const QString &identity)
{
    const Item item = Item::fromUrl(url);
    document.originalAppletURL.set(item.url());
    document.originalFileName.set(item.fileName());
    document.appletNameField.setStringValue(itempath::abbreviatedWithTilde(item.path()));
    document.window().setTitle(item.fileName());
    if (!identity.isNull())
        document.identitiesPopup.selectItemWithTitle(identity);
    _prepareDirectSubmitUI();
    planSteps();
    keepStepsPlanned();
}

void SubmitCommands::keepStepsPlanned()
{
    m_waiting = std::make_unique<QObject>();
    for (const Checkbox *const option : {&document.createDiskImageCheckbox, &document.useDropDMGCheckbox,
                                         &document.dontSignEnclosuresCheckbox})
        QObject::connect(option, &Control::changed, m_waiting.get(), [this] { planSteps(); });
}

void SubmitCommands::setOrdinaryControlsHidden(bool isHidden)
{
    for (Control *control :
         std::initializer_list<Control *>{&document.fetchHistoryButton, &document.historyMaxPagesField,
                                          &document.historyMaxPagesLabel, &document.signOnlyButton})
        control->setIsHidden(isHidden);
}

void SubmitCommands::_prepareDirectSubmitUI()
{
    document.changeStatus(status::interacting);
    setOrdinaryControlsHidden(true);
    document.stapleOnlyButton.setTitle(u"Cancel"_s);
    document.stapleOnlyButton.setKeyEquivalent(u"."_s);
    document.stapleOnlyButton.setToolTip(u""_s);
    document.stapleOnlyButton.setAction(Action::doCancelDirectSubmit);
    document.submitAppButton.setTitle(u"Submit Now"_s);
    document.submitAppButton.setAction(Action::doDirectSubmit);
}

void SubmitCommands::setOrdinaryButtons()
{
    setOrdinaryControlsHidden(false);
    document.stapleOnlyButton.setTitle(u"Staple Only…"_s);
    document.stapleOnlyButton.setKeyEquivalent(u"o"_s);
    document.stapleOnlyButton.setToolTip(u"Attempts to staple an item that has already been submitted"_s);
    document.stapleOnlyButton.setAction(Action::doStapleOnly);
    document.submitAppButton.setTitle(u"Submit…"_s);
    document.submitAppButton.setAction(Action::doSubmit);
}

void SubmitCommands::_cancelDirectSubmitUI()
{
    m_waiting.reset();
    document.changeStatus(status::ready);
    setOrdinaryButtons();
    document.appletNameField.setStringValue(u""_s);
}

} // namespace sealwright
