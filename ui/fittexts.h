#pragma once

class QMainWindow;

/// Gives the texts of a window the room that they need at the font in use.
///
/// Call it once, after the central widget has its layout, a row of columns. When the window is
/// shown for the first time it grows until no text is cut; where its size is enough it keeps it.
/// From then on its least size follows what the layout needs: after resizing, and when font or
/// texts change.
///
/// The window never grows beyond the available part of its screen, where texts then stay cut, and
/// is never made smaller. Until it is shown its size stays untouched.
void fitTexts(QMainWindow& window);
