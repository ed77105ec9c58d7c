#include "check/fileuses.h"
#include "tests/check/tasklines.h"
#include "tests/support/files.h"

#include <QDir>
#include <QHash>
#include <QScopedPointer>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray copying(const QByteArray& source, const QByteArray& dest, int iterations = 1)
{
    return "Stream;NOflush;NOprealloc; 50; 1024; -1; 1024;" + QByteArray::number(iterations) +
           ";0;  " + source + ";  " + dest + ";  ;  ;  true;\n";
}

/// A series in a folder of its own, and a disk that holds what the test names.
class Fixture
{
public:
    Fixture()
        : m_root(m_folder.path() + '/')
    {
        if (!QDir(m_root).mkdir("_wait"))
            qFatal("can't make a folder for the test");
        m_environment.look = [this](const QString& path) {
            ++m_looks;
            return m_disk.value(path);
        };
        setFolder(m_root);
    }

    QByteArray root() const { return m_root.toLatin1(); }
    int looks() const { return m_looks; }
    const SeriesFacts& facts() const { return m_facts; }

    void put(const QString& name, const QByteArray& content) { test::put(m_root + name, content); }

    void setFolder(const QString& path)
    {
        PathStatus status;
        status.kind = PathStatus::Kind::Folder;
        status.canonical = path.size() > 1 && path.endsWith('/') ? path.chopped(1) : path;
        m_disk.insert(status.canonical, status);
    }

    void setFile(const QString& path, qint64 size, const QString& canonical = {})
    {
        PathStatus status;
        status.kind = PathStatus::Kind::File;
        status.size = size;
        status.canonical = canonical.isEmpty() ? path : canonical;
        m_disk.insert(path, status);
    }

    void setLink(const QString& folder, const QString& target)
    {
        PathStatus status;
        status.kind = PathStatus::Kind::Folder;
        status.canonical = target;
        m_disk.insert(folder, status);
    }

    void setHardLink(const QString& path, quint64 node)
    {
        setFile(path, 1);
        m_disk[path].hasOtherNames = true;
        m_disk[path].node = node;
    }

    const FileUses& uses(const QByteArray& lines, const QStringList& hosts = {})
    {
        put("a.dpc", lines);
        m_facts = readSeries({m_root, "a"}, QString());
        m_looks = 0;
        const MachineValues here{_kvString<500>("here"), QStringLiteral("today"),
                                 _kvString8_allSize<500>("/tmp")};
        m_uses.reset(new FileUses(m_facts, hosts, m_environment, here));
        return *m_uses;
    }

    /// True if source and destination of the first line are one file.
    bool areSame(const QByteArray& source, const QByteArray& dest, const QStringList& hosts = {})
    {
        const FileUses& table = uses(copying(source, dest), hosts);
        return table.fileOf(table.use(0, SourcePath, 0), 0) ==
               table.fileOf(table.use(0, DestPath, 0), 0);
    }

private:
    QTemporaryDir m_folder;
    QString m_root;
    QHash<QString, PathStatus> m_disk;
    Environment m_environment;
    SeriesFacts m_facts;
    QScopedPointer<FileUses> m_uses;
    int m_looks = 0;
};

} // namespace

