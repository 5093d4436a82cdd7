#pragma once

#include <QGroupBox>

class QGridLayout;

namespace sealwright {

class MainWinController;

/// The entitlements of a document by what they are about, each with its key as the tool tip, and the file of
/// extra ones.
class EntitlementsGroup : public QGroupBox {
    Q_OBJECT

public:
    explicit EntitlementsGroup(MainWinController &document, QWidget *parent = nullptr);

private:
    void addKinds(QGridLayout &grid);
    QWidget *makeExtra();
    QWidget *makeExtraFileName();
    void askAboutToggling(bool isOn);

    MainWinController &m_document;
};

} // namespace sealwright
