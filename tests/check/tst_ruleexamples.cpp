#include "check/seriesfinder.h"
#include "tests/check/seriesfolder.h"

#include <QRegularExpression>

Q_DECLARE_METATYPE(const Rule*)

namespace {

QByteArray bytesOf(std::string_view text)
{
    return {text.data(), int(text.size())};
}

/// With "x{500}" as 500 times "x".
QByteArray expanded(std::string_view text)
{
    static const QRegularExpression repeated("(.)[{]([0-9]+)[}]");
    QString result = QString::fromLatin1(text.data(), int(text.size()));
    for (auto match = repeated.match(result); match.hasMatch(); match = repeated.match(result))
        result.replace(match.capturedStart(), match.capturedLength(),
                       match.captured(1).repeated(match.captured(2).toInt()));
    return result.toLatin1();
}

} // namespace

/// The examples that explain a rule are true: it finds something in one, and nothing in the other.
class TestRuleExamples : public QObject
{
    Q_OBJECT

private slots:
    void exampleIsHitAndCounterexampleIsNot_data()
    {
        QTest::addColumn<const Rule*>("rule");
        for (const Rule* rule : allRules())
            QTest::newRow(rule->name) << rule;
    }

    void exampleIsHitAndCounterexampleIsNot()
    {
        QFETCH(const Rule*, rule);
        QVERIFY(hits(*rule, rule->hit) > 0);
        QCOMPARE(hits(*rule, rule->miss), 0);
    }

    void counterexampleIsASeriesThatLoads_data() { exampleIsHitAndCounterexampleIsNot_data(); }

    void counterexampleIsASeriesThatLoads()
    {
        QFETCH(const Rule*, rule);
        SeriesFolder folder;
        layOut(folder, rule->miss);
        const auto findings = checkAll({folder.root()}, folder.options()).findings;
        for (const Finding& finding : findings)
            QVERIFY2(finding.rule->severity != Severity::Error || finding.rule == sourceMissing,
                     finding.text.c_str());
        QVERIFY(hasTasks(folder));
    }

    void everyRuleIsComplete()
    {
        QSet<QByteArray> names;
        for (const Rule* rule : allRules()) {
            QVERIFY(QRegularExpression("^[a-z0-9]+(-[a-z0-9]+)*$").match(rule->name).hasMatch());
            QVERIFY2(!names.contains(rule->name), rule->name);
            names.insert(rule->name);
            const QByteArray category(rule->category);
            QVERIFY2(QList<QByteArray>({"lines", "paths", "series", "machines"}).contains(category),
                     rule->name);
            const QByteArray meaning(rule->meaning);
            QVERIFY2(meaning.endsWith('.') && !meaning.contains('|'), rule->name);
            // A clause that ends a message.
            const QByteArray advice(rule->advice);
            QVERIFY2(!advice.isEmpty() && !advice.endsWith('.'), rule->name);
            QVERIFY2(advice.left(1).toLower() == advice.left(1), rule->name);
            QCOMPARE(ruleNamed(rule->name), rule);
            QCOMPARE(allRules()[size_t(orderOf(*rule))], rule);
        }
        QVERIFY(ruleNamed("no-such-rule") == nullptr);
        QCOMPARE(QByteArray(closestRuleName("bad-lines")), QByteArray("bad-line"));
    }

    /// A rule that a family forgets to list could be found and neither explained nor turned off.
    void everyRuleOfTheSourcesIsListed()
    {
        const QDir folder(QStringLiteral(TWDP_SOURCE_DIR "/check/rules"));
        QStringList written;
        for (const QString& file : folder.entryList({"*.cpp"})) {
            static const QRegularExpression constant("constexpr Rule \\w+ = \\{\\s*\"([^\"]+)\"");
            auto matches = constant.globalMatch(test::contentOf(folder.filePath(file)));
            while (matches.hasNext())
                written += matches.next().captured(1);
        }
        QStringList listed;
        for (const Rule* rule : allRules())
            listed += rule->name;
        written.sort();
        listed.sort();
        QCOMPARE(listed, written);
    }

private:
    const Rule* const sourceMissing = ruleNamed("source-missing");

    static void layOut(SeriesFolder& folder, const RuleExample& example)
    {
        for (const ExampleFile& file : example.files) {
            const QString name = QString::fromUtf8(bytesOf(file.name));
            if (name.endsWith('/'))
                QVERIFY(QDir(folder.root()).mkdir(name));
            else if (!name.isEmpty())
                folder.put(QString::fromUtf8(expandedName(file)),
                           expanded(file.content).repeated(file.times));
        }
        const QString existing = bytesOf(example.existing);
        if (existing.endsWith('|'))
            folder.setSpecial(existing.chopped(1), PathStatus::Kind::Pipe);
        else if (!existing.isEmpty())
            folder.setExisting(existing, example.existingKib * 1024);
        folder.options().hosts = QString(bytesOf(example.machines)).split(',', Qt::SkipEmptyParts);
        folder.options().environment.space = [&](const QString&) {
            return std::optional<DiskSpace>({1, example.freeMib * 1024 * 1024});
        };
    }

    static QByteArray expandedName(const ExampleFile& file)
    {
        return file.name.find('{') == std::string_view::npos ? bytesOf(file.name)
                                                             : expanded(file.name);
    }

    static int hits(const Rule& rule, const RuleExample& example)
    {
        SeriesFolder folder;
        layOut(folder, example);
        const auto findings = folder.findings({});
        return int(std::count_if(findings.begin(), findings.end(),
                                 [&](const Finding& finding) { return finding.rule == &rule; }));
    }

    static bool hasTasks(const SeriesFolder& folder)
    {
        const auto series = findSeries(folder.root()).series;
        return std::any_of(series.begin(), series.end(), [](const FoundSeries& found) {
            const SeriesFacts facts = readSeries(found.name, found.shownFolder);
            return std::any_of(facts.files.begin(), facts.files.end(),
                               [](const FileFact& file) { return file.tasks > 0; });
        });
    }
};

QTEST_APPLESS_MAIN(TestRuleExamples)
#include "tst_ruleexamples.moc"
