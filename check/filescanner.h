#pragma once

#include "check/seriesfacts.h"

#include <vector>

/// Reads the lines of one file of a series into its facts.
class FileScanner
{
public:
    /// Into the given lines. `index` is the place of the file among those of the series; beyond
    /// `entryLimit` entries of the series nothing is read. All must outlive the scanner.
    FileScanner(SeriesFacts& facts, std::vector<LineFact>& lines, FileFact& file, int index,
                int entryLimit);

    /// Reads them; that the file can't be read is a fact as well.
    void scan();

private:
    void scanLine(_kvString<maxLine>& line, qint64 length, int number);
    void scanComment(LineFact& fact, const _kvString<maxLine>& line);
    void scanEntry(LineFact& fact, const _kvString<maxLine>& line);
    void takeTask(LineFact& fact, const _kvString<maxLine>& line);

    SeriesFacts& m_facts;
    std::vector<LineFact>& m_lines;
    FileFact& m_file;
    int m_index;
    int m_entryLimit;
    _kvString8_allSize<maxPath> m_path;
    bool m_takesInfo;
    bool m_hasUtf8Comment = false;
    TestTask m_task;
};

/// Marks the lines of a task that stands in several, because a path was pasted with its line end.
void markSplitTasks(std::vector<LineFact>& lines);
