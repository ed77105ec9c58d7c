#include "engine/fiooutput.h"

#include "engine/jsonnumbers.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace {

/// The sums that fio adds over all machines are known to be wrong.
constexpr char sumOfClients[] = "All clients";

/// Walks through the text of a document without building it: one of a large run is larger than
/// what QJsonDocument takes, and one of a killed run has no end.
class DocumentScanner
{
public:
    DocumentScanner(const QByteArray& text, int begin)
        : m_text(text)
        , m_at(begin)
        , m_sectionBegin(begin)
    {}

    FioOutput scan();

private:
    void takeText();
    QByteArray valueAfterKey(int end) const;
    bool isKey(const QByteArray& name, int begin, int end) const;
    void close();

    const QByteArray& m_text;
    int m_at;
    int m_sectionBegin;
    int m_depth = 0;
    bool m_inSections = false;
    FioOutput m_output;
};

double sumOf(const QJsonObject& latency)
{
    const double sum = numberOf(latency.value(QLatin1String("mean"))).value_or(0) *
                       numberOf(latency.value(QLatin1String("N"))).value_or(0);
    return std::min(sum, maxExactNumber);
}

std::optional<IoFigures> figuresOf(const QJsonObject& direction)
{
    const std::optional<qint64> bytes = wholeNumberOf(direction.value(QLatin1String("io_bytes")));
    const std::optional<qint64> ios = wholeNumberOf(direction.value(QLatin1String("total_ios")));
    if (!bytes.has_value() || !ios.has_value())
        return std::nullopt;
    IoFigures figures;
    figures.bytes = *bytes;
    figures.ios = *ios;
    figures.ioNs = sumOf(direction.value(QLatin1String("lat_ns")).toObject());
    const QJsonObject completion = direction.value(QLatin1String("clat_ns")).toObject();
    const QJsonObject percentiles = completion.value(QLatin1String("percentile")).toObject();
    if (*ios > 0) {
        figures.p50Ns = wholeNumberOf(percentiles.value(QLatin1String("50.000000")));
        figures.p99Ns = wholeNumberOf(percentiles.value(QLatin1String("99.000000")));
        figures.maxNs = wholeNumberOf(completion.value(QLatin1String("max")));
    }
    return figures;
}

std::optional<SectionReport> sectionOf(const QJsonObject& object)
{
    const std::optional<qint64> error = wholeNumberOf(object.value(QLatin1String("error")));
    const QJsonObject readObject = object.value(QLatin1String("read")).toObject();
    const QJsonObject writeObject = object.value(QLatin1String("write")).toObject();
    const std::optional<IoFigures> read = figuresOf(readObject);
    const std::optional<IoFigures> write = figuresOf(writeObject);
    const QString name = object.value(QLatin1String("jobname")).toString();
    if (!error.has_value() || !read.has_value() || !write.has_value() || name.isEmpty() ||
        name == QLatin1String(sumOfClients))
        return std::nullopt;
    SectionReport report;
    report.name = name.toLatin1();
    report.host = object.value(QLatin1String("hostname")).toString();
    report.port = object.value(QLatin1String("port")).toInt();
    report.error = int(std::min<qint64>(*error, INT_MAX));
    report.read = *read;
    report.write = *write;
    report.runtimeMs =
        std::max(wholeNumberOf(readObject.value(QLatin1String("runtime"))).value_or(0),
                 wholeNumberOf(writeObject.value(QLatin1String("runtime"))).value_or(0));
    const QJsonObject sync = object.value(QLatin1String("sync")).toObject();
    report.syncs = wholeNumberOf(sync.value(QLatin1String("total_ios"))).value_or(0);
    report.syncNs = sumOf(sync.value(QLatin1String("lat_ns")).toObject());
    report.startMs = wholeNumberOf(object.value(QLatin1String("job_start")));
    return report;
}

/// File names stand in the document as their bytes. Each byte is taken as a letter, for nothing
/// that is looked at here can hold any but ASCII.
std::optional<SectionReport> parseSection(const QByteArray& bytes)
{
    QJsonDocument document = QJsonDocument::fromJson(QString::fromLatin1(bytes).toUtf8());
    if (!document.isObject()) {
        // A mean of nothing is printed as C prints it, which JSON does not know.
        static const QRegularExpression notANumber(QStringLiteral(":\\s*[-+]?(nan|inf)\\b"));
        QString text = QString::fromLatin1(bytes);
        document =
            QJsonDocument::fromJson(text.replace(notANumber, QStringLiteral(": null")).toUtf8());
    }
    return document.isObject() ? sectionOf(document.object()) : std::nullopt;
}

bool isSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

/// Steps over a text in quotes and stays behind it.
void DocumentScanner::takeText()
{
    const int begin = m_at + 1;
    for (++m_at; m_at < m_text.size() && m_text[m_at] != '"'; ++m_at)
        m_at += m_text[m_at] == '\\' ? 1 : 0;
    const int end = std::min(m_at, m_text.size());
    m_at = std::min(m_at + 1, m_text.size());
    if (m_depth != 1)
        return;
    if (isKey("fio version", begin, end))
        m_output.version = QString::fromLatin1(valueAfterKey(m_at));
    else if (isKey("jobs", begin, end) || isKey("client_stats", begin, end))
        m_inSections = true;
}

bool DocumentScanner::isKey(const QByteArray& name, int begin, int end) const
{
    return end - begin == name.size() &&
           std::equal(name.begin(), name.end(), &m_text.data()[begin]) && m_at < m_text.size();
}

/// The text in quotes that is the value of a key, empty if there is none.
QByteArray DocumentScanner::valueAfterKey(int end) const
{
    int at = end;
    while (at < m_text.size() && (isSpace(m_text[at]) || m_text[at] == ':'))
        ++at;
    if (at >= m_text.size() || m_text[at] != '"')
        return {};
    const int close = m_text.indexOf('"', at + 1);
    return close < 0 ? QByteArray() : m_text.mid(at + 1, close - at - 1);
}

void DocumentScanner::close()
{
    --m_depth;
    if (m_depth == 1)
        m_inSections = false;
    if (m_depth != 2 || !m_inSections || m_text[m_at] != '}')
        return;
    const QByteArray bytes = m_text.mid(m_sectionBegin, m_at + 1 - m_sectionBegin);
    if (std::optional<SectionReport> section = parseSection(bytes))
        m_output.sections.push_back(std::move(*section));
}

FioOutput DocumentScanner::scan()
{
    while (m_at < m_text.size()) {
        const char c = m_text[m_at];
        if (c == '"') {
            takeText();
            continue;
        }
        if (c == '{' || c == '[') {
            if (m_depth == 2)
                m_sectionBegin = m_at;
            ++m_depth;
        } else if (c == '}' || c == ']') {
            close();
            if (m_depth <= 0) {
                m_output.isWhole = true;
                break;
            }
        }
        ++m_at;
    }
    return std::move(m_output);
}

/// Where the document begins: messages before it may hold braces, but no line that begins with one.
int documentBegin(const QByteArray& text)
{
    if (text.startsWith('{'))
        return 0;
    const int line = text.indexOf("\n{");
    return line == -1 ? text.indexOf('{') : line;
}

} // namespace

FioOutput readFioOutput(const QByteArray& text)
{
    const int begin = documentBegin(text);
    return begin < 0 ? FioOutput() : DocumentScanner(text, begin).scan();
}
