#pragma once

namespace vornic {

class DesktopServices;
class LogoPanels;
class RecordingProgress;
class RecordingQuestions;

/// All that the program needs of who shows it: the window, the command line, or a test.
///
/// Made by main, whose objects it names; they outlive all that is given it.
struct FrontEnd {
    RecordingQuestions &questions;
    RecordingProgress &progress;
    DesktopServices &desktop;
    LogoPanels &logoPanels;
};

} // namespace vornic
