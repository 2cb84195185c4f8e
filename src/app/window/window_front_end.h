#pragma once

#include "app/session/front_end.h"
#include "app/window/main_window_link.h"
#include "app/window/main_window_moves.h"
#include "app/window/window_desktop.h"
#include "app/window/window_logo_panels.h"
#include "app/window/window_movie_progress.h"
#include "app/window/window_progress.h"
#include "app/window/window_questions.h"

namespace vornic {

/// A recording as the window shows it.
///
/// Made before the delegate and connected to the window after it; lives on the main thread.
class WindowFrontEnd
{
public:
    WindowFrontEnd();

    [[nodiscard]] FrontEnd frontEnd()
    {
        return { m_questions, m_progress, m_progress, m_movie, m_windows, m_desktop, m_logoPanels };
    }
    [[nodiscard]] WindowQuestions &questions() { return m_questions; }
    [[nodiscard]] const WindowQuestions &questions() const { return m_questions; }
    [[nodiscard]] WindowProgress &progress() { return m_progress; }
    [[nodiscard]] WindowMovieProgress &movie() { return m_movie; }
    [[nodiscard]] MainWindowMoves &windows() { return m_windows; }
    [[nodiscard]] WindowDesktop &desktop() { return m_desktop; }
    /// Borrows \a window; \a stop is called when the user asks for the end of a recording. Before the first
    /// recording.
    void setWindow(MainWindow *window, std::function<void()> stop);

private:
    MainWindowLink m_main; ///< first: the others borrow it
    WindowQuestions m_questions;
    WindowProgress m_progress;
    WindowMovieProgress m_movie;
    MainWindowMoves m_windows;
    WindowDesktop m_desktop;
    WindowLogoPanels m_logoPanels;
};

} // namespace vornic
