#pragma once

#include "support/testhost.h"
#include "ui/appearance.h"
#include "ui/logprinter.h"
#include "ui/widgetwindow.h"
#include "ui/windoworder.h"

/// An application on a faked host whose windows are drawn into files.
class Scene {
public:
    enum class Keychain { filled, empty };
    explicit Scene(Keychain keychain = Keychain::filled);
    ~Scene();

    MainWinController &document() { return host.document(); }
    /// The top-level window that shows the document added last.
    QWidget &window();

    /// An app to submit, in the folder of items.
    QString makeItem(const QString &name);
    /// Lets all that is queued happen, also to the widgets.
    void settle();
    /// Lets the widgets follow while a tool goes on.
    static void pause();
    /// Closes the sheet that is up, as Escape does.
    void closeSheet();
    /// Shows a page beside the log: the steps, what examining has found, the issues, the history.
    void showPage(int page);

    /// Draws the window, with the sheet that is up over it.
    void draw(const QString &file);
    static void draw(QWidget &widget, const QString &file);

    WindowOrder order;
    LogPrinter printer;
    WidgetWindowFactory factory{order, printer};
    TestHost host{&factory};
};
