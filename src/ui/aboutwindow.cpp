#include "ui/aboutwindow.h"

#include "about/aboutcontroller.h"
#include "ui/bindings.h"
#include "ui/named.h"
#include "ui/titlefont.h"
#include "ui/toplevel.h"

#include <QApplication>
#include <QBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QScreen>
#include <QTextEdit>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int iconSize = 96;
constexpr qreal titleScale = 1.7;
constexpr int margin = 24;
constexpr int charactersAcross = 62;
constexpr int creditLines = 11;

QLabel *makeLabel(QWidget *parent, TextField &field, const QString &name)
{
    auto *const label = new QLabel(parent);
    label->setObjectName(name); // without an accessible name, so that its text is what is read
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    bindings::bind(*label, field);
    return label;
}

} // namespace

AboutWindow::AboutWindow(AboutController &controller)
{
    setWindowTitle(tr("About Sealwright"));
    auto *const columns = new QHBoxLayout(this);
    columns->setContentsMargins(margin, margin, margin, margin);
    columns->setSpacing(margin);
    auto *const icon = new QLabel(this);
    icon->setPixmap(QApplication::windowIcon().pixmap(iconSize));
    icon->setFixedWidth(iconSize);
    columns->addWidget(icon, 0, Qt::AlignTop);
    auto *const rows = new QVBoxLayout;
    rows->setSpacing(margin / 4);
    rows->addWidget(makeTitle(controller));
    rows->addWidget(makeLabel(this, controller.mVersionView, u"mVersionView"_s));
    rows->addWidget(makeLabel(this, controller.mCopyrightView, u"mCopyrightView"_s));
    rows->addSpacing(margin / 2);
    rows->addWidget(makeCredits(controller), 1);
    columns->addLayout(rows, 1);
    toplevel::closeByKeys(*this);
}

QWidget *AboutWindow::makeTitle(AboutController &controller)
{
    QLabel *const title = makeLabel(this, controller.mTitleView, u"mTitleView"_s);
    title->setFont(titleFont(title->font(), titleScale));
    return title;
}

QWidget *AboutWindow::makeCredits(AboutController &controller)
{
    auto *const credits = named(new QTextEdit(this), u"mCreditsView"_s, tr("Credits"));
    credits->setReadOnly(true);
    credits->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    credits->setTabChangesFocus(true);
    credits->setCursorWidth(0); // nothing can be typed here
    credits->setMinimumSize(credits->fontMetrics().averageCharWidth() * charactersAcross,
                            credits->fontMetrics().lineSpacing() * creditLines);
    bindings::bind(*credits, controller.mCreditsView);
    return credits;
}

void AboutWindow::center()
{
    adjustSize();
    move(screen()->availableGeometry().center() - rect().center());
}

void AboutWindow::show()
{
    toplevel::bringToFront(*this);
    activateWindow();
}

} // namespace sealwright
