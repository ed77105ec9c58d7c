#include "dpc/commandline.h"
#include "tests/app/editor.h"
#include "tests/support/files.h"

#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <sstream>
#include <vector>

// The series in examples/ are what the window saves, but for their markers: those name the next
// file by [cfgPath], so that the folder can be copied to the disk that is tested.

namespace {

const QStringList examples = {"chunksizes", "disk", "fileserver", "stages"};

QString source(const QString& file)
{
    return QStringLiteral(TWDP_SOURCE_DIR "/examples/") + file;
}

/// Items of the lists in the form.
constexpr int posix = 0;
enum TestType
{
    Copy,
    Write,
    Read
};

/// Adds tasks that differ in their chunk size. Names are set last, for a test type brings its own.
void addTasks(Editor& editor, TestType type, const QString& destination,
              const std::vector<int>& chunksKib)
{
    editor.choose("comboTestType", type);
    if (type != Write)
        editor.type("editSource", "[cfgPath]/[cfgName]_source.dat");
    if (type != Read)
        editor.type("editDest", "[cfgPath]/[cfgName]/" + destination);
    for (const int chunkKib : chunksKib) {
        editor.enter("spinChunkSize", chunkKib);
        editor.click("buttonCreateNew");
    }
}

void composeChunkSizes(Editor& editor)
{
    editor.typeInfo("Which chunk size suits the disk or file server? The same file, in chunks of 4 "
                    "KiB to 4 MiB.");
    addTasks(editor, Write, "written_[cfgTaskID].dat", {4, 16, 64, 256, 1024, 4096});
}

void composeDisk(Editor& editor)
{
    editor.typeInfo("How fast is the disk? Write, read and copy, in chunks of 64 KiB, 1 MiB and 4 "
                    "MiB.");
    const std::vector<int> chunksKib = {64, 1024, 4096};
    addTasks(editor, Write, "written_[cfgTaskID].dat", chunksKib);
    addTasks(editor, Read, {}, chunksKib);
    addTasks(editor, Copy, "copied_[cfgTaskID].dat", chunksKib);
}

void composeFileServer(Editor& editor)
{
    editor.typeInfo(
        "How much is left for each of several machines? Each writes files of its own, then "
        "all read one file.");
    editor.type("editExcel", "[cfgPath]/[cfgName]/[host]-[cfgTaskID].csv");
    editor.enter("spinIterations", 3);
    addTasks(editor, Write, "[host]_[iter].dat", {1024});
    addTasks(editor, Read, {}, {1024});
}

void composeStages(Editor& editor)
{
    editor.typeInfo("First all machines write; when the last one is done, all read one file.");
    editor.type("editExcel", "[cfgPath]/[cfgName]/[host]-[cfgID].csv");
    addTasks(editor, Write, "[host].dat", {1024});
    editor.addMarker();
    addTasks(editor, Read, {}, {1024});
}

void compose(Editor& editor, const QString& example)
{
    editor.choose("comboMethod", posix);
    editor.enter("spinChunkWait", 0);
    if (example == "chunksizes")
        composeChunkSizes(editor);
    else if (example == "disk")
        composeDisk(editor);
    else if (example == "fileserver")
        composeFileServer(editor);
    else
        composeStages(editor);
}

/// The config files whose names begin with that of a series, relative to its folder.
QStringList filesOf(const QString& folder, const QString& example)
{
    const auto isOther = [&](const QString& name) {
        return !QFileInfo(name).fileName().startsWith(example) || !name.endsWith(".dpc");
    };
    QStringList files = test::entriesOf(folder);
    files.erase(std::remove_if(files.begin(), files.end(), isOther), files.end());
    return files;
}

} // namespace

