#pragma once

class QDialog;

namespace vornic {

/// The skin for dialogs that the toolkit makes: their colours come with the application's palette, and this is for
/// the rest. Main thread only.

/// The push buttons of \a dialog look like PushButton, without the icons of the toolkit, and its fields, lists and
/// check boxes have edges that are seen on the dark background. Once its controls have been made.
void dressDialog(QDialog &dialog);

/// A button at the end of \a panel, which has no buttons of its own, that closes it.
void addCloseButton(QDialog &panel);

} // namespace vornic
