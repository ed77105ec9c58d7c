#include "check/fileuses.h"

#include "check/rulesfile.h"
#include "check/text.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <algorithm>

namespace {

/// Names that hold "[host]" are looked at for as many machines as this allows, at least two.
constexpr long long maxNamesByHost = 150000;

QByteArray latin1(const _kvString<maxPath>& text)
{
    return toLatin1(kvToQString(text));
}

/// An "_init" file that was chosen itself belongs to the series of its name.
QString seriesName(const SeriesFacts& facts)
{
    const int suffixLength = int(std::size(initFileSuffix)) - 1;
    const QString& name = facts.name.baseName;
    return facts.isInit ? name.chopped(suffixLength) : name;
}

bool isDigit(char c)
{
    return kvIsDigit(static_cast<unsigned char>(c));
}

} // namespace

FileUses::FileUses(const SeriesFacts& facts, const QStringList& hosts,
                   const Environment& environment, const MachineValues& here)
    : m_facts(facts)
    , m_here(here)
    , m_templates(facts)
    , m_keys(environment)
    , m_runFolder(facts.runFolder.toLatin1())
    , m_temp(here.tempFolder->text, here.tempFolder->length)
    , m_foreign(facts)
{
    takeMachines(hosts);
    // On other machines nobody knows what the folder is called, or whose files lie in it.
    if (!m_isThisMachine)
        m_temp = tempVariable;
    const int folder = m_keys.find(m_runFolder + '.', true).folder;
    m_runFolderKey = m_keys.folders()[size_t(folder)].key;
    if (!m_runFolderKey.endsWith('/'))
        m_runFolderKey += '/';
    m_lineUses.resize(facts.lines.size());
    for (size_t line = 0; line < facts.lines.size(); ++line) {
        LineUses& uses = m_lineUses[line];
        for (const TaskPath role : {SourcePath, DestPath, LogPath, CsvPath}) {
            uses[role] = int(m_uses.size());
            if (isTask(facts.lines[line]))
                addUses(int(line), role);
        }
        uses[taskPathCount] = int(m_uses.size());
    }
    // Of many long names each copy counts.
    m_templates.clear();
    m_nameOfText.clear();
    limitMachines();
    placeNames();
    addInit();
    m_fileOfKey.clear();
}

void FileUses::takeMachines(const QStringList& hosts)
{
    m_givenMachines = hosts.size();
    for (const QString& host : hosts)
        m_machines.push_back({host, latin1(computerNameFrom(host.toLatin1().constData()))});
    const QByteArray own = latin1(*m_here.computerName);
    if (hosts.isEmpty())
        m_machines.push_back({QString::fromLatin1(own), own});
    m_isThisMachine = m_machines.size() == 1 && m_machines.front().inPath == own;
    m_longestValue = NameExpander(m_facts, m_here).longestValue();
    for (const MachineName& machine : m_machines)
        m_longestValue = std::max(m_longestValue, machine.inPath.size());
}

void FileUses::addUses(int line, TaskPath role)
{
    const LineFact& fact = m_facts.lines[size_t(line)];
    const QByteArray& path = fact.path(role);
    if (path.isEmpty())
        return;
    const int iterations = std::min(iterationsOf(fact, path), m_facts.iterationLimit);
    for (int iteration = 0; iteration < iterations; ++iteration) {
        const int name = nameFor(fact, path, iteration);
        int& firstUse = m_names[size_t(name)].firstUse[role];
        if (firstUse < 0)
            firstUse = int(m_uses.size());
        m_uses.push_back({line, role, iteration, name});
    }
}

int FileUses::nameFor(const LineFact& line, const QByteArray& path, int iteration)
{
    UsedName name;
    const QByteArray full = isRelative(path) ? QByteArray(configPathVariable) + '/' + path : path;
    name.text = m_templates.expand(line, full, iteration);
    // A cut falls elsewhere on each machine, and ".." can't be followed past a variable.
    name.mustExpandAnew =
        holds(path, "..") || full.size() + maxVariables(full) * m_longestValue >= maxPath;
    const QByteArray key = name.mustExpandAnew
                               ? name.text + '\n' + QByteArray::number(qulonglong(m_uses.size()))
                               : name.text;
    const auto known = m_nameOfText.constFind(key);
    if (known != m_nameOfText.cend())
        return *known;
    const QByteArray& telling = name.mustExpandAnew ? path : name.text;
    name.byHost = holds(telling, hostVariable);
    name.byDate = holds(telling, dateVariable);
    name.byTemp = holds(telling, tempVariable);
    m_names.push_back(name);
    return *m_nameOfText.insert(key, int(m_names.size()) - 1);
}

void FileUses::limitMachines()
{
    const long long names = std::count_if(m_names.begin(), m_names.end(),
                                          [](const UsedName& name) { return name.byHost; });
    const long long most = std::max(maxNamesByHost / std::max(names, 1LL), 2LL);
    if (static_cast<long long>(m_machines.size()) > most)
        m_machines.resize(size_t(most));
}

const FileUse& FileUses::firstUseOf(const UsedName& name) const
{
    int first = INT32_MAX;
    for (const int use : name.firstUse)
        first = use < 0 ? first : std::min(first, use);
    return m_uses[size_t(first)];
}

