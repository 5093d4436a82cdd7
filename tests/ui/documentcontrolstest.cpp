// The controls on the page of a document, which agree with the document's own.

#include "documentpagetest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QProgressBar>

using namespace Qt::StringLiterals;

namespace {

struct CheckRow {
    Checkbox DocumentControls::*control;
    QString name;
    QString label;
    QString key;
};

const QList<CheckRow> checkRows{
    {&DocumentControls::eventsCheckbox, u"eventsCheckbox"_s, u"Apple events"_s,
     u"com.apple.security.automation.apple-events"_s},
    {&DocumentControls::calendarsCheckbox, u"calendarsCheckbox"_s, u"Calendars"_s,
     u"com.apple.security.personal-information.calendars"_s},
    {&DocumentControls::audioCheckbox, u"audioCheckbox"_s, u"Audio input"_s,
     u"com.apple.security.device.audio-input"_s},
    {&DocumentControls::cameraCheckbox, u"cameraCheckbox"_s, u"Camera"_s,
     u"com.apple.security.device.camera"_s},
    {&DocumentControls::locationCheckbox, u"locationCheckbox"_s, u"Location"_s,
     u"com.apple.security.personal-information.location"_s},
    {&DocumentControls::photosCheckbox, u"photosCheckbox"_s, u"Photos library"_s,
     u"com.apple.security.personal-information.photos-library"_s},
    {&DocumentControls::addressBookCheckbox, u"addressBookCheckbox"_s, u"Address book"_s,
     u"com.apple.security.personal-information.addressbook"_s},
    {&DocumentControls::disableLibCheckbox, u"disableLibCheckbox"_s, u"Disable library validation"_s,
     u"com.apple.security.cs.disable-library-validation"_s},
    {&DocumentControls::allowJITCheckbox, u"allowJITCheckbox"_s, u"Allow JIT"_s,
     u"com.apple.security.cs.allow-jit"_s},
    {&DocumentControls::allowUnsignedExecMemCheckbox, u"allowUnsignedExecMemCheckbox"_s,
     u"Allow unsigned executable memory"_s, u"com.apple.security.cs.allow-unsigned-executable-memory"_s},
    {&DocumentControls::allowDYLDEnvCheckbox, u"allowDYLDEnvCheckbox"_s,
     u"Allow DYLD environment variables"_s, u"com.apple.security.cs.allow-dyld-environment-variables"_s},
    {&DocumentControls::disableMemProtectionCheckbox, u"disableMemProtectionCheckbox"_s,
     u"Disable executable page protection"_s, u"com.apple.security.cs.disable-executable-page-protection"_s},
    {&DocumentControls::isDebugToolCheckbox, u"isDebugToolCheckbox"_s, u"Debugging tool"_s,
     u"com.apple.security.cs.debugger"_s},
    {&DocumentControls::dontClearCheckbox, u"dontClearCheckbox"_s, u"Keep log between runs"_s, {}},
    {&DocumentControls::dontSignEnclosuresCheckbox,
     u"dontSignEnclosuresCheckbox"_s,
     u"Sign main item only"_s,
     {}},
};

} // namespace

TEST_F(DocumentPageTest, eachTextFieldAgreesWithItsControlBothWays)
{
    for (const TextRow &row : textRows) {
        auto &edit = part<QLineEdit>(row.name);
        TextField &field = document().*row.control;
        EXPECT_EQ(edit.accessibleName(), row.label);
        EXPECT_EQ(edit.text(), field.stringValue());
        edit.clear();
        QTest::keyClicks(&edit, row.name);
        EXPECT_EQ(field.stringValue(), row.name);
        field.setStringValue(u"from the control"_s);
        EXPECT_EQ(edit.text(), u"from the control"_s);
    }
}

TEST_F(DocumentPageTest, eachCheckboxAgreesWithItsControlBothWays)
{
    for (const CheckRow &row : checkRows) {
        auto &box = part<QCheckBox>(row.name);
        Checkbox &control = document().*row.control;
        EXPECT_EQ(box.accessibleName(), row.label);
        EXPECT_EQ(box.text().remove(u'&'), row.label);
        if (!row.key.isEmpty()) {
            EXPECT_EQ(box.toolTip(), row.key);
        }
        control.setState(0);
        QTest::keyClick(&box, Qt::Key_Space);
        EXPECT_EQ(control.state(), 1) << row.name.toStdString();
        control.setState(0);
        EXPECT_FALSE(box.isChecked()) << row.name.toStdString();
        control.setState(1);
        EXPECT_TRUE(box.isChecked()) << row.name.toStdString();
    }
}

