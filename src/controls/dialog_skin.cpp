#include "controls/dialog_skin.h"

#include "controls/push_button.h"
#include "controls/skin_style.h"

#include <QCoreApplication>
#include <QDialog>
#include <QGridLayout>

namespace vornic {

void dressButtons(QDialog &dialog)
{
    const QList<QPushButton *> buttons = dialog.findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        button->setStyle(SkinStyle::shared());
        button->setIcon({});
    }
}

void addCloseButton(QDialog &panel)
{
    auto *button = new PushButton(QCoreApplication::translate("vornic", "Close"), &panel);
    button->setObjectName(QStringLiteral("closeButton"));
    button->setAutoDefault(false); // Enter ends the typing of a number, not the panel
    QObject::connect(button, &QAbstractButton::clicked, &panel, &QDialog::reject);
    if (auto *grid = qobject_cast<QGridLayout *>(panel.layout()))
        grid->addWidget(button, grid->rowCount(), 0, 1, grid->columnCount(), Qt::AlignRight);
    else if (auto *column = qobject_cast<QBoxLayout *>(panel.layout()))
        column->addWidget(button, 0, Qt::AlignRight);
}

} // namespace vornic
