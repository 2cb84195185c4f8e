#include "app/window/alert_box.h"
#include "app/window/elided_label.h"
#include "window_main.h"

#include <QLabel>

namespace vornic {
namespace {

QStringList textsOf(const QWidget &box)
{
    QStringList texts;
    for (const QLabel *label : box.findChildren<QLabel *>())
        texts += label->text();
    return texts;
}

const QString name = QStringLiteral("a\x1b[2J\u202e4pm.b");
const QString shown = QStringLiteral("a\\x1b[2J\\u202e4pm.b");

TEST(AlertBoxTest, ControlCharactersOfNamesAreWrittenOut)
{
    const AlertBox failure(
        nullptr, AlertBox::Kind::Failure, "Error", "No movie " + name + ": it is a folder.");
    EXPECT_EQ(failure.windowTitle(), "No movie " + shown);
    EXPECT_TRUE(textsOf(failure).contains("No movie " + shown + ": it is a folder."));
}

TEST(AlertBoxTest, ATextMayHaveLines)
{
    const AlertBox question(nullptr, AlertBox::Kind::Question, "Question " + name, "One\nTwo " + name);
    EXPECT_TRUE(textsOf(question).contains("Question " + shown));
    EXPECT_TRUE(textsOf(question).contains("One\nTwo " + shown));
}

TEST(ElidedLabelTest, ControlCharactersOfNamesAreWrittenOut)
{
    ElidedLabel label;
    label.showText("Saved " + name, { "in\n" + name, "and more" });
    EXPECT_EQ(label.text(), "Saved " + shown);
    EXPECT_EQ(label.toolTip(), "in\\n" + shown + "\nand more");
}

} // namespace
} // namespace vornic

int main(int argc, char **argv)
{
    return vornic::runWindowTests(argc, argv);
}
