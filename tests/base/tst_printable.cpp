#include "base/printable.h"

#include <gtest/gtest.h>

namespace vornic {
namespace {

TEST(PrintableTest, OrdinaryTextStaysAsItIs)
{
    for (const QString &text :
         { QString(),
           QStringLiteral("Größe: 3 µm, \"a\\b\""),
           QStringLiteral("日本語 हिन्दी עברית"),
           QStringLiteral("😀 👩‍💻"), // a pair, and two with a joiner between them
           QStringLiteral("نمی\u200cخواهم") }) // a non-joiner that belongs to the word
        EXPECT_EQ(printable(text).toStdString(), text.toStdString());
}

TEST(PrintableTest, WhatEndsALineOrMovesTheCursorIsWrittenOut)
{
    EXPECT_EQ(printable("a\nb\r\tc").toStdString(), "a\\nb\\r\\tc");
    EXPECT_EQ(printable("\x1b[2Jgone\x07\x7f").toStdString(), "\\x1b[2Jgone\\x07\\x7f");
    EXPECT_EQ(printable(QString(QChar(0))).toStdString(), "\\x00");
    EXPECT_EQ(printable(QStringLiteral("a\u009b1mb\u0085")).toStdString(), "a\\x9b1mb\\x85");
    EXPECT_EQ(printable(QStringLiteral("a\u2028b\u2029")).toStdString(), "a\\u2028b\\u2029");
}

TEST(PrintableTest, WhatTurnsTheReadingDirectionIsWrittenOut)
{
    EXPECT_EQ(printable(QStringLiteral("gpj.\u202e4pm.\u202c\u2067\u200f\u061c")).toStdString(),
              "gpj.\\u202e4pm.\\u202c\\u2067\\u200f\\u061c");
}

TEST(PrintableTest, HalfOfAPairIsWrittenOut)
{
    const QString half = QStringLiteral("x") + QChar(0xd83d) + QStringLiteral("😀") + QChar(0xde00);
    EXPECT_EQ(printable(half).toStdString(), "x\\ud83d😀\\ude00");
    const QString byteOfAName = QStringLiteral("a") + QChar(0xdcff) + QStringLiteral("b");
    EXPECT_EQ(printable(byteOfAName).toStdString(), "a\\xffb");
}

} // namespace
} // namespace vornic
