#include "check/machines.h"

#include "check/text.h"
#include "check/textfile.h"

#include <QHash>
#include <QRegularExpression>

#include <fmt/format.h>

#include <algorithm>

namespace {

/// As long as a name in the domain name system.
constexpr int maxNameLength = 253;

/// Collects machines, each name once.
class Collector
{
public:
    /// All machines that a name with ranges stands for; false if there is a problem.
    bool add(const Machine& machine)
    {
        if (machine.name.size() > maxNameLength)
            setProblem(fmt::format("{} is longer than {} characters", quoted(machine.name),
                                   maxNameLength));
        else if (machine.name.contains('/') || machine.name.contains('\\'))
            setProblem(fmt::format("{} holds a separator of folders, and is not the name of a "
                                   "machine",
                                   quoted(machine.name)));
        else
            addExpanded(machine, {}, machine.name);
        m_expanded = 0;
        return m_list.problem.empty();
    }

    const std::string& problem() const { return m_list.problem; }

    MachineList take()
    {
        if (m_list.problem.empty() && m_list.machines.empty())
            m_list.problem = "names no machine";
        if (!m_list.problem.empty())
            m_list.machines.clear();
        if (m_list.repeatedCount > 1)
            m_list.repeated += fmt::format(" (and so on for {} more)", m_list.repeatedCount - 1);
        return std::move(m_list);
    }

private:
    void setProblem(std::string problem) { m_list.problem = std::move(problem); }

    /// The names that begin with a text, and go on with one that may have ranges.
    void addExpanded(const Machine& machine, const QString& begin, const QString& rest)
    {
        const int open = rest.indexOf('[');
        const int close = rest.indexOf(']');
        if (open < 0 && close < 0)
            return addName(machine, begin + rest);
        if (open < 0 || close < open)
            return setProblem(notARange(machine.name));
        const QStringList parts = rest.mid(open + 1, close - open - 1).split(',');
        for (const QString& part : parts)
            addRange(machine, begin + rest.left(open), part, rest.mid(close + 1));
    }

    void addRange(const Machine& machine, const QString& begin, const QString& range,
                  const QString& rest)
    {
        static const QRegularExpression form("^([0-9]{1,9})(?:-([0-9]{1,9}))?$");
        const QRegularExpressionMatch match = form.match(range);
        const QString first = match.captured(1);
        const int last = (match.captured(2).isEmpty() ? first : match.captured(2)).toInt();
        if (!match.hasMatch() || last < first.toInt())
            return setProblem(notARange(machine.name));
        if (!machine.address.isEmpty())
            return setProblem(fmt::format("{} is a range, and a range can't have one address",
                                          quoted(machine.name)));
        for (int i = first.toInt(); i <= last && m_list.problem.empty(); ++i)
            addExpanded(machine, begin + QString::number(i).rightJustified(first.size(), '0'),
                        rest);
    }

    void addName(const Machine& machine, const QString& name)
    {
        // Counted with those that are there already: ranges of equal numbers multiply as well.
        if (++m_expanded > maxMachines)
            return setProblem(fmt::format("more than {} machines", maxMachines));
        const auto known = m_placeOf.constFind(name);
        if (known != m_placeOf.cend())
            return addAgain(m_list.machines[size_t(*known)], machine);
        if (m_placeOf.size() == maxMachines)
            return setProblem(fmt::format("more than {} machines", maxMachines));
        QString& alike = m_nameOfFolded[name.toLower()];
        if (!alike.isEmpty())
            noteRepeated(fmt::format("{} and {} differ in capitals only, and may be one machine",
                                     printable(alike), printable(name)));
        alike = name;
        m_placeOf.insert(name, int(m_list.machines.size()));
        m_list.machines.push_back({name, machine.address, machine.temp});
    }

    void addAgain(const Machine& known, const Machine& machine)
    {
        if ((!machine.address.isEmpty() && machine.address != known.address) ||
            (!machine.temp.isEmpty() && machine.temp != known.temp))
            return setProblem(fmt::format("{} is there twice, with another address or folder",
                                          quoted(known.name)));
        noteRepeated(fmt::format("{} is named twice, and counts once", printable(known.name)));
    }

