#include "platform/qt/desktoppasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(DesktopPasteboard, hasTheTextThatWasCopiedAsItStands)
{
    QGuiApplication::clipboard()->setText(u" 1234-abcd\n"_s);
    EXPECT_EQ(platform::DesktopPasteboard().firstString(), u" 1234-abcd\n"_s);
}

TEST(DesktopPasteboard, hasNoTextWhereThereIsNone)
{
    QGuiApplication::clipboard()->clear();
    EXPECT_TRUE(platform::DesktopPasteboard().firstString().isNull());
    QGuiApplication::clipboard()->setImage(QImage(1, 1, QImage::Format_RGB32));
    EXPECT_TRUE(platform::DesktopPasteboard().firstString().isNull());
}
