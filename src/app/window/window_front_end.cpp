#include "app/window/window_front_end.h"

#include "app/window/main_window.h"

#include <utility>

namespace vornic {

WindowFrontEnd::WindowFrontEnd()
    : m_questions(m_main)
    , m_progress(m_main)
    , m_movie(m_main)
    , m_windows(m_main, m_progress)
    , m_logoPanels(m_main)
{
}

void WindowFrontEnd::setWindow(MainWindow *window, std::function<void()> stop)
{
    m_main.window = window;
    m_progress.setStop(std::move(stop));
    m_desktop.setMovieSaved([this](const QString &path, double seconds, const QString &flaws) {
        if (m_main.window)
            m_main.window->showSaved(path, seconds, flaws);
    });
    m_desktop.setOpeningFailed([this](const QString &sentence) { m_questions.alertError(sentence); });
}

} // namespace vornic
