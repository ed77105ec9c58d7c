#include "app/startup.h"
#include "tests/app/editor.h"
#include "tests/support/files.h"
#include "tests/ui/formstate.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTranslator>
#include <QXmlStreamReader>

// The steps of a translation: lupdate collects the texts of the form, and translated texts show in
// the window.

namespace {

/// The texts that lupdate writes into a new .ts file of a source, by context.
QHash<QString, QSet<QString>> textsFoundByLupdate(const char* source = TWDP_FORM)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("form.ts"));
    QProcess lupdate;
    lupdate.start(TWDP_LUPDATE, {"-silent", source, "-ts", file.fileName()});
    if (!lupdate.waitForFinished() || lupdate.exitCode() != 0 || !file.open(QIODevice::ReadOnly))
        qFatal("lupdate failed: %s", lupdate.readAllStandardError().constData());

    QHash<QString, QSet<QString>> found;
    QString context;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == "name")
            context = xml.readElementText();
        else if (xml.name() == "source")
            found[context] += xml.readElementText();
    }
    if (xml.hasError())
        qFatal("lupdate wrote no whole .ts file: %s", qPrintable(xml.errorString()));
    return found;
}

/// Knows only what lupdate found: a text that it misses stays as it is.
class FoundTextsTranslator final : public MarkingTranslator
{
public:
    FoundTextsTranslator()
        : m_texts(textsFoundByLupdate().value("twDiskProbeClass"))
    {
        if (!QCoreApplication::installTranslator(this))
            qFatal("the translator can't be installed");
    }

    QString translate(const char* context, const char* text, const char* comment,
                      int n) const override
    {
        return m_texts.contains(text) ? MarkingTranslator::translate(context, text, comment, n)
                                      : QString();
    }

private:
    QSet<QString> m_texts;
};

using Texts = QMap<QString, QString>;

/// Every text that is seen and was not typed, by where it stands.
Texts textsOf(const QMainWindow& window)
{
    Texts texts = {{"the title", window.windowTitle()}};
    for (const QWidget* widget : namedWidgets(window)) {
        const QString name = widget->objectName();
        texts[name + " tip"] = widget->toolTip();
        if (const auto* combo = qobject_cast<const QComboBox*>(widget))
            for (int i = 0; i < combo->count(); ++i)
                texts[name + QString(" item %1").arg(i)] = combo->itemText(i);
        else if (const auto* table = qobject_cast<const QTableWidget*>(widget))
            for (int i = 0; i < table->columnCount(); ++i)
                texts[name + QString(" column %1").arg(i)] = table->horizontalHeaderItem(i)->text();
        else if (!qobject_cast<const QLineEdit*>(widget) && !qobject_cast<const QSpinBox*>(widget))
            texts[name] = textOf(*widget);
    }
    return texts;
}

/// The texts of the form as it is built, before the window puts any of its own into it.
Texts textsOfTheForm()
{
    QMainWindow window;
    Ui::twDiskProbeClass().setupUi(&window);
    return textsOf(window);
}

QString marked(const QString& text)
{
    return text.isEmpty() || text == "has no text" ? text : '~' + text;
}

// The form is a private member of the window. An explicit instantiation may name it.
Ui::twDiskProbeClass& formOf(twDiskProbe& window);

template <Ui::twDiskProbeClass twDiskProbe::*form>
struct FormOf
{
    friend Ui::twDiskProbeClass& formOf(twDiskProbe& window) { return window.*form; }
};

template struct FormOf<&twDiskProbe::ui>;

/// Descriptions consist of the form's texts, and change with them.
QStringList withoutDescriptions(const QStringList& state)
{
    QStringList others;
    for (const QString& line : state)
        if (!line.contains(" accessibleDescription "))
            others += line;
    return others;
}

/// Knows the names that are not seen as well.
class NamesTranslator final : public MarkingTranslator
{
public:
    NamesTranslator() { QCoreApplication::installTranslator(this); }
    QString translate(const char* context, const char* text, const char* comment,
                      int n) const override
    {
        return QByteArray(context) == "AccessibleNames"
                   ? QString("~") + text
                   : MarkingTranslator::translate(context, text, comment, n);
    }
};

/// A file of a language that knows one text.
void putTranslation(const QTemporaryDir& folder, const char* language, const char* text)
{
    const QString file = folder.filePath(QStringLiteral("twdiskprobe_%1.ts").arg(language));
    test::put(file, QByteArray("<!DOCTYPE TS><TS version=\"2.1\" language=\"") + language +
                        "\"><context><name>twDiskProbeClass</name><message>"
                        "<source>Create new task line</source><translation>" +
                        text + "</translation></message></context></TS>");
    if (QProcess::execute(TWDP_LRELEASE, {"-silent", file}) != 0)
        qFatal("lrelease failed");
}

/// A window in which nothing stands at its default.
void fill(Editor& editor)
{
    editor.typeInfo("what for");
    editor.choose("comboMethod", 3);
    editor.choose("comboTestType", 1);
    editor.choose("comboSystemBuffer", 2);
    editor.choose("comboCacheMode", 4);
    editor.type("editDest", "/t/a");
    editor.enter("spinFileSize", 2048);
    editor.enter("spinChunkSize", 64);
    editor.check("checkFlush");
    editor.check("checkWriteDone", false);
    editor.click("buttonCreateNew");
    editor.addMarker();
    editor.selectRow(0);
}

} // namespace

class TestTranslation : public QObject
{
    Q_OBJECT

private slots:
    // Read once by each process, whatever it asks for first.
    void initTestCase() { qputenv("LANGUAGE", "en_US:de"); }

