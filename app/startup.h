#pragma once

#include <QLocale>

/// Settles what Qt reads when the application object is made. Call it before that, and only once.
///
/// Under X11 and Wayland Qt loads an OpenGL driver, of which the program draws nothing: it would be
/// more than half of the memory. QT_XCB_GL_INTEGRATION and QT_WAYLAND_CLIENT_BUFFER_INTEGRATION
/// keep whatever value the user has given them.
void prepareApplication();

/// Shows the program in the first language that the user asks for and that the folder has, as
/// "twdiskprobe_LANGUAGE.qm". Texts stay English if that comes first, or if the folder has none of
/// the languages. Call it before the first window is made.
void installTranslation(const QLocale& locale, const QString& folder);
