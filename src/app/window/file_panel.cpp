#include "app/window/file_panel.h"

#include <QFileDialog>

#include <utility>

namespace vornic {

void runFilePanel(QFileDialog &panel, std::function<void(std::optional<QString>)> answer)
{
    panel.setAttribute(Qt::WA_DeleteOnClose);
    panel.setWindowModality(Qt::WindowModal);
    QObject::connect(
        &panel, &QFileDialog::finished, &panel, [&panel, answer = std::move(answer)](int result) {
            const QStringList files = panel.selectedFiles();
            const bool chosen = result == QDialog::Accepted && !files.isEmpty();
            answer(chosen ? std::optional(files.first()) : std::nullopt);
        });
    panel.open();
}

} // namespace vornic
