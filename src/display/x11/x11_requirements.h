#pragma once

#include <QString>

#include <memory>

namespace vornic {

class X11Connection;

/// Connects to $DISPLAY and makes sure that its server can be recorded: it runs on this machine, has the
/// extensions that grabbing needs and shows the desktop. Null with one sentence for the user where it cannot.
[[nodiscard]] std::unique_ptr<X11Connection> openRecordableConnection(QString &whyNot);

} // namespace vornic
