#include "engine/stagefiles.h"

#include "check/nameexpander.h"
#include "check/text.h"
#include "engine/lossrules.h"
#include "model/methods.h"

#include <QFile>

#include <algorithm>
#include <fmt/format.h>

namespace {

/// True if both hold the same bytes, and can be read.
bool areEqual(const QString& path, const QString& otherPath)
{
    QFile file(path);
    QFile other(otherPath);
    return file.open(QIODevice::ReadOnly) && other.open(QIODevice::ReadOnly) &&
           file.size() == other.size() && file.readAll() == other.readAll();
}

/// Finds the files one by one.
class StageWalk
{
public:
    StageWalk(const SeriesFacts& facts, Losses& losses)
        : m_facts(facts)
        , m_losses(losses)
        , m_names(facts, noMachine())
        , m_isUsed(facts.files.size(), false)
    {}

    std::vector<StageFile> walk()
    {
        std::vector<StageFile> stages;
        int number = firstNumber();
        int file = take(number);
        while (file >= 0) {
            stages.push_back(stageOf(file));
            if (!stages.back().hasMarker)
                break;
            file = next(m_facts.lines[stages.back().endLine], ++number);
        }
        addUnused();
        return stages;
    }

private:
    int firstNumber() const
    {
        int number = seriesFileCount;
        for (const FileFact& file : m_facts.files) {
            if (file.isRead())
                number = std::min(number, file.number);
        }
        return number;
    }

    /// Index of the file with a number, which counts as used from then on; -1 if there is none.
    int take(int number)
    {
        int found = -1;
        for (size_t i = 0; i < m_facts.files.size(); ++i) {
            const FileFact& file = m_facts.files[i];
            if (!file.isRead() || file.number != number)
                continue;
            m_isUsed[i] = true;
            if (found < 0)
                found = int(i);
            else if (!areEqual(m_facts.files[size_t(found)].path, file.path))
                m_losses.add(fioTwoFiles, m_facts, int(i), 1, 1,
                             fmt::format("the file lies in the folder and in _wait with other "
                                         "content each; {} is the other one",
                                         quoted(m_facts.files[size_t(found)].shown)));
        }
        if (found >= 0 && !m_facts.files[size_t(found)].readable)
            m_losses.add(fioNotRead, m_facts, found, 1, 1, "the file can't be read");
        return found;
    }

    StageFile stageOf(int index)
    {
        const FileFact& file = m_facts.files[size_t(index)];
        StageFile stage;
        stage.file = index;
        stage.firstLine = size_t(file.firstEntry);
        stage.endLine = size_t(file.firstEntry);
        while (stage.endLine < size_t(file.endEntry) && !isMarker(m_facts.lines[stage.endLine]))
            addRejected(m_facts.lines[stage.endLine++]);
        stage.hasMarker = stage.endLine < size_t(file.endEntry);
        for (size_t i = stage.endLine + 1; i < size_t(file.endEntry); ++i) {
            const LineFact& line = m_facts.lines[i];
            if (line.kind != LineFact::Kind::Comment)
                m_losses.add(fioNotRun, m_facts, line.file, line.line, 1,
                             "the line follows a marker, which ends its file: it does not run");
        }
        return stage;
    }

    void addRejected(const LineFact& line)
    {
        if (line.kind != LineFact::Kind::Rejected)
            return;
        const bool isWinApi = isWrittenOnly(line.field(MethodField).toStdString());
        m_losses.addAtField(fioNotRead, m_facts, line,
                            line.problem.field > 0 ? line.problem.field : 1,
                            isWinApi ? "fio has no engine for the functions of Windows"
                                     : "the line can't be read as a task");
    }

    int next(const LineFact& marker, int number)
    {
        const QString expected = seriesFile(QString(), m_facts.name.baseName, number);
        const QString path = m_names.resolve(marker, marker.text);
        const int file = take(number);
        if (path.mid(path.lastIndexOf('/') + 1) != expected)
            m_losses.addAtField(fioMarker, m_facts, marker, 1,
                                fmt::format("the marker leads to {} and not to {}, the next file "
                                            "of the series",
                                            quoted(path), quoted(expected)));
        else if (file < 0)
            m_losses.addAtField(
                fioMarker, m_facts, marker, 1,
                fmt::format("the marker leads to {}, which does not exist", quoted(expected)));
        return file;
    }

    void addUnused()
    {
        for (size_t i = 0; i < m_facts.files.size(); ++i) {
            const FileFact& file = m_facts.files[i];
            if (file.isRead() && !m_isUsed[i])
                m_losses.add(fioNotRun, m_facts, int(i), 1, 1,
                             "no marker leads to the file: it does not run");
        }
    }

    const SeriesFacts& m_facts;
    Losses& m_losses;
    NameExpander m_names;
    std::vector<bool> m_isUsed;
};

} // namespace

std::vector<StageFile> stageFiles(const SeriesFacts& facts, Losses& losses)
{
    return StageWalk(facts, losses).walk();
}