    void lupdateFindsEveryTextOfTheForm()
    {
        const QHash<QString, QSet<QString>> found = textsFoundByLupdate();
        QCOMPARE(found.keys(), QStringList{"twDiskProbeClass"});
        QSet<QString> expected;
        for (const QString& text : textsOfTheForm())
            if (marked(text) != text)
                expected += text;
        QCOMPARE(expected.size(), 78);
        for (const QString& key : formKeys())
            expected += key;
        QCOMPARE(found["twDiskProbeClass"], expected);
    }

    void lupdateFindsNamesThatAreNotSeen()
    {
        const QHash<QString, QSet<QString>> found =
            textsFoundByLupdate(TWDP_APP "/accessibility.cpp");
        QCOMPARE(found.keys(), QStringList{"AccessibleNames"});
        const Editor editor;
        QSet<QString> names;
        for (const char* widget : {"tableWidget", "groupBox_2", "buttonBrowseSource",
                                   "buttonBrowseDest", "buttonBrowseLog", "buttonBrowseExcel"})
            names += editor.find<QWidget>(widget)->accessibleName();
        QCOMPARE(found["AccessibleNames"], names);
    }

    void retranslatingChangesEveryTextOfTheFormAndNothingElse()
    {
        const Texts form = textsOfTheForm();
        Editor editor;
        fill(editor);
        const Texts before = textsOf(editor.window);
        const QStringList state = stateOf(editor.window);
        const FoundTextsTranslator translator;
        formOf(editor.window).retranslateUi(&editor.window);
        const Texts after = textsOf(editor.window);
        QCOMPARE(after.keys(), before.keys());
        for (const QString& place : after.keys()) {
            // Texts that the window had put into the form give way to the form's own; only choices
            // beyond the form's stay as they are.
            const QString expected = form.contains(place) ? marked(form[place]) : before[place];
            QVERIFY2(after[place] == expected, qPrintable(place + ": " + after[place]));
        }
        QCOMPARE(stateOf(editor.window), state);
    }

    void whatTheFormResetsIsWhatTheWindowHadPutThere()
    {
        Editor editor;
        fill(editor);
        const Texts form = textsOfTheForm();
        const Texts window = textsOf(editor.window);
        QStringList changed;
        for (const QString& place : form.keys())
            if (form[place] != window[place])
                changed += place;
        QCOMPARE(changed, (QStringList{"comboSystemBuffer item 0", "labelChunkSizeMB",
                                       "labelFileSizeMB", "textInfo"}));
    }

    void aLanguageIsAFile_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("text");
        QTest::newRow("the file's language") << "de"
                                             << "Neue Zeile";
        QTest::newRow("in a country") << "de_AT"
                                      << "Neue Zeile";
        QTest::newRow("English") << "en_US"
                                 << "Create new task line";
        QTest::newRow("without a file") << "fr"
                                        << "Create new task line";
    }

    void aLanguageIsAFile()
    {
        QFETCH(QString, locale);
        QFETCH(QString, text);
        const QTemporaryDir folder;
        putTranslation(folder, "de", "Neue Zeile");
        installTranslation(QLocale(locale), folder.path());
        const QScopedPointer<QTranslator> translator(qApp->findChild<QTranslator*>());
        Editor editor;
        QCOMPARE(editor.find<QPushButton>("buttonCreateNew")->text(), text);
    }

    void languageThatAUserLikesLessThanEnglishIsNotTaken()
    {
        const QStringList languages = QLocale::system().uiLanguages();
        QVERIFY(languages.first().startsWith("en") && languages.contains("de"));
        const QTemporaryDir folder;
        putTranslation(folder, "de", "Neue Zeile");
        installTranslation(QLocale::system(), folder.path());
        QVERIFY(qApp->findChild<QTranslator*>() == nullptr);
        Editor editor;
        QCOMPARE(editor.find<QPushButton>("buttonCreateNew")->text(), "Create new task line");
    }

    void accessibleTextsFollowTheLanguage()
    {
        Editor editor;
        const NamesTranslator translator;
        formOf(editor.window).retranslateUi(&editor.window);
        const auto* group = editor.find<QGroupBox>("groupBox_3");
        QVERIFY(group->title().startsWith('~'));
        QTRY_COMPARE(group->accessibleName(), group->title());
        QTRY_COMPARE(editor.table()->accessibleName(), "~Tasks");
        QTRY_COMPARE(editor.find<QWidget>("comboMethod")->accessibleDescription(),
                     editor.find<QLabel>("label_218")->text());
    }

    void windowOpensInTheLanguageThatIsInstalled()
    {
        const Texts form = textsOfTheForm();
        const twDiskProbe plain;
        const Texts before = textsOf(plain);
        QStringList state = withoutDescriptions(stateOf(plain));
        const FoundTextsTranslator translator;
        const twDiskProbe translated;
        const Texts after = textsOf(translated);
        for (const QString& place : after.keys()) {
            const bool isOfTheForm = form.value(place) == before[place];
            const QString expected = isOfTheForm ? marked(before[place]) : before[place];
            QVERIFY2(after[place] == expected, qPrintable(place + ": " + after[place]));
        }
        // Groups in the group are called by their titles.
        state.replaceInStrings(QRegularExpression("(accessibleName) (Advanced: )"), "\\1 ~\\2");
        QCOMPARE(withoutDescriptions(stateOf(translated)), state);
    }
};

QTEST_MAIN(TestTranslation)
#include "tst_translation.moc"
