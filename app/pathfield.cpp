#include "app/pathfield.h"

#include "shared/kvpath.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QUrl>

#include <algorithm>

namespace {

bool isControlCharacter(QChar character)
{
    constexpr ushort del = 0x7F;
    return character.unicode() < ' ' || character.unicode() == del;
}

QString firstLocalFile(const QMimeData& data)
{
    const QList<QUrl> urls = data.urls();
    const auto local =
        std::find_if(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); });
    return local == urls.end() ? QString() : local->toLocalFile();
}

} // namespace

QString toOsPath(const QString& path)
{
    return kvConvertPDToOS(path);
}

QString pathOfLogFile(const QString& file)
{
    if (file.contains(QLatin1String("[host]"), Qt::CaseInsensitive))
        return toOsPath(file);
    return toOsPath(kvGetDirNameAutoPD(file) + kvGetFileNameBase(file, '/') + "_[host].txt");
}

QString withoutControlCharacters(const QString& text)
{
    const auto first = std::find_if_not(text.begin(), text.end(), isControlCharacter);
    const auto last =
        std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isControlCharacter);
    QString cleaned(first, int(last.base() - first));
    std::replace_if(cleaned.begin(), cleaned.end(), isControlCharacter, QLatin1Char(' '));
    return cleaned;
}

PathField::PathField(QLineEdit& edit, QString (*pathOf)(const QString& file))
    : QObject(&edit)
    , m_edit(edit)
    , m_pathOf(pathOf)
{
    edit.installEventFilter(this);
    // Both come after textEdited(), so that there they tell what was so before the edit.
    connect(&edit, &QLineEdit::selectionChanged, this, &PathField::noteStart);
    connect(&edit, &QLineEdit::cursorPositionChanged, this, &PathField::noteStart);
    connect(&edit, &QLineEdit::textEdited, this, &PathField::clean);
}

void PathField::noteStart()
{
    m_start = m_edit.hasSelectedText() ? m_edit.selectionStart() : m_edit.cursorPosition();
}

// There are many ways to enter a text: keys, a drop, the clipboard by key, menu or middle button.
// They have in common that the cursor stands behind it afterwards.
void PathField::clean()
{
    const int end = m_edit.cursorPosition();
    const QString text = m_edit.text();
    const QString entered = text.mid(m_start, std::max(0, end - m_start));
    const QString cleaned = withoutControlCharacters(entered);
    // Only undoing makes something to redo, and what it brings back was there before.
    if (m_cleaning || m_edit.isRedoAvailable() || cleaned == entered)
        return;
    const QScopedValueRollback<bool> guard(m_cleaning, true);
    const int start = m_start;
    // Undone first, so that undoing never leads back to the text with the control characters.
    m_edit.undo();
    m_edit.selectAll();
    m_edit.insert(text.left(start) + cleaned + text.mid(end));
    m_edit.setCursorPosition(start + cleaned.size());
    noteStart();
}

bool PathField::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop: // the class of which all drags are
        return dropFile(dynamic_cast<QDropEvent&>(*event));
    case QEvent::InputMethod:
        return commit(dynamic_cast<QInputMethodEvent&>(*event));
    default:
        return QObject::eventFilter(watched, event);
    }
}

bool PathField::dropFile(QDropEvent& drop)
{
    const QString file = firstLocalFile(*drop.mimeData());
    if (file.isEmpty())
        return false;
    // Never a move, after which the file manager would remove the file.
    drop.setDropAction(Qt::CopyAction);
    drop.accept();
    if (drop.type() == QEvent::Drop) {
        m_edit.selectAll();
        m_edit.insert(withoutControlCharacters(m_pathOf(file)));
    }
    return true;
}

// An input method moves the cursor before the field tells of the new text.
bool PathField::commit(const QInputMethodEvent& event)
{
    const QString cleaned = withoutControlCharacters(event.commitString());
    if (cleaned == event.commitString())
        return false;
    QInputMethodEvent input(event.preeditString(), event.attributes());
    input.setCommitString(cleaned, event.replacementStart(), event.replacementLength());
    QCoreApplication::sendEvent(&m_edit, &input);
    return true;
}
