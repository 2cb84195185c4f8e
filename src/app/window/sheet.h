#pragma once

#include "app/window/headings.h"

#include <QDialog>
#include <QLayout>

namespace vornic {

/// A dialog on \a parent alone, from the interface file that \a Description was made of; \a connectTo gets
/// its controls. It ends when it is closed. Main thread only.
template<typename Description, typename ConnectTo>
[[nodiscard]] QDialog *makeSheet(QWidget *parent, const ConnectTo &connectTo)
{
    auto *sheet = new QDialog(parent);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    Description description {};
    description.setupUi(sheet);
    emboldenHeadings(*sheet);
    sheet->layout()->setSizeConstraint(QLayout::SetFixedSize);
    sheet->setWindowModality(parent ? Qt::WindowModal : Qt::ApplicationModal);
    connectTo(description);
    return sheet;
}

} // namespace vornic