TEST_F(DocumentPageTest, theIdentitiesPopupAgreesWithItsControlBothWays)
{
    auto &combo = part<QComboBox>(u"identitiesPopup"_s);
    EXPECT_EQ(combo.accessibleName(), u"Signing identity"_s);
    EXPECT_EQ(combo.currentText(), document().identitiesPopup.titleOfSelectedItem());
    document().identitiesPopup.setItemTitles({u"One (A)"_s, u"Two (B)"_s});
    document().identitiesPopup.selectItemWithTitle(u"Two (B)"_s);
    EXPECT_EQ(combo.currentText(), u"Two (B)"_s);
    QTest::keyClick(&combo, Qt::Key_Up);
    EXPECT_EQ(document().identitiesPopup.titleOfSelectedItem(), u"One (A)"_s);
}

TEST_F(DocumentPageTest, theItemsNameIsOnShowAndCannotBeTyped)
{
    auto &name = part<QLineEdit>(u"appletNameField"_s);
    document().appletNameField.setStringValue(u"Foo.app"_s);
    EXPECT_EQ(name.text(), u"Foo.app"_s);
    QTest::keyClicks(&name, u"x"_s);
    EXPECT_EQ(document().appletNameField.stringValue(), u"Foo.app"_s);
}

TEST_F(DocumentPageTest, theProgressBarIsThereWhileAWorkflowRuns)
{
    auto &bar = part<QProgressBar>(u"progressIndicator"_s);
    EXPECT_FALSE(bar.isVisible());
    document().progressIndicator.startAnimation();
    EXPECT_TRUE(bar.isVisible());
    document().progressIndicator.stopAnimation();
    EXPECT_FALSE(bar.isVisible());
}

TEST_F(DocumentPageTest, cancelIsOfferedExactlyWhileTheDocumentCanCancel)
{
    EXPECT_FALSE(cancel().isEnabled());
    EXPECT_FALSE(menuItem(u"C&ancel"_s).isEnabled());
    for (const bool can : {true, false, true, false}) {
        document().canCancel.set(can);
        EXPECT_EQ(cancel().isEnabled(), can);
        EXPECT_EQ(menuItem(u"C&ancel"_s).isEnabled(), can);
    }
}

TEST_F(DocumentPageTest, cancelIsOfferedTooWhenAWorkerSaysSo)
{
    onWorker(document(), [this] { document().canCancel.set(true); });
    until([this] { return cancel().isEnabled(); });
}

TEST_F(DocumentPageTest, aClickOnCancelCancels)
{
    document().canCancel.set(true);
    QTest::mouseClick(&cancel(), Qt::LeftButton);
    EXPECT_EQ(awaitSheet().text(), u"Process Cancelled"_s);
    EXPECT_FALSE(cancel().isEnabled());
    answer(u"OK"_s);
}

TEST_F(DocumentPageTest, theTabKeyReachesEveryControl)
{
    document().canCancel.set(true);
    document().useDiskImage.set(true);
    document().useDropDMG.set(true);
    QSet<QString> reached;
    QWidget *const first = widget().focusWidget();
    ASSERT_TRUE(first);
    constexpr int more = 100; // than there are controls
    for (int presses = 0; presses < more; ++presses) {
        reached.insert(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        if (QApplication::focusWidget() == first)
            break;
    }
    QSet<QString> wanted{u"identitiesPopup"_s,      u"createDiskImageCheckbox"_s,
                         u"useDropDMGCheckbox"_s,   u"dropDMGConfigsPopup"_s,
                         u"chooseProviderButton"_s, u"extraEntitlementsButton"_s,
                         u"appPassHelpButton"_s,    u"teamProviderHelpButton"_s,
                         u"dropDMGHelpButton"_s,    u"extraEntitlementsHelpButton"_s,
                         u"statusTextView"_s,       u"clearLogButton"_s,
                         u"fetchHistoryButton"_s,   u"historyMaxPagesField"_s,
                         u"signOnlyButton"_s,       u"stapleOnlyButton"_s,
                         u"submitAppButton"_s,      u"cancelButton"_s};
    for (const TextRow &row : textRows)
        wanted.insert(row.name);
    for (const CheckRow &row : checkRows)
        wanted.insert(row.name);
    EXPECT_TRUE(reached.contains(wanted))
        << "missing: " << (wanted - reached).values().join(u' ').toStdString();
}

TEST_F(DocumentPageTest, withAFontTwiceTheSizeTheWindowFitsTheScreenAndTheFocusIsInSight)
{
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(2 * usual.pointSizeF());
    QApplication::setFont(large);
    const DocumentPtr second = host.application().addedDocument();
    widget().resize(1024, 768);
    until([this] { return widget().isActiveWindow(); });
    EXPECT_LE(widget().minimumSizeHint().width(), 1024);
    EXPECT_LE(widget().minimumSizeHint().height(), 768);
    for (const CheckRow &row : checkRows) {
        auto &box = part<QCheckBox>(row.name);
        box.setFocus();
        QCoreApplication::processEvents();
        EXPECT_FALSE(box.visibleRegion().isEmpty()) << row.name.toStdString();
    }
    QApplication::setFont(usual);
}
