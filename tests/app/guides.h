#pragma once

#include <QRegularExpression>
#include <QString>
#include <QVector>

// The guides are pages for people, and scripts for tests: what a page tells to do in the window is
// done, what it lists is compared, and what it shows is photographed, in the order of the page.

/// One thing in a guide that can be played.
struct GuidePart
{
    enum class Kind
    {
        Action,  ///< "**name**: `value`" in a numbered line: a control, and what to bring it to
        Picture, ///< "![text](images/guide-name.png)": the picture's name
        Listing, ///< "`file`:" before a fenced block: a file and its content
        Command, ///< a fenced block that begins with "$": a command and what it prints
        Script   ///< a fenced block of shell commands
    };

    Kind kind;
    QString name;
    QString value;
};

/// The parts of a text. Controls are named in bold, as the window shows them; so are the items of
/// their lists. Everything that is typed stands in backquotes.
inline QVector<GuidePart> guideParts(const QString& markdown)
{
    static const QRegularExpression pattern(
        R"(^\d+\. [^\n]*$)" // a step
        R"(|!\[[^]]*\]\((?:docs/)?images/(?<picture>guide-[^)]+)\.png\))"
        R"(|`(?<file>/[^`]+)`:\n\n```text\n(?<content>.*?)```)"
        R"(|```console\n\$ (?<command>[^\n]+)\n(?<output>.*?)```)"
        R"(|```sh\n(?<script>.*?)```)",
        QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression action(
        R"(\*\*(?<name>[^*]+)\*\*(?::? (?:\*\*(?<item>[^*]+)\*\*|`(?<typed>[^`]+)`))?)");
    QVector<GuidePart> parts;
    auto it = pattern.globalMatch(markdown);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        if (!match.captured("picture").isEmpty())
            parts += {GuidePart::Kind::Picture, match.captured("picture"), {}};
        else if (!match.captured("file").isEmpty())
            parts += {GuidePart::Kind::Listing, match.captured("file"), match.captured("content")};
        else if (!match.captured("command").isEmpty())
            parts +=
                {GuidePart::Kind::Command, match.captured("command"), match.captured("output")};
        else if (!match.captured("script").isEmpty())
            parts += {GuidePart::Kind::Script, {}, match.captured("script")};
        else
            for (auto each = action.globalMatch(match.captured()); each.hasNext();) {
                const QRegularExpressionMatch found = each.next();
                parts += {GuidePart::Kind::Action, found.captured("name"),
                          found.captured("item") + found.captured("typed")};
            }
    }
    return parts;
}

/// True for a picture of a report, which shows nothing of the window.
inline bool isOfReport(const GuidePart& picture)
{
    return picture.name.endsWith("-report");
}

/// The dpc commands in a script, without their comments.
inline QStringList dpcCommands(const GuidePart& part)
{
    QStringList commands;
    if (part.kind == GuidePart::Kind::Script)
        for (const QString& line : part.value.split('\n'))
            if (line.startsWith("dpc "))
                commands += line.section(" #", 0, 0).trimmed();
    return commands;
}

/// A section of a page, from its heading to the next one of the same level.
struct GuideSection
{
    QString title;
    QString text;
};

inline QVector<GuideSection> guideSections(const QString& page)
{
    QVector<GuideSection> sections;
    for (const QString& section : page.split("\n## ").mid(1))
        sections += {section.section('\n', 0, 0), section.section('\n', 1)};
    return sections;
}

/// The output of a command, without the figures that differ from run to run, and the width of their
/// columns.
inline QString withoutFigures(QString text)
{
    static const QRegularExpression figure("\\d+(\\.\\d+)?(e\\+\\d+)?");
    static const QRegularExpression blanks(" +");
    return text.replace(figure, "N").replace(blanks, " ").replace(" \n", "\n");
}
