// The log: filtered, folded, opened and searched.

#include "pictures/scene.h"
#include "pictures/scenes.h"

#include "ui/findbar.h"
#include "ui/logview.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QString reportOfATool()
{
    QString report = u"Contents of the service's log:\n"_s;
    for (int line = 1; line <= 30; ++line)
        report += u"  line %1 of what the tool has printed, as long as such lines are\n"_s.arg(line);
    return report;
}

void filteredAndFolded()
{
    Scene scene;
    scene.host.tools.answer(u"codesign"_s, {.status = 1, .error = "Example.app: errSecInternalComponent\n"});
    scene.host.submit(scene.makeItem(u"Example.app"_s));
    scene.document().statusTextView.append({reportOfATool(), LogStyle::plain, {u"Menlo"_s, 12}});
    scene.settle();
    scene.closeSheet();
    scene.draw(u"log-folded.png"_s);
    auto &filter = *scene.window().findChild<QComboBox *>(u"logFilterPopup"_s);
    filter.setCurrentIndex(1);
    scene.draw(u"log-steps.png"_s);
    filter.setCurrentIndex(2);
    scene.draw(u"log-errors.png"_s);
    filter.setCurrentIndex(0);
    auto &find = dynamic_cast<WidgetWindow &>(scene.document().window()).page().findBar();
    find.open();
    QTest::keyClicks(find.words(), u"line 2"_s);
    scene.draw(u"log-find.png"_s);
}

} // namespace

void scenes::ofTheLog()
{
    filteredAndFolded();
}