class TestExamples : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_temporary.reset(new QTemporaryDir);
        m_folder = QFileInfo(m_temporary->path()).canonicalFilePath();
    }

    void exampleIsWhatTheWindowSaves_data() { addExamples(); }
    void exampleIsWhatTheWindowSaves()
    {
        QFETCH(QString, example);
        Editor editor;
        compose(editor, example);
        saveLoadSave(editor, example);
        if (qEnvironmentVariableIsSet("TWDP_UPDATE_GOLDEN"))
            for (const QString& name : filesOf(m_folder, example))
                test::put(source(name), movable(name));
        compareWithExample(example);
    }

    void exampleOpensInTheEditor_data() { addExamples(); }
    void exampleOpensInTheEditor()
    {
        QFETCH(QString, example);
        copyExample(example);
        // A line that does not load brings a message, for which no answer is planned.
        Editor editor;
        editor.load(m_folder + "/_wait/" + example + ".dpc");
        QVERIFY(editor.table()->rowCount() > 1);
        QVERIFY(!editor.infoText().isEmpty());
        editor.save(m_folder + '/' + example + ".dpc");
        compareWithExample(example);
    }

    void checkIsSilent_data() { addExamples(); }
    void checkIsSilent()
    {
        QFETCH(QString, example);
        copyExample(example);
        QCOMPARE(outputOf({"check", file(example + ".dpc")}), QString());
        // Machines that share a disk are not what the first two are for.
        if (example == "fileserver" || example == "stages")
            QCOMPARE(outputOf({"check", "--hosts", "pc01,pc02,pc03", file(example + ".dpc")}),
                     QString());
        QCOMPARE(outputOf({"init", file(example + ".dpc")}),
                 QString::fromLatin1(test::contentOf(source(example + "_init.dpc"))));
    }

    void everyExampleIsOneOfThese()
    {
        QStringList all;
        for (const QString& example : examples)
            all += filesOf(source({}), example);
        all.sort();
        QCOMPARE(filesOf(source({}), {}), all);
        const QString page = QString::fromUtf8(test::contentOf(source("README.md")));
        for (const QString& example : examples)
            QVERIFY2(page.contains('`' + example + ".dpc`"), qPrintable(example));
    }

private:
    static void addExamples()
    {
        QTest::addColumn<QString>("example");
        for (const QString& example : examples)
            QTest::newRow(qPrintable(example)) << example;
    }

    /// Once more after a load, because then each task knows its config file.
    void saveLoadSave(Editor& editor, const QString& example) const
    {
        editor.save(m_folder + '/' + example + ".dpc");
        editor.load(m_folder + "/_wait/" + example + ".dpc");
        editor.save(m_folder + '/' + example + ".dpc");
    }

    void copyExample(const QString& example) const
    {
        QVERIFY(QDir().mkpath(m_folder + "/_wait"));
        for (const QString& name : filesOf(source({}), example))
            test::put(m_folder + '/' + name, test::contentOf(source(name)));
    }

    /// A file in the folder, with markers that name the next file by [cfgPath].
    QByteArray movable(const QString& name) const
    {
        return test::contentOf(m_folder + '/' + name)
            .replace('\n' + m_folder.toLatin1() + "/_wait/", "\n[cfgPath]/");
    }

    void compareWithExample(const QString& example) const
    {
        QCOMPARE(filesOf(m_folder, example), filesOf(source({}), example));
        for (const QString& name : filesOf(m_folder, example))
            QCOMPARE(movable(name), test::contentOf(source(name)));
    }

    std::string file(const QString& name) const { return (m_folder + '/' + name).toStdString(); }

    /// The free space of the test's own disk is not a subject of the examples.
    static QString outputOf(std::vector<std::string> arguments)
    {
        if (arguments[0] == "check")
            arguments.insert(arguments.end(), {"--no-rule", "disk-space"});
        std::ostringstream output;
        runDpc(arguments, {output, output, false});
        return QString::fromStdString(output.str());
    }

    QScopedPointer<QTemporaryDir> m_temporary;
    QString m_folder;
};

QTEST_MAIN(TestExamples)
#include "tst_examples.moc"
