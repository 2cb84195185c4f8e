#pragma once

namespace vornic {

class DesktopServices;
class LogoPanels;
class MovieProgress;
class ProgramWindows;
class RecordingProgress;
class RecordingQuestions;
class SoundNotices;

/// All that the program needs of who shows it: the window, the command line, or a test.
///
/// Made by main, whose objects it names; they outlive all that is given it.
struct FrontEnd {
    RecordingQuestions &questions;
    RecordingProgress &progress;
    SoundNotices &sound;
    MovieProgress &movie;
    ProgramWindows &windows;
    DesktopServices &desktop;
    LogoPanels &logoPanels;
};

} // namespace vornic
