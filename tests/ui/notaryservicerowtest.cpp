#include "ui/notaryservicerow.h"

#include "support/testhost.h"
#include "ui/practice.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString program = u"/usr/bin/sealwright-keychain"_s;
const QString tool = u"sealwright-keychain"_s;

class NotaryService : public testing::Test {
protected:
    NotaryService() { host.tools.add(program); }

    /// Shows the row where the program answers so, and waits for that.
    NotaryServiceRow &rowFor(const ToolAnswer &answer)
    {
        host.tools.answer(tool, answer);
        m_row = std::make_unique<NotaryServiceRow>(KeychainTools(host.host(), program));
        m_row->show();
        host.settle();
        return *m_row;
    }
    /// Chooses as a person does.
    void choose(int index)
    {
        m_row->choice().setFocus();
        m_row->choice().setCurrentIndex(index);
        Q_EMIT m_row->choice().activated(index);
        host.settle();
    }
    QLineEdit &address() { return *m_row->findChild<QLineEdit *>(u"notaryAddress"_s); }
    QLabel &problem() { return *m_row->findChild<QLabel *>(u"notaryServiceProblem"_s); }

    TestHost host;

private:
    std::unique_ptr<NotaryServiceRow> m_row;
};

} // namespace

TEST_F(NotaryService, showsWhichOneIsChosen)
{
    EXPECT_EQ(rowFor({.output = "apple\n"}).choice().currentText(), u"Apple's"_s);
    EXPECT_EQ(rowFor({.output = "local\n"}).choice().currentText(), u"That of this machine, to practise"_s);
    EXPECT_FALSE(address().isVisible());
    EXPECT_EQ(rowFor({.output = "https://notary.example.com\n"}).choice().currentText(),
              u"At another address"_s);
    EXPECT_TRUE(address().isVisible());
    EXPECT_EQ(address().text(), u"https://notary.example.com"_s);
}

TEST_F(NotaryService, isKeptByTheProgramOnceItIsChosen)
{
    rowFor({.output = "local\n"});
    choose(0);
    EXPECT_EQ(host.tools.callsOf(tool).last(), (QStringList{u"use-notary"_s, u"apple"_s}));
    choose(2);
    EXPECT_EQ(host.tools.callsOf(tool).size(), 2) << "there is no address yet";
    QTest::keyClicks(&address(), u"https://n.example.com"_s);
    QTest::keyClick(&address(), Qt::Key_Return);
    host.settle();
    EXPECT_EQ(host.tools.callsOf(tool).last(), (QStringList{u"use-notary"_s, u"https://n.example.com"_s}));
}

TEST_F(NotaryService, saysWhyAnAddressIsNotTaken)
{
    rowFor({.output = "local\n"});
    EXPECT_FALSE(problem().isVisible());
    host.tools.answer(tool, {.status = 1, .error = "sealwright-keychain: 'x' is no address\n"});
    choose(2);
    QTest::keyClicks(&address(), u"x"_s);
    QTest::keyClick(&address(), Qt::Key_Return);
    host.settle();
    EXPECT_TRUE(problem().isVisible());
    EXPECT_EQ(problem().text(), u"'x' is no address"_s);
    host.tools.answer(tool, {});
    choose(1);
    EXPECT_FALSE(problem().isVisible());
}

TEST_F(NotaryService, thatIsOfThisMachineIsTakenNoteOf)
{
    rowFor({.output = "apple\n"});
    EXPECT_FALSE(practice::isOn(host.preferences));
    choose(1);
    EXPECT_TRUE(practice::isOn(host.preferences));
}