    void noteRepeated(const std::string& text)
    {
        if (m_list.repeatedCount++ == 0)
            m_list.repeated = text;
    }

    static std::string notARange(const QString& name)
    {
        return fmt::format("{} is not a range such as pc[01-20]", quoted(name));
    }

    MachineList m_list;
    QHash<QString, int> m_placeOf;          ///< of each name among the machines
    QHash<QString, QString> m_nameOfFolded; ///< the last name of each in small letters
    int m_expanded = 0;                     ///< names of the range that is being taken
};

/// The parts between the commas that are not in brackets.
QStringList partsOf(const QString& text)
{
    QStringList parts{QString()};
    bool isInBrackets = false;
    for (const QChar c : text) {
        isInBrackets = (isInBrackets || c == '[') && c != ']';
        if (c == ',' && !isInBrackets)
            parts += QString();
        else
            parts.last() += c;
    }
    return parts;
}

int firstBlank(const QString& text)
{
    const auto blank =
        std::find_if(text.begin(), text.end(), [](QChar c) { return c == ' ' || c == '\t'; });
    return int(blank - text.begin());
}

/// Half a sentence about a line, or nothing.
std::string takeLine(Collector& collector, const QString& line)
{
    const QString first = line.left(firstBlank(line));
    QString rest = line.mid(first.size()).trimmed();
    Machine machine{first.section('=', 0, 0), first.section('=', 1), {}};
    if (machine.name.isEmpty() || machine.name.contains('#'))
        return fmt::format("{} is not a name of a machine", quoted(first));
    const bool hasAddress = first.contains('=');
    if (hasAddress && !machine.address.startsWith(QLatin1String("ip:")) &&
        !machine.address.startsWith(QLatin1String("sock:")))
        return fmt::format("{} is not an address such as ip:192.0.2.7,8765 or sock:/run/fio",
                           quoted(machine.address));
    const QString key = QStringLiteral("temp=");
    if (rest.startsWith(key))
        machine.temp = rest.mid(key.size());
    if (!rest.isEmpty() && machine.temp.isEmpty())
        return fmt::format("{} is not temp=FOLDER; a line holds one machine", quoted(rest));
    collector.add(machine);
    return collector.problem();
}

} // namespace

QStringList MachineList::names() const
{
    QStringList all;
    for (const Machine& machine : machines)
        all += machine.name;
    return all;
}

MachineList machinesNamed(const QStringList& texts)
{
    Collector collector;
    for (const QString& text : texts) {
        for (const QString& part : partsOf(text)) {
            const QString name = part.trimmed();
            if (!name.isEmpty() && !collector.add({name, {}, {}}))
                return collector.take();
        }
    }
    return collector.take();
}

MachineList machinesInFile(const QString& path)
{
    Collector collector;
    const TextFile file = readTextFile(path);
    if (!file.problem.empty())
        return {{}, fmt::format("{} can't be read: {}", quoted(path), file.problem)};
    int number = 0;
    for (const QString& whole : file.lines) {
        ++number;
        const QString line = withoutComment(whole);
        const std::string problem = line.isEmpty() ? std::string() : takeLine(collector, line);
        if (!problem.empty())
            return {{}, fmt::format("{}, line {}: {}", quoted(path), number, problem)};
    }
    MachineList list = collector.take();
    if (!list.problem.empty())
        list.problem = fmt::format("{}: {}", quoted(path), list.problem);
    return list;
}

MachineList numberedMachines(int count)
{
    MachineList list;
    if (count < 1 || count > maxMachines) {
        list.problem = fmt::format("{} is not a number from 1 to {}", count, maxMachines);
        return list;
    }
    constexpr int minDigits = 2;
    const int digits = std::max(minDigits, QString::number(count).size());
    for (int i = 1; i <= count; ++i)
        list.machines.push_back(
            {"machine" + QString::number(i).rightJustified(digits, '0'), {}, {}});
    return list;
}