class TestFileUses : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture.reset(new Fixture); }

    void everyPathHasOneUseForEachIteration()
    {
        const FileUses& uses =
            m_fixture->uses("# info\n" + copying("/d/s", "/d/[iter]", 3) + copying("MEMORY", "x"));
        QCOMPARE(uses.useCount(0, SourcePath), 1);
        QCOMPARE(uses.useCount(0, DestPath), 3);
        QCOMPARE(uses.useCount(0, LogPath), 0);
        QCOMPARE(uses.useCount(1, SourcePath), 0);
        QCOMPARE(uses.nameOf(uses.use(0, DestPath, 2)).text, QByteArray("/d/2"));
        // The same in all iterations.
        QCOMPARE(uses.use(0, SourcePath, 2).iteration, 0);
        QCOMPARE(uses.nameOf(uses.use(1, DestPath, 0)).text, QByteArray("[cfgPath]/x"));
        QCOMPARE(uses.pathOn(uses.use(1, DestPath, 0), 0), m_fixture->root() + "x");
        QCOMPARE(uses.uses().size(), size_t(5));
    }

    void sameNameOfTwoTasksIsOneName()
    {
        const FileUses& uses =
            m_fixture->uses(copying("/d/s", "/d/[cfgTaskID]") + copying("/d/s", "/d/[cfgTaskID]"));
        QCOMPARE(uses.names().size(), size_t(3));
        QCOMPARE(uses.nameOf(uses.use(1, SourcePath, 0)).firstUse[SourcePath], 0);
        QCOMPARE(uses.nameOf(uses.use(1, SourcePath, 0)).firstUse[DestPath], -1);
    }

    void spellingsOfOneFile_data()
    {
        QTest::addColumn<QByteArray>("one");
        QTest::addColumn<QByteArray>("other");
        QTest::addColumn<bool>("same");
        const auto row = [](const char* one, const char* other, bool same) {
            QTest::addRow("%s %s", one, other) << QByteArray(one) << QByteArray(other) << same;
        };
        row("/d/x", "/d/x", true);
        row("/d/x", "/d/X", false);
        row("/d/x", "/d/./e/..//x", true);
        row("/d/x", "/d/x/", true);
        row("[cfgPath]/x", "[cfgPath]x", true);
        row("[cfgPath]/x", "x", true);
        row("[cfgPath]/x", "[cfgPath]/_wait/../x", true);
        row("[cfgPath]/../x", "[cfgPath]/x", false);
        row("[cfgPath]/e/x", "[cfgPath]\\e\\x", true);
        row("[cfgPath]/a", "[cfgPath]/[cfgName]", true);
        row("[temp]/x", "/tmp/x", true);
        row("[temp]/x", "[cfgPath]/x", false);
        row("/d/[host]", "/d/here", true);
        row("C:\\e\\x", "c:/E/X", true);
        row("C:\\e\\x", "D:\\e\\x", false);
        row("C:\\e\\f\\..\\x", "C:\\e\\x", true);
        row("C:\\e\\x.", "C:\\e.\\x ", true);
        row("\\\\nas\\e\\x", "//NAS/e/x", true);
        row("\\\\?\\C:\\e", "C:\\e", true);
        row("\\\\?\\UNC\\nas\\e\\x", "\\\\nas\\e\\x", true);
        row("\\e\\x", "/e/x", true);
        row("\\e\\x", "/e/../E/X", true);
        row("\\e\\x", "C:\\e\\x", false);
        row("\\e\\x", "[cfgPath]/x", false);
        row("//nas/e/x", "/nas/e/x", false);
        row("///nas/e/x", "/nas/e/x", true);
        row("\\\\.\\C:\\e\\x", "C:\\e\\x", true);
        row("C:\\e\\x ", "C:\\e\\x", true);
        row("C:\\e \\x", "C:\\e\\x", true);
        row("C:\\e\\ x", "C:\\e\\x", false);
    }

    void spellingsOfOneFile()
    {
        QFETCH(QByteArray, one);
        QFETCH(QByteArray, other);
        QTEST(m_fixture->areSame(one, other), "same");
    }

    void linksAreFollowedAsFarAsTheyExist()
    {
        m_fixture->setLink("/l", "/d");
        m_fixture->setFolder("/d");
        QVERIFY(m_fixture->areSame("/l/x", "/d/x"));
        QVERIFY(m_fixture->areSame("/l/new/x", "/d/new/x"));
        QVERIFY(!m_fixture->areSame("/l/x", "/d/y"));
        m_fixture->setFile("/d/x", 1);
        m_fixture->setFile("/l/x", 1, "/d/x");
        m_fixture->setFile("/d/y", 1, "/d/x");
        QVERIFY(m_fixture->areSame("/l/x", "/d/x"));
        QVERIFY(m_fixture->areSame("/l/x", "/d/y"));
    }

    /// On Linux a name may hold it.
    void backslashIsASeparatorUnlessAFileIsCalledSo()
    {
        QVERIFY(m_fixture->areSame("/d/a\\b", "/d/a/b"));
        QVERIFY(m_fixture->areSame("[temp]\\a\\b", "[temp]/a/b", {"pc1", "pc2"}));
        m_fixture->setFolder("/d");
        m_fixture->setFile("/d/a\\b", 1);
        QVERIFY(!m_fixture->areSame("/d/a\\b", "/d/a/b"));
        QVERIFY(m_fixture->areSame("/d/a\\c", "/d/a/c"));
    }

    void hardLinksAreOneFile()
    {
        m_fixture->setFolder("/d");
        m_fixture->setHardLink("/d/x", 7);
        m_fixture->setHardLink("/d/y", 7);
        m_fixture->setHardLink("/d/z", 8);
        QVERIFY(m_fixture->areSame("/d/x", "/d/y"));
        QVERIFY(!m_fixture->areSame("/d/x", "/d/z"));
    }

    void tempOfAnotherMachineIsNotLookedAt()
    {
        m_fixture->setFolder("/tmp");
        m_fixture->setFile("/tmp/x", 5);
        const auto exists = [&](const QStringList& hosts) {
            const FileUses& uses = m_fixture->uses(copying("[temp]/x", "/d/x"), hosts);
            const UsedFile& file = uses.file(uses.use(0, SourcePath, 0), 0);
            return file.isLocal && file.exists();
        };
        QVERIFY(exists({}));
        QVERIFY(exists({"here"}));
        QVERIFY(exists({"here.domain"}));
        QVERIFY(!exists({"there"}));
        QVERIFY(!exists({"here", "there"}));
    }

    void whatTheDiskHoldsIsKnown()
    {
        m_fixture->setFolder("/d");
        m_fixture->setFile("/d/s", 1234);
        m_fixture->setFolder("/d/f");
        const FileUses& uses = m_fixture->uses(copying("/d/s", "/d/f") + copying("C:\\x", "/d/n"));
        const UsedFile& source = uses.file(uses.use(0, SourcePath, 0), 0);
        QVERIFY(source.isFile());
        QCOMPARE(source.path.size, qint64(1234));
        QCOMPARE(uses.file(uses.use(0, DestPath, 0), 0).path.kind, PathStatus::Kind::Folder);
        QVERIFY(!uses.file(uses.use(1, SourcePath, 0), 0).path.isSeen);
        QVERIFY(!uses.file(uses.use(1, DestPath, 0), 0).exists());
        QVERIFY(uses.file(uses.use(1, DestPath, 0), 0).path.isSeen);
        const auto& folders = uses.folders();
        QCOMPARE(folders[size_t(source.path.folder)].kind, PathStatus::Kind::Folder);
        QCOMPARE(folders[size_t(source.path.folder)].key, QByteArray("/d"));
    }

    void foldersThatDoNotExistHaveThoseAbove()
    {
        m_fixture->setFolder("/d");
        const FileUses& uses = m_fixture->uses(copying("/d/e/f/x", "MEMORY"));
        const auto& folders = uses.folders();
        const UsedFile& file = uses.file(uses.use(0, SourcePath, 0), 0);
        const KeyedFolder& folder = folders[size_t(file.path.folder)];
        QCOMPARE(folder.key, QByteArray("/d/e/f"));
        QCOMPARE(folder.kind, PathStatus::Kind::Nothing);
        QCOMPARE(folders[size_t(folder.parent)].key, QByteArray("/d/e"));
        QCOMPARE(folders[size_t(folders[size_t(folder.parent)].parent)].kind,
                 PathStatus::Kind::Folder);
    }

    void pathsThatNameAFolder()
    {
        for (const char* path : {"/d/", "[cfgPath]", "[temp]", "[temp]/..", "C:\\e\\",
                                 "[cfgPath]\\", "//nas/e", "\\\\nas\\e"}) {
            const FileUses& uses = m_fixture->uses(copying(path, "/d/x"));
            QVERIFY2(uses.file(uses.use(0, SourcePath, 0), 0).path.namesFolder, path);
        }
        const FileUses& uses = m_fixture->uses(copying("/d/..x", "/d/x"));
        QVERIFY(!uses.file(uses.use(0, SourcePath, 0), 0).path.namesFolder);
    }

    void machinesMeetInOneName()
    {
        const FileUses& uses =
            m_fixture->uses(copying("MEMORY", "/d/[host][iter]", 12), {"pc1", "pc11"});
        const int file = uses.fileOf(uses.use(0, DestPath, 11), 0);
        QCOMPARE(uses.fileOf(uses.use(0, DestPath, 1), 1), file);
        QCOMPARE(uses.files()[size_t(file)].ways.size(), size_t(2));
        QCOMPARE(uses.files().size(), size_t(2 * 12 - 2));
        QCOMPARE(uses.pathOn(uses.use(0, DestPath, 1), 1), QByteArray("/d/pc111"));
    }

    /// The table of the names on all machines has an end; two machines are always compared.
    void machinesAreLimitedByTheirNames()
    {
        QStringList hosts;
        for (int i = 0; i < 3001; ++i)
            hosts += QStringLiteral("m%1").arg(i);
        const QByteArray lines = copying("MEMORY", "/d/[host]_[iter]", 100);
        const FileUses& uses = m_fixture->uses(lines, hosts);
        QCOMPARE(uses.machines().size(), size_t(1500));
        QCOMPARE(uses.givenMachines(), 3001);
        QCOMPARE(m_fixture->uses(copying("MEMORY", "/d/x"), hosts).machines().size(), size_t(3001));
    }

    void machinesOfOneNameHaveOneFile()
    {
        const FileUses& uses =
            m_fixture->uses(copying("MEMORY", "/d/[host]"), {"pc1.north", "pc2", "pc1.south"});
        const FileUse& use = uses.use(0, DestPath, 0);
        QCOMPARE(uses.fileOf(use, 0), uses.fileOf(use, 2));
        QVERIFY(uses.fileOf(use, 0) != uses.fileOf(use, 1));
        QCOMPARE(uses.file(use, 0).ways.size(), size_t(2));
        QCOMPARE(uses.machines()[2].host, QString("pc1.south"));
        QCOMPARE(uses.machines()[2].inPath, QByteArray("pc1"));
    }

    void namesTellTheirConfigFile()
    {
        const QByteArray line = copying("MEMORY", "[cfgPath]/x_[cfgID]");
        m_fixture->put("a1.dpc", line);
        const FileUses& uses = m_fixture->uses(line + "[cfgPath]/a1.dpc\n");
        QCOMPARE(uses.uses().size(), size_t(2));
        QVERIFY(uses.nameOf(uses.uses()[0]).text != uses.nameOf(uses.uses()[1]).text);
    }

    void filesThatAllMachinesSee()
    {
        const auto isShared = [&](const QByteArray& path) {
            const FileUses& uses = m_fixture->uses(copying("MEMORY", path), {"pc1", "pc2"});
            return uses.file(uses.use(0, DestPath, 0), 0).isShared;
        };
        for (const QByteArray path :
             {"[cfgPath]/x", "x", "[cfgPath]/../x", "//nas/e/x", "\\\\nas\\e\\x"})
            QVERIFY2(isShared(path), path);
        QVERIFY(isShared(m_fixture->root() + "e/x"));
        for (const QByteArray path : {"/d/x", "[temp]/x", "C:\\x"})
            QVERIFY2(!isShared(path), path);
    }

    void theRootIsAFolder()
    {
        m_fixture->setFolder("/");
        for (const QByteArray path : {"/", "//", "\\"}) {
            const FileUses& uses = m_fixture->uses(copying("MEMORY", path));
            QVERIFY2(uses.file(uses.use(0, DestPath, 0), 0).isNoFile(), path);
        }
        const FileUses& uses = m_fixture->uses(copying("MEMORY", "/"));
        const UsedFile& root = uses.file(uses.use(0, DestPath, 0), 0);
        QCOMPARE(root.path.kind, PathStatus::Kind::Folder);
        QCOMPARE(root.path.key, QByteArray("/"));
    }

    void pathsOfOtherSystems()
    {
        for (const QByteArray path : {"//n", "\\\\nas", "\\x", "\\", "c:", "Z:/x"})
            QVERIFY2(isForeignPath(path), path);
        for (const QByteArray path : {"", "/", "//", "///x", "/x", "c", "1:", "cc:"})
            QVERIFY2(!isForeignPath(path), path);
        QVERIFY(isSharePath("//nas") && isSharePath("\\\\nas"));
        QVERIFY(!isSharePath("\\x") && !isSharePath("c:"));
    }

    void filesOfTheSeriesItself()
    {
        const auto isOwn = [&](const QByteArray& path) {
            const FileUses& uses = m_fixture->uses(copying("MEMORY", path));
            return uses.file(uses.use(0, DestPath, 0), 0).isOwn;
        };
        for (const char* path : {"[cfgPath]/a.dpc", "[cfgPath]/a7.dpc", "[cfgPath]/_wait/a1.dpc",
                                 "[cfgPath]/[cfgName]_init.dpc"})
            QVERIFY2(isOwn(path), path);
        for (const char* path : {"[cfgPath]/b.dpc", "[cfgPath]/a.dat", "[cfgPath]/ax.dpc",
                                 "[cfgPath]/e/a.dpc", "/a.dpc"})
            QVERIFY2(!isOwn(path), path);
    }

    void linesOfTheInitFileMakeFiles()
    {
        m_fixture->put("a_init.dpc", making("[cfgPath]/s", 2048) + "# " + making("/d/t", 1));
        const FileUses& uses = m_fixture->uses(copying("s", "/d/t"));
        QCOMPARE(uses.init().size(), size_t(2));
        const UsedFile& source = uses.file(uses.use(0, SourcePath, 0), 0);
        QCOMPARE(source.init, 0);
        QCOMPARE(uses.init()[0].name, QByteArray("[cfgPath]/s"));
        QCOMPARE(uses.init()[0].entry.size, qint64(2048 * 1024));
        QVERIFY(uses.init()[0].entry.isActive);
        const UsedFile& dest = uses.file(uses.use(0, DestPath, 0), 0);
        QCOMPARE(dest.init, 1);
        QVERIFY(!uses.init()[1].entry.isActive);
        QCOMPARE(&uses.files()[size_t(uses.init()[1].file)], &dest);
    }

    void namesAreThoseThatTheEditorExpands()
    {
        QByteArray lines;
        for (const char* path : {"/d/[iter]", "[cfgPath]/[cfgTaskID]-[cfgline]_[iter][iter].dat",
                                 "[cfgPath]//[cfgName]/./[cfgID]", "/d/[iter]/../[cfgTaskID]",
                                 "/d/\x01[iter]\x02[cfgTaskID]", "[temp]/[host]_[date]_[iter]",
                                 "/d/[[iter]]", "/d/[cfgLogName]/[cfgNameID]"})
            lines += copying(path, "MEMORY", 12);
        const FileUses& uses = m_fixture->uses(lines + lines);
        NameExpander expander(m_fixture->facts(), noMachine());
        for (const FileUse& use : uses.uses()) {
            const LineFact& line = m_fixture->facts().lines[size_t(use.line)];
            QCOMPARE(uses.nameOf(use).text,
                     expander.initName(line, line.path(use.role), use.iteration).toLatin1());
        }
        QCOMPARE(uses.uses().size(), size_t(2 * (6 * 12 + 2)));
    }

    void aRelativePathIsResolvedWithItsVariables()
    {
        m_fixture->uses(copying("MEMORY", "x/[cfgPath]/[cfgName]"));
        NameExpander expander(m_fixture->facts(), noMachine());
        const LineFact& line = m_fixture->facts().lines.front();
        const QByteArray root = m_fixture->root();
        QCOMPARE(expander.resolve(line, line.path(DestPath)).toLatin1(), root + 'x' + root + 'a');
    }

    void aNameWithoutAConfigFileLeavesTheOthersAsTheyAre()
    {
        m_fixture->put("a1.dpc", copying("MEMORY", "[cfgName]_[cfgID]"));
        m_fixture->uses(copying("MEMORY", "[cfgName]_[cfgID]") + "[cfgPath]/a1.dpc\n");
        NameExpander expander(m_fixture->facts(), noMachine());
        const LineFact& first = m_fixture->facts().lines.front();
        const LineFact& last = m_fixture->facts().lines.back();
        const QString root = m_fixture->root();
        QCOMPARE(expander.resolve(first, first.path(DestPath)), root + "a_0");
        QCOMPARE(expander.namelessInitName(last, last.path(DestPath), 0), QString("_1"));
        QCOMPARE(expander.resolve(last, last.path(DestPath)), root + "a_1");
    }

    void variablesOfMachinesStayInNames()
    {
        const FileUses& uses = m_fixture->uses(copying("[temp]/[host]", "/d/[date]"));
        const UsedName& source = uses.nameOf(uses.use(0, SourcePath, 0));
        QCOMPARE(source.text, QByteArray("[temp]/[host]"));
        QVERIFY(source.byHost && source.byTemp && !source.byDate);
        const UsedName& dest = uses.nameOf(uses.use(0, DestPath, 0));
        QVERIFY(dest.byDate && !dest.byHost && !dest.byTemp);
        QCOMPARE(uses.pathOn(uses.use(0, SourcePath, 0), 0), QByteArray("/tmp/here"));
    }

    void namesThatAreCutAreExpandedForEachMachine()
    {
        const QByteArray folder = "/d/" + QByteArray(480, 'f') + '/';
        const FileUses& uses = m_fixture->uses(
            copying("MEMORY", folder + "[host]"),
            {"a-very-long-name-of-a-machine-1", "a-very-long-name-of-a-machine-2", "pc"});
        const FileUse& use = uses.use(0, DestPath, 0);
        QCOMPARE(uses.pathOn(use, 0).size(), 500);
        QCOMPARE(uses.fileOf(use, 0), uses.fileOf(use, 1));
        QVERIFY(uses.fileOf(use, 0) != uses.fileOf(use, 2));
        QCOMPARE(uses.pathOn(use, 2), folder + "pc");
    }

    void twoOfTheMachinesAreLookedAtHoweverManyNamesThereAre()
    {
        const QStringList hosts{"a", "b", "c"};
        const QByteArray name = "/d/[host]_[iter]";
        QCOMPARE(m_fixture->uses(copying("MEMORY", name, 50000), hosts).machines().size(),
                 size_t(3));
        QCOMPARE(m_fixture->uses(copying("MEMORY", name, 75001), hosts).machines().size(),
                 size_t(2));
    }

    void aNameMayBeCutOnlyForALongNameOfAMachine()
    {
        const QByteArray folder = "/d/" + QByteArray(437, 'f') + '/';
        const QString host(59, 'h');
        const FileUses& uses =
            m_fixture->uses(copying("MEMORY", folder + "[host]"), {host + '1', host + '2'});
        const FileUse& use = uses.use(0, DestPath, 0);
        QCOMPARE(uses.pathOn(use, 0).size(), 500);
        QCOMPARE(uses.fileOf(use, 0), uses.fileOf(use, 1));
    }

    void diskIsAskedOnceForEachFolderAndFile()
    {
        QByteArray lines;
        for (int i = 0; i < 100; ++i)
            lines += copying("/none/[cfgTaskID]", "/d/[cfgTaskID]_[iter]", 2);
        m_fixture->setFolder("/d");
        m_fixture->uses(lines);
        // 200 destinations in a folder that exists, and the folders.
        QVERIFY2(m_fixture->looks() < 210, QByteArray::number(m_fixture->looks()));
    }

    /// Each folder above has a path of its own, so that they would fill the memory.
    void foldersAboveAreBounded()
    {
        const Environment nothing{[](const QString&) { return PathStatus(); },
                                  [](const QString&) { return std::optional<DiskSpace>(); }};
        FileKeys keys(nothing);
        const auto path = [](int i) {
            return '/' + QByteArray::number(i) + QByteArray("/a").repeated(200) + "/x";
        };
        QCOMPARE(keys.folders()[size_t(keys.find(path(0), true).folder)].parent >= 0, true);
        QVERIFY(keys.folders().size() > 200);
        for (int i = 1; i < 1000; ++i)
            keys.find(path(i), true);
        long long characters = 0;
        for (const KeyedFolder& folder : keys.folders())
            characters += folder.key.size();
        QVERIFY(characters <= maxFolderCharacters + 1000LL * 500);
        const KeyedPath last = keys.find(path(1000), true);
        QCOMPARE(keys.folders()[size_t(last.folder)].parent, -1);
        QCOMPARE(last.key, path(1000));
    }

    void tableGrowsWithTheNames()
    {
        const auto size = [&](int tasks) {
            QByteArray lines;
            for (int i = 0; i < tasks; ++i)
                lines += copying("[cfgPath]/s", "[cfgPath]/[host]_[iter]_[cfgTaskID]", 5);
            const FileUses& uses = m_fixture->uses(lines, {"a", "b", "c"});
            size_t ways = 0;
            for (const UsedFile& file : uses.files())
                ways += file.ways.size();
            return uses.uses().size() + uses.names().size() + ways;
        };
        QVERIFY(size(80) <= 8 * size(10));
    }

private:
    QScopedPointer<Fixture> m_fixture;
};

QTEST_APPLESS_MAIN(TestFileUses)
#include "tst_fileuses.moc"
