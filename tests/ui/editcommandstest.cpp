// The edit menu's items for text: which text they act on.

#include "ui/framewindow.h"
#include "ui/itempanel.h"
#include "ui/tabbar.h"
#include "windowtest.h"

#include <QApplication>
#include <QLineEdit>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

class EditCommandsTest : public WindowTest {
protected:
    EditCommandsTest()
    {
        until([this] { return widget().isActiveWindow(); });
    }

    /// A field of the page with a text and the insertion point.
    QLineEdit &fieldInUse()
    {
        auto &field = part<QLineEdit>(u"appleIDField"_s);
        field.setText(u"some text"_s);
        field.setFocus();
        EXPECT_TRUE(field.hasFocus());
        return field;
    }

    QAction &selectAll()
    {
        for (QAction *const action : part<QMenu>(u"editMenu"_s).actions()) {
            if (action->text() == "Select &All"_L1)
                return *action;
        }
        throw std::runtime_error("no such item");
    }
    /// Whether the item is on when the menu opens.
    bool isOffered()
    {
        Q_EMIT part<QMenu>(u"editMenu"_s).aboutToShow();
        return selectAll().isEnabled();
    }
};

} // namespace

TEST_F(EditCommandsTest, theTextOfATabThatDoesNotShowIsLeftAlone)
{
    const QLineEdit &hidden = fieldInUse();
    FrameWindow &frame = *window().frameWindow();
    host.application().newDocument(2);
    frame.selectPreviousTab();
    until([&] { return hidden.hasFocus(); });
    frame.findChild<TabBar *>()->setFocus();
    frame.selectNextTab();
    ASSERT_FALSE(hidden.isVisible());
    selectAll().trigger();
    EXPECT_FALSE(hidden.hasSelectedText());
    EXPECT_FALSE(isOffered());
}

TEST_F(EditCommandsTest, theTextUnderASheetIsLeftAlone)
{
    const QLineEdit &covered = fieldInUse();
    window().beginSheet({u"Question"_s, u"Well?"_s, {}}, [](int) {});
    awaitSheet();
    selectAll().trigger();
    EXPECT_FALSE(covered.hasSelectedText());
    EXPECT_FALSE(isOffered());
    answer(u"OK"_s);
    until([&] { return covered.hasFocus(); });
    EXPECT_TRUE(isOffered());
    selectAll().trigger();
    EXPECT_TRUE(covered.hasSelectedText());
}

TEST_F(EditCommandsTest, theTextInASheetIsActedOn)
{
    const QLineEdit &covered = fieldInUse();
    window().beginOpenPanel({.message = u"Choose"_s, .allowedFileTypes = {}, .shouldEnable = {}},
                            [](const QUrl &) {});
    auto &panel = part<ItemPanel>({});
    until([&] { return panel.isActiveWindow(); });
    auto &name = *panel.findChild<QLineEdit *>(u"fileNameEdit"_s);
    name.setText(u"name"_s);
    name.setFocus();
    EXPECT_TRUE(isOffered());
    selectAll().trigger();
    EXPECT_EQ(name.selectedText(), u"name"_s);
    EXPECT_FALSE(covered.hasSelectedText());
}
