#include "controls/dialog_skin.h"

#include "controls/push_button.h"
#include "controls/skin_style.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QGridLayout>
#include <QLineEdit>

namespace vornic {

void dressDialog(QDialog &dialog)
{
    const QList<QWidget *> controls = dialog.findChildren<QWidget *>();
    for (QWidget *control : controls) {
        auto *button = qobject_cast<QPushButton *>(control);
        if (button)
            button->setIcon({});
        if (button || qobject_cast<QCheckBox *>(control) || qobject_cast<QLineEdit *>(control)
            || qobject_cast<QComboBox *>(control) || qobject_cast<QAbstractSpinBox *>(control)
            || qobject_cast<QAbstractItemView *>(control))
            control->setStyle(SkinStyle::shared());
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
