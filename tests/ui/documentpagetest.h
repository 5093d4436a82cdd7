#pragma once

#include "document/documentcommands.h"
#include "document/entitlementswitches.h"
#include "support/items.h"
#include "ui/findbar.h"
#include "ui/itempanel.h"
#include "windowtest.h"

#include <QMenuBar>
#include <QPushButton>

/// A document's page, in the active window.
class DocumentPageTest : public WindowTest {
protected:
    DocumentPageTest()
    {
        until([this] { return widget().isActiveWindow(); });
    }

    QPushButton &submit() { return part<QPushButton>(QStringLiteral("submitAppButton")); }
    QPushButton &cancel() { return part<QPushButton>(QStringLiteral("cancelButton")); }

    /// The item of the File menu with this text, as it is when the menu opens.
    QAction &menuItem(const QString &text)
    {
        QMenu *const file = part<QMenuBar>({}).findChild<QMenu *>();
        Q_EMIT file->aboutToShow();
        for (QAction *const item : file->actions()) {
            if (item->text().section(u'\t', 0, 0) == text)
                return *item;
        }
        throw std::runtime_error("no such item");
    }
};

/// A field, and how it is known to widgets and people.
struct TextRow {
    TextField DocumentControls::*control;
    QString name;
    QString label;
};

inline const QList<TextRow> textRows{
    {&DocumentControls::appleIDField, QStringLiteral("appleIDField"), QStringLiteral("Apple ID")},
    {&DocumentControls::appPassField, QStringLiteral("appPassField"),
     QStringLiteral("App-specific password")},
    {&DocumentControls::providerNameField, QStringLiteral("providerNameField"),
     QStringLiteral("Provider short name")},
};
