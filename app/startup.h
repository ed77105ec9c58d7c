#pragma once

/// Settles what Qt reads when the application object is made. Call it before that, and only once.
///
/// Under X11 Qt loads an OpenGL driver, of which the program draws nothing: it would be more than
/// half of the memory. QT_XCB_GL_INTEGRATION keeps whatever value the user has given it.
void prepareApplication();
