#pragma once

#include <QTranslator>

namespace vornic {

/// The texts of the program and of the toolkit in the user's language, where there is a translation.
///
/// Made by main after the application object, before the first text is shown; main thread.
class Translations
{
public:
    Translations();

private:
    QTranslator m_program;
    QTranslator m_toolkit;
};

} // namespace vornic
