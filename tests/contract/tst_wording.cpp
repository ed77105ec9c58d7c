#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <vector>

namespace {

/// A way of writing that CONTRIBUTING rules out.
struct Avoided
{
    const char* name;
    const char* pattern;
    const char* hit;  ///< a line that has it
    const char* miss; ///< a line that is close to it and fine
};

const Avoided everyAvoided[] = {
    {"a statement that begins with 'what'",
     "(^|[.:\"|] )\\s*((//[/!]?|#+|\\*|\"\"\"|-|[|]) *)?What\\b(?![^.:]*[?])",
     "/// What"
     " a call printed.",
     "// Prints what a call printed. Somewhat long. What is asked? A question."},
    {"'is' before 'no'", "(?<!\")\\b([Ii]s|[Aa]re|[Ww]as|[Ww]ere) no\\b",
     "there is"
     " no stage 3",
     "'y' is not a word; is now; is none; whether it is nothing"},
    {"a metaphor", "\\b([Cc]ompanion|[Tt]win|[Hh]ouse|[Rr]oom|[Rr]oad)s?\\b",
     "the ro"
     "oms of a ho"
     "use",
     "a warehouse, a roadmap, entwined, accompanied"},
};

/// Compiled once: there are ten thousands of lines.
const std::vector<QRegularExpression>& patterns()
{
    static const std::vector<QRegularExpression> compiled = [] {
        std::vector<QRegularExpression> result;
        for (const Avoided& avoided : everyAvoided)
            result.emplace_back(avoided.pattern);
        return result;
    }();
    return compiled;
}

/// Texts that people wrote, and that may change: not the texts of the form, which are fixed, nor
/// recordings, nor inputs.
bool isOurs(const QString& file)
{
    static const QRegularExpression others(
        "^(build|[.]git|tests/data|fuzz/(corpus|regressions)|docs/images)/|[.](ui|png|svg|ico)$");
    return !others.match(file).hasMatch();
}

} // namespace

/// The rules of style that a program can judge, over every text of the project.
class TestWording : public QObject
{
    Q_OBJECT

private slots:
    void patternsTellGoodLinesFromBad()
    {
        for (size_t i = 0; i < std::size(everyAvoided); ++i) {
            const Avoided& avoided = everyAvoided[i];
            QVERIFY2(patterns()[i].match(avoided.hit).hasMatch(), avoided.name);
            QVERIFY2(!patterns()[i].match(avoided.miss).hasMatch(), avoided.name);
        }
    }

    void textsAvoidWhatTheRulesOfStyleRuleOut()
    {
        const QString root = QStringLiteral(TWDP_SOURCE_DIR "/");
        QStringList found;
        int files = 0;
        QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString name = it.next().mid(root.size());
            QFile file(root + name);
            if (!isOurs(name) || !file.open(QIODevice::ReadOnly))
                continue;
            ++files;
            const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
            for (int i = 0; i < lines.size(); ++i) {
                for (size_t which = 0; which < std::size(everyAvoided); ++which) {
                    if (patterns()[which].match(lines[i]).hasMatch())
                        found +=
                            QString("%1:%2: %3").arg(name).arg(i + 1).arg(everyAvoided[which].name);
                }
            }
        }
        QVERIFY(files > 300);
        QVERIFY2(found.isEmpty(), qPrintable(found.join('\n')));
    }
};

QTEST_GUILESS_MAIN(TestWording)
#include "tst_wording.moc"
