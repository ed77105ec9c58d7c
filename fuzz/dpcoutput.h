#pragma once

#include "check/rules/catalogue.h"
#include "fuzz/check.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QStringList>

#include <algorithm>
#include <sstream>

// The output of dpc, judged without its code except for the catalogue of rules.

namespace dpc {

/// Every file below a folder and what it holds; a folder holds its name.
inline QMap<QString, QByteArray> contentsOf(const QString& folder)
{
    QMap<QString, QByteArray> contents;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        const bool isFile = it.fileInfo().isFile() && file.open(QIODevice::ReadOnly);
        contents[it.filePath()] = isFile ? file.readAll() : it.fileName().toUtf8();
    }
    return contents;
}

/// The files that are new or hold something else.
inline QStringList changedFiles(const QMap<QString, QByteArray>& before,
                                const QMap<QString, QByteArray>& after)
{
    QStringList changed;
    for (auto it = after.begin(); it != after.end(); ++it) {
        const bool isSame = before.contains(it.key()) && before[it.key()] == it.value();
        if (!isSame && QFileInfo(it.key()).isFile())
            changed += it.key();
    }
    return changed;
}

/// The files that a round trip says it makes or changes, sorted.
inline QStringList changesTold(const QByteArray& out)
{
    QStringList files;
    for (const QByteArray& line : out.split('\n')) {
        const int created = line.lastIndexOf(": is created, with ");
        const int end = line.endsWith(": changes") ? line.lastIndexOf(": changes") : created;
        if (end > 0 && !line.startsWith(' '))
            files += QString::fromUtf8(line.left(end));
    }
    files.sort();
    return files;
}

inline QList<QByteArray> linesOf(const QString& path)
{
    QFile file(path);
    const bool isFile = QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly);
    QList<QByteArray> lines = (isFile ? file.readAll() : QByteArray()).split('\n');
    if (lines.size() > 1 && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

inline QJsonObject parsed(const QByteArray& json)
{
    QJsonParseError error = {};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    fuzz::same("JSON can be read", error.errorString(), QString("no error occurred"));
    return document.object();
}

/// Nothing steers the terminal.
inline void checkPrintable(const QByteArray& text)
{
    const bool isPrintable = std::all_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return c == '\n' || (byte >= 32 && byte != 127);
    });
    fuzz::same("output can be printed", isPrintable, true);
}

inline void checkFinding(const QJsonObject& finding)
{
    const Rule* const rule = ruleNamed(finding["rule"].toString().toStdString());
    fuzz::same("a finding has a rule of the catalogue", rule != nullptr, true);
    const QStringList severities{"error", "warning", "note"};
    const int severity = severities.indexOf(finding["severity"].toString());
    fuzz::same("no finding is worse than its rule", severity >= int(rule->severity), true);
    const QString file = finding["file"].toString();
    fuzz::same("a finding is of a file that is there", QFileInfo::exists(file), true);
    const QList<QByteArray> lines = linesOf(file);
    const int line = finding["line"].toInt();
    const int column = finding["column"].toInt();
    if (line < 1 || line > lines.size() || column < 1 || column > lines[line - 1].size() + 1)
        qFatal("a finding has a place: %s:%d:%d %s", qPrintable(file), line, column, rule->name);
}

inline void checkCounts(const QJsonObject& all)
{
    QMap<QString, int> counts;
    for (const auto& finding : all["findings"].toArray())
        ++counts[finding.toObject()["severity"].toString()];
    for (const char* severity : {"error", "warning", "note"})
        fuzz::same("findings are counted", all[QString(severity) + 's'].toInt(), counts[severity]);
}

/// One line for each finding, in the form of compilers.
inline void checkText(const QByteArray& text, const QJsonArray& findings)
{
    checkPrintable(text);
    const QStringList lines = QString::fromUtf8(text).split('\n');
    fuzz::same("each finding has its line", lines.size(), findings.size() + 1);
    for (int i = 0; i < findings.size(); ++i) {
        const QJsonObject finding = findings[i].toObject();
        const QString end = QString::number(finding["line"].toInt()) + ':' +
                            QString::number(finding["column"].toInt()) + ": " +
                            finding["severity"].toString() + ": " + finding["text"].toString() +
                            " [" + finding["rule"].toString() + ']';
        const QString file = finding["file"].toString();
        const bool isPlain =
            std::all_of(file.begin(), file.end(), [](QChar c) { return c >= ' ' && c <= '~'; });
        fuzz::same("text and JSON say the same", lines[i].right(end.size() + 1), ':' + end);
        if (isPlain)
            fuzz::same("text and JSON name the same file", lines[i], file + ':' + end);
    }
}

} // namespace dpc
