// Printing a window's log, and the page setup for it.

#include "ui/widgetapplication.h"
#include "windowtest.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrinter>
#include <QRadioButton>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

const QString black = u"0 0 0"_s;

/// What the packed streams of a PDF file hold: the drawing of its pages, and fonts.
QString unpackedStreams(const QByteArray &pdf)
{
    static const QByteArray begin = "stream\nx"; // as all that is packed begins
    static const QByteArray end = "\nendstream";
    static const QByteArray unknownSize(4, '\0');
    QString unpacked;
    for (qsizetype at = pdf.indexOf(begin); at >= 0; at = pdf.indexOf(begin, at)) {
        at += begin.size() - 1;
        const qsizetype length = pdf.indexOf(end, at) - at;
        unpacked += QString::fromLatin1(qUncompress(unknownSize + pdf.mid(at, length)));
        at += length + end.size();
    }
    return unpacked;
}

/// The colours that the letters of a PDF file have, as red, green and blue.
QSet<QString> colours(const QByteArray &pdf)
{
    static const QRegularExpression colour(u"/CSp cs (\\S+ \\S+ \\S+) scn"_s);
    QSet<QString> colours;
    const QString drawing = unpackedStreams(pdf);
    for (const auto &match : colour.globalMatch(drawing))
        colours.insert(match.captured(1));
    return colours;
}

class Printing : public WindowTest {
protected:
    QPrintDialog *dialog() { return widget().findChild<QPrintDialog *>(); }

    /// Has the document print its log and returns when the dialog is up.
    void beginPrinting()
    {
        window().printLog();
        until([this] { return dialog() && dialog()->isVisible(); });
    }

    /// Prints to a file and answers with its bytes.
    QByteArray printed(const QString &name)
    {
        beginPrinting();
        auto *const printers = dialog()->findChild<QComboBox *>(u"printers"_s);
        printers->setCurrentIndex(printers->findText(u"PDF"_s, Qt::MatchContains));
        const QString path = host.item(name);
        dialog()->findChild<QLineEdit *>(u"filename"_s)->setText(path);
        dialog()->accept();
        until([this] { return !dialog(); });
        return host.files.readFile(path).valueOr({});
    }

    /// Presses the button of that name in the page setup, and then OK or Cancel.
    void setUpPage(const QString &button, bool accepts)
    {
        const auto answer = [=] {
            auto *const setup = qobject_cast<QPageSetupDialog *>(QApplication::activeModalWidget());
            ASSERT_TRUE(setup);
            setup->findChild<QRadioButton *>(button)->click();
            accepts ? setup->accept() : setup->reject();
        };
        QMetaObject::invokeMethod(qApp, answer, Qt::QueuedConnection);
        WidgetApplication(order, printer).runPageLayout();
    }

    void log(const QString &line, bool isError = false) { document().logStringMain(line, isError); }

    static qsizetype pages(const QByteArray &pdf) { return pdf.count("/Type /Page\n"); }

    static QSizeF paper(const QByteArray &pdf)
    {
        static const QRegularExpression box(u"/MediaBox \\[0 0 ([0-9.]+) ([0-9.]+)\\]"_s);
        const auto match = box.match(QString::fromLatin1(pdf));
        return {match.captured(1).toDouble(), match.captured(2).toDouble()};
    }
};

} // namespace

TEST_F(Printing, writesTheLogToAFile)
{
    const QByteArray empty = printed(u"empty.pdf"_s);
    EXPECT_TRUE(empty.startsWith("%PDF-"));
    EXPECT_EQ(pages(empty), 1);
    log(u"a line of the log"_s);
    const QByteArray pdf = printed(u"log.pdf"_s);
    EXPECT_EQ(pages(pdf), 1);
    EXPECT_GT(pdf.size(), empty.size());
}

TEST_F(Printing, keepsTheStylesOfTheWindow)
{
    log(u"a line of the log"_s);
    EXPECT_EQ(colours(printed(u"plain.pdf"_s)), QSet<QString>{black});
    log(u"an error"_s, true);
    const auto both = colours(printed(u"error.pdf"_s));
    EXPECT_EQ(both.size(), 2);
    EXPECT_TRUE(both.contains(black));
}

TEST_F(Printing, aLongLogTakesMorePages)
{
    for (int line = 0; line < 200; ++line)
        log(u"a line of the log"_s);
    EXPECT_GT(pages(printed(u"log.pdf"_s)), 1);
}

TEST_F(Printing, isASheetOfTheWindow)
{
    beginPrinting();
    EXPECT_EQ(dialog()->windowModality(), Qt::NonModal) << "other windows take input";
    EXPECT_EQ(dialog()->printer()->docName(), u"Untitled"_s);
    dialog()->reject();
    until([this] { return !dialog(); });
}

TEST_F(Printing, theSheetGoesWithItsWindow)
{
    beginPrinting();
    const std::weak_ptr<MainWinController> watched = document().weak_from_this();
    window().close();
    until([&] { return watched.expired(); });
}

TEST_F(Printing, aWindowThatIsClosedPrintsNothing)
{
    const DocumentPtr held = document().shared_from_this();
    held->window().close();
    held->window().printLog();
    EXPECT_TRUE(dynamic_cast<WidgetWindow &>(held->window()).widget().findChildren<QDialog *>().isEmpty());
}

TEST_F(Printing, aPageSetupCountsForAllWindowsFromThenOn)
{
    setUpPage(u"landscape"_s, true);
    const QSizeF first = paper(printed(u"first.pdf"_s));
    EXPECT_GT(first.width(), first.height());
    host.application().addedDocument();
    EXPECT_EQ(paper(printed(u"second.pdf"_s)), first);
    setUpPage(u"portrait"_s, true);
    EXPECT_EQ(paper(printed(u"third.pdf"_s)), first.transposed());
}

TEST_F(Printing, aPageSetupThatIsCancelledChangesNothing)
{
    const QSizeF before = paper(printed(u"before.pdf"_s));
    EXPECT_LT(before.width(), before.height());
    setUpPage(u"landscape"_s, false);
    EXPECT_EQ(paper(printed(u"after.pdf"_s)), before);
}
