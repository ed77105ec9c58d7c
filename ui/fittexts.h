#pragma once

class QMainWindow;

/// Gives the texts of a window the space that they need at the font in use.
///
/// Call it once, after the central widget has its layout, a row of columns. When the window is
/// shown for the first time it grows until no text is cut, wider if its columns would be too
/// high for the screen; if its size is enough it keeps it. From then on its least height follows
/// what the columns need at its width: after resizing, and when font or texts change. It has no
/// least width.
///
/// The window never opens larger than the available part of its screen, and becomes smaller when it
/// comes to a smaller screen. Where it shows less than the columns need, they keep their size and
/// move under scroll bars (CentralScroller). Until it is shown its size stays untouched.
void fitTexts(QMainWindow& window);