QByteArray FileUses::pathOn(const FileUse& use, int machine) const
{
    const UsedName& name = nameOf(use);
    const MachineName& on = m_machines[size_t(std::max(machine, 0))];
    if (name.mustExpandAnew) {
        MachineValues values = m_here;
        values.computerName = _kvString<maxPath>(on.inPath.constData());
        values.date = dateVariable;
        values.tempFolder = _kvString8_allSize<maxPath>(m_temp.constData());
        const LineFact& line = m_facts.lines[size_t(use.line)];
        return toLatin1(
            NameExpander(m_facts, values).resolve(line, line.path(use.role), use.iteration));
    }
    QByteArray path = name.text;
    if (name.byHost)
        path.replace(hostVariable, on.inPath);
    replaceConfigPath(path, m_runFolder);
    if (name.byTemp)
        path.replace(tempVariable, m_temp);
    return holds(path, "//") ? resolvedPath(path) : path;
}

void FileUses::placeNames()
{
    for (size_t i = 0; i < m_names.size(); ++i) {
        UsedName& name = m_names[i];
        name.firstPlace = int(m_places.size());
        const FileUse& use = firstUseOf(name);
        const int machines = name.byHost ? int(m_machines.size()) : 1;
        for (int machine = 0; machine < machines; ++machine) {
            const QByteArray path = m_foreign.spelled(name.text, pathOn(use, machine));
            const int place = fileAt(path, !name.byTemp || m_isThisMachine);
            m_places.push_back(place);
            UsedFile& file = m_files[size_t(place)];
            file.isLocal = file.isLocal || name.byTemp;
            file.path.namesFolder = file.path.namesFolder || name.text == tempVariable;
            file.isShared = file.isShared || holds(name.text, configPathVariable);
            file.ways.push_back({int(i), name.byHost ? machine : allMachines});
        }
    }
}

int FileUses::fileAt(const QByteArray& path, bool isHere)
{
    KeyedPath keyed = m_keys.find(path, isHere);
    const auto known = m_fileOfKey.constFind(keyed.key);
    if (known != m_fileOfKey.cend())
        return *known;
    UsedFile file;
    file.isOwn = isOwnFile(keyed.key);
    file.isShared = isSharePath(path) || keyed.key.startsWith(m_runFolderKey);
    file.path = std::move(keyed);
    m_files.push_back(std::move(file));
    return *m_fileOfKey.insert(m_files.back().path.key, int(m_files.size()) - 1);
}

bool FileUses::isOwnFile(const QByteArray& key) const
{
    if (!key.startsWith(m_runFolderKey))
        return false;
    const int start = key.lastIndexOf('/') + 1;
    const QByteArray folder = key.left(start);
    if (folder != m_runFolderKey && folder != m_runFolderKey + waitFolder().toUtf8())
        return false;
    const QByteArray name = key.mid(start);
    if (name == rulesFileName && folder == m_runFolderKey)
        return true;
    const QByteArray base = seriesName(m_facts).toUtf8();
    constexpr int extensionLength = int(std::size(configFileExtension)) - 1;
    if (!name.startsWith(base) || !name.endsWith(configFileExtension))
        return false;
    const QByteArray number = name.mid(base.size(), name.size() - base.size() - extensionLength);
    return number == initFileSuffix || std::all_of(number.begin(), number.end(), isDigit);
}

void FileUses::addInit()
{
    for (auto it = m_facts.init.cbegin(); it != m_facts.init.cend(); ++it)
        m_init.push_back({it.key(), it.value(), 0});
    std::sort(m_init.begin(), m_init.end(),
              [](const InitUse& a, const InitUse& b) { return a.entry.line < b.entry.line; });
    NameExpander expander(m_facts, m_here);
    LineFact line;
    for (size_t i = 0; i < m_init.size(); ++i) {
        InitUse& use = m_init[i];
        line.file = use.entry.file;
        QByteArray path = use.name;
        replaceConfigPath(path, m_runFolder);
        // A save writes names without other variables.
        if (maxVariables(use.name) != (use.name.startsWith(configPathVariable) ? 1 : 0) ||
            holds(path, "..") || isRelative(path))
            path = expander.resolve(line, use.name).toLatin1();
        if (holds(path, "//"))
            path = resolvedPath(path);
        use.file = fileAt(m_foreign.spelled(use.name, path), true);
        UsedFile& file = m_files[size_t(use.file)];
        // Of several spellings the last line leaves the file as it is.
        if (file.init < 0 || use.entry.isActive)
            file.init = int(i);
    }
}

int FileUses::useCount(int line, TaskPath role) const
{
    const LineUses& uses = m_lineUses[size_t(line)];
    return uses[size_t(role) + 1] - uses[role];
}

const FileUse& FileUses::use(int line, TaskPath role, int iteration) const
{
    const int last = useCount(line, role) - 1;
    const int place = m_lineUses[size_t(line)][role] + std::min(iteration, last);
    return m_uses[size_t(place)];
}

int FileUses::fileOf(const FileUse& use, int machine) const
{
    const UsedName& name = nameOf(use);
    const int place = name.firstPlace + (name.byHost ? std::max(machine, 0) : 0);
    return m_places[size_t(place)];
}

bool FileUses::isWrittenBefore(const UsedFile& file, const FileUse& reading) const
{
    return std::any_of(file.ways.begin(), file.ways.end(), [&](const FileWay& way) {
        const int first = m_names[size_t(way.name)].firstUse[DestPath];
        if (first < 0)
            return false;
        const FileUse& write = m_uses[size_t(first)];
        return write.line < reading.line ||
               (write.line == reading.line && write.iteration < reading.iteration);
    });
}
