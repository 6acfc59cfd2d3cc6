#pragma once

class QWindow;

/// What the window system of the platform allows, and which window has input. Main thread only.
namespace QXWindowSystem {

/// Whether a second window can be opened. Where it cannot, Qt ends the process when the program tries.
[[nodiscard]] bool hasSeveralWindows();

/// Whether a program can choose the places of its windows.
[[nodiscard]] bool placesWindows();

/// Whether input goes through the parts of a window that its mask leaves out. Where it does not, a window
/// over a window of the host takes all its input.
[[nodiscard]] bool masksInput();

/// Whether windows can overlap. Where they cannot, nothing is below a window, and Qt prints a warning when
/// the program sets a mask or raises a window.
[[nodiscard]] bool overlapsWindows();

/// Whether what is below the transparent parts of a window is visible. Without a compositor, they are black
/// under X11.
[[nodiscard]] bool blendsWindows();

/// Whether a window stays until the user or the program closes it: it is no menu, tool tip or splash screen.
[[nodiscard]] bool isForLong(const QWindow &window);

/// Whether a window is one of those with which a user works, and not a dialog or a tool beside it.
[[nodiscard]] bool isMain(const QWindow &window);

/// The modal window that keeps input from @p window and has input itself, or null.
[[nodiscard]] QWindow *blocker(const QWindow &window);

/// The window with the keyboard, or the one of which it is a part. Null if it is no window of this program.
[[nodiscard]] QWindow *activeWindow();

} // namespace QXWindowSystem
