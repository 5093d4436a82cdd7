#pragma once

#include <QDialog>

class QComboBox;
class QDialogButtonBox;
class QStackedWidget;

namespace sealwright {

class LetterButton;
class MainWinController;

/// The sheet in which a person waits for the teams of the account, chooses one of them, or reads why there is
/// nothing to choose. Shows the document's controls; its buttons, Escape and a close tell the document, which
/// then ends the sheet.
class ProviderNameSheet : public QDialog {
    Q_OBJECT

public:
    ProviderNameSheet(MainWinController &document, QWidget *parent);

    void accept() override;
    void reject() override;

private:
    QWidget *makeWaitingPage();
    QWidget *makeChoicePage();
    QWidget *makeMessagePage();
    QDialogButtonBox *makeButtons();
    void showButtonsOfPage(int page);

    MainWinController &m_document;
    QStackedWidget *m_pages = nullptr;
    QComboBox *m_popup = nullptr;
    LetterButton *m_ok = nullptr;
    LetterButton *m_cancel = nullptr;
};

} // namespace sealwright
