#include "dpc/commandline.h"
#include "model/pathvariables.h"
#include "shared/kvtext.h"
#include "tests/app/guideplayer.h"
#include "tests/support/examples.h"

#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <sstream>

// The guides are played as they are written. Files and output that a page shows are those that the
// programs make, byte for byte but for the folder in which the test puts them.

class TestGuides : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        QVERIFY(m_folder->isValid());
        m_root = QFileInfo(m_folder->path()).canonicalFilePath();
        QVERIFY(QDir().mkpath(m_root + "/tmp"));
        // Small, because no figure is compared.
        test::copyExamples(m_root + "/examples", "4096");
        QDir::setCurrent(m_root);
        m_shown.clear();
    }

    void cleanup() { QDir::setCurrent("/"); }

    void guideMakesWhatItShows_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("showsAllFiles");
        QCOMPARE(addGuides("docs/user-guide.md", true), 4);
        QCOMPARE(addGuides("README.md", false), 2);
    }

    void guideMakesWhatItShows()
    {
        QFETCH(QString, text);
        QFETCH(bool, showsAllFiles);
        GuidePlayer player(m_root);
        for (const GuidePart& part : guideParts(text)) {
            QVERIFY(makeFolder(part.value));
            // Runs of the guides are played with servers, and without the window, elsewhere.
            if (part.kind != GuidePart::Kind::Script || !showsAllFiles)
                play(player, part);
            if (QTest::currentTestFailed())
                return;
        }
        m_shown.sort();
        if (showsAllFiles)
            QCOMPARE(m_shown, filesBelow("/mnt/"));
    }

    void everyPictureThatAPageShowsExists()
    {
        static const QRegularExpression image(R"(!\[[^]]+\]\(([^)]+)\))");
        QStringList guidePictures;
        for (const QString page : {"README.md", "docs/user-guide.md"}) {
            auto shown = image.globalMatch(contentOf(page));
            QVERIFY2(shown.hasNext(), qPrintable(page));
            while (shown.hasNext()) {
                const QFileInfo file(QFileInfo(source(page)).path() + '/' +
                                     shown.next().captured(1));
                QVERIFY2(file.isFile(), qPrintable(file.filePath()));
                if (file.fileName().startsWith("guide-"))
                    guidePictures += file.fileName();
            }
        }
        // And none is left over from an older page.
        guidePictures.sort();
        QCOMPARE(QDir(source("docs/images")).entryList({"guide-*"}, QDir::Files, QDir::Name),
                 guidePictures);
    }

private:
    static QString source(const QString& file) { return TWDP_SOURCE_DIR "/" + file; }
    static QString contentOf(const QString& file)
    {
        return QString::fromUtf8(test::contentOf(source(file)));
    }

    /// Adds the sections of a page that can be played, and tells how many they are.
    static int addGuides(const char* page, bool showAllFiles)
    {
        int guides = 0;
        for (const GuideSection& section : guideSections(contentOf(page))) {
            if (guideParts(section.text).isEmpty())
                continue;
            QTest::newRow(qPrintable(section.title)) << section.text << showAllFiles;
            ++guides;
        }
        return guides;
    }

    /// The disk or share that a person has already.
    bool makeFolder(const QString& file) const
    {
        return !file.startsWith('/') || QDir().mkpath(QFileInfo(m_root + file).path());
    }

    void play(GuidePlayer& player, const GuidePart& part)
    {
        switch (part.kind) {
        case GuidePart::Kind::Action:
            return player.act(part);
        case GuidePart::Kind::Picture:
            QVERIFY(isOfReport(part) || !player.picture(part.name).isNull());
            return;
        case GuidePart::Kind::Listing:
            m_shown += part.name;
            if (!part.name.endsWith(".dpc")) // which the reader makes
                test::put(m_root + part.name, part.value.toLatin1());
            QCOMPARE(QString::fromLatin1(test::contentOf(m_root + part.name)).remove(m_root),
                     part.value);
            return;
        case GuidePart::Kind::Command:
            compareOutput(part);
            return;
        case GuidePart::Kind::Script:
            for (const QString& command : dpcCommands(part))
                runToItsEnd(command);
            return;
        }
    }

    /// True for commands that have figures of their own, and need fio.
    static bool isOfFio(const QString& command)
    {
        const QString name = command.section(' ', 1, 1);
        return name == "run" || name == "report";
    }

    static bool isLeftOut(const QString& command)
    {
        if (!isOfFio(command) || !QStandardPaths::findExecutable("fio").isEmpty())
            return false;
        if (qEnvironmentVariableIsSet("TWDP_LEAVE_NOTHING_OUT"))
            QTest::qFail("fio is missing", __FILE__, __LINE__);
        qInfo("fio is missing: not run: %s", qPrintable(command));
        return true;
    }

    void runToItsEnd(const QString& command)
    {
        if (isLeftOut(command))
            return;
        const QString output = outputOf(command);
        QVERIFY2(m_status == 0, qPrintable(output));
    }

    void compareOutput(const GuidePart& part)
    {
        if (isLeftOut(part.name))
            return;
        const bool hasFigures = isOfFio(part.name);
        QString output = outputOf(part.name).remove(m_root);
        if (!hasFigures) {
            QCOMPARE(output, part.value);
            return;
        }
        QString here = kvToQString(getComputerName());
        QCOMPARE(withoutFigures(output.replace(here, "pc07")), withoutFigures(part.value));
    }

    /// Runs a dpc command of the page. Paths begin with "/". The free space of the
    /// test's own disk is not a subject of the page.
    QString outputOf(const QString& command)
    {
        const QStringList words = command.split(' ');
        if (words[0] != "dpc")
            return "not a command of this project";
        std::vector<std::string> arguments;
        for (const QString& word : words.mid(1))
            arguments.push_back((word.startsWith('/') ? m_root + word : word).toStdString());
        if (words[1] == "check")
            arguments.insert(arguments.end(), {"--no-rule", "disk-space"});
        std::ostringstream output;
        m_status = runDpc(arguments, {output, output, false});
        return QString::fromStdString(output.str());
    }

    /// Files in a folder of the page, sorted.
    QStringList filesBelow(const QString& folder) const
    {
        QStringList files;
        for (const QString& entry : test::entriesOf(m_root + folder))
            if (QFileInfo(m_root + folder + entry).isFile())
                files += folder + entry;
        return files;
    }

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_root;
    int m_status = 0;    ///< of the last command
    QStringList m_shown; ///< the files of which the page shows the content
};

QTEST_MAIN(TestGuides)
#include "tst_guides.moc"
