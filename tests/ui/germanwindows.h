#pragma once

#include <QCoreApplication>
#include <QTranslator>

#include <gtest/gtest.h>

/// An application whose windows speak German.
class German {
protected:
    German()
    {
        EXPECT_TRUE(translator.load(QStringLiteral("sealwright_de"), QStringLiteral(TRANSLATIONS)));
        QCoreApplication::installTranslator(&translator);
    }
    ~German() { QCoreApplication::removeTranslator(&translator); }

private:
    QTranslator translator;
};
