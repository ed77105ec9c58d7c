#include "check/textfile.h"

#include "check/environment.h"

#include <QFile>
#include <QRegularExpression>
#include <QTextCodec>

namespace {

constexpr qint64 maxTextFile = 16LL * 1024 * 1024;

bool isText(const QString& text)
{
    for (const QChar c : text) {
        if (c.unicode() < 32 && c != '\n' && c != '\r' && c != '\t')
            return false;
    }
    return true;
}

} // namespace

TextFile readTextFile(const QString& path)
{
    const PathStatus status = realEnvironment().look(path);
    if (!status.whyUnreadable.empty())
        return {{}, status.whyUnreadable};
    QFile file(path);
    const bool isOpen = file.open(QIODevice::ReadOnly);
    const QByteArray bytes = isOpen ? file.read(maxTextFile + 1) : QByteArray();
    // A part of a file must not pass for the whole.
    if (file.error() != QFileDevice::NoError)
        return {{}, file.errorString().toStdString()};
    if (bytes.size() > maxTextFile)
        return {{}, "it is larger than 16 MiB"};
    QTextCodec::ConverterState state;
    const QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0 || !isText(text))
        return {{}, "it is not a text file in UTF-8"};
    QStringList lines = text.split('\n');
    for (QString& line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
    }
    return {lines, {}};
}

QString withoutComment(const QString& line)
{
    static const QRegularExpression comment("(^|[ \t])#.*$");
    return line.left(line.indexOf(comment) < 0 ? line.size() : line.indexOf(comment)).trimmed();
}
