#pragma once

#include <QString>

#include <functional>
#include <optional>

class QFileDialog;

namespace vornic {

/// Runs \a panel as a sheet on its parent; it is deleted with its answer, which is nothing where none was chosen.
void runFilePanel(QFileDialog &panel, std::function<void(std::optional<QString> path)> answer);

} // namespace vornic
