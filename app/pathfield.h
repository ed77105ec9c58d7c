#pragma once

#include <QLineEdit>
#include <QObject>
#include <QString>

class QDropEvent;
class QInputMethodEvent;

/// A path in the notation of the operating system, made from one that has "/" between its parts:
/// what a field holds for a file that a person has chosen.
QString toOsPath(const QString& path);

/// The text that the field of the log file gets for a chosen file. Several machines may run the
/// test and each gets a log of its own, so a name without "[host]" (in any case) gets "_[host].txt"
/// in place of its ending.
QString pathOfLogFile(const QString& file);

/// A pasted or dropped text as one line of a config file can hold it: control characters (C0 and
/// DEL) are gone from its ends, and blanks inside.
QString withoutControlCharacters(const QString& text);

/// Keeps control characters out of a path field: they cannot be seen in it, and a line end splits
/// the task line that the path is written to. Applies to what a person enters, not to setText().
///
/// A file that is dropped on the field replaces its text, in the way that the browse button beside
/// it does; of several files the first.
class PathField final : public QObject
{
public:
    /// Belongs to @p edit. @p pathOf makes the field's text out of a dropped file.
    PathField(QLineEdit& edit, QString (*pathOf)(const QString& file));

    /// Takes what is dropped, and what an input method commits.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void noteStart();
    void clean();
    bool dropFile(QDropEvent& drop);
    bool commit(const QInputMethodEvent& event);

    QLineEdit& m_edit;
    QString (*m_pathOf)(const QString& file);
    int m_start = 0; ///< where the next text that is entered begins
    bool m_cleaning = false;
};
