// What the files of this folder share: the window that boxes belong to, and libraries loaded on first use.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <string>

namespace tonex {

/// The main window's side of the desktop. All null in programs that have no main window: boxes then have no
/// owner, and messages are dispatched as they come.
struct DesktopHooks {
    HINSTANCE instance = nullptr;
    HWND main_window = nullptr;
    /// Shows what the record changed; called before anything modal and after pending events ran.
    void (*show_differences)() = nullptr;
    /// Makes sure that the main window has the keyboard again after a dialog that asked a question of its
    /// own.
    void (*take_keyboard_back)() = nullptr;
    /// Gives accelerators and dialog keys their turn. True when the message was used up.
    bool (*translate_message)(MSG& message) = nullptr;
};

/// The process's hooks, filled by the main window when it is created.
DesktopHooks& Hooks();

/// Calls Hooks().show_differences when it is set.
void ShowDifferencesNow();

/// Takes the current folder out of the library search, so that no library beside a document is ever loaded.
/// Called first of all by WinMain.
void SecureLibrarySearch();

/// Keeps the system from asking for a disk in an empty drive, and the like: what fails is told by the
/// program.
void TurnSystemErrorBoxesOff();

/// Makes the calling thread an apartment of one thread for as long as it lives, as what opens documents and
/// shows file dialogs wants it.
struct Apartment {
    Apartment();
    ~Apartment();
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

    bool entered = false;
};

/// Makes the main thread an apartment until the process ends; once, whoever asks first. The window's start
/// does not wait for it: it is a twentieth of it.
void EnterApartment();

/// A library of the system folder by full path, loaded on first use; null when the system has none.
HMODULE SystemLibrary(const wchar_t* file_name);

/// A function of a library by its name and its type, null when the library or the function is missing.
template <typename Function> Function LibraryFunction(HMODULE library, const char* name) {
    if (!library) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(library, name)));
}

/// Makes the program's folder the current one for as long as it lives. The system looks for programs and
/// libraries in the current folder too; a document's folder must not be searched.
struct InProgramFolder {
    InProgramFolder();
    ~InProgramFolder();
    InProgramFolder(const InProgramFolder&) = delete;
    InProgramFolder& operator=(const InProgramFolder&) = delete;

    std::wstring previous;
};

/// Whether the system is Wine.
bool UnderWine();

/// Tells the system's help reader that its file is needed no more; called when the main window is gone. Does
/// nothing where no help was opened.
void CloseHelpFile();

/// The wave outputs are counted again at the next question. Called when some may have come or gone: when the
/// system says so, when the user comes back to the window, when a menu opens.
void ForgetWaveOutputs();

} // namespace tonex
