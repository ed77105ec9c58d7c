#include "dpc/comparison.h"

#include "check/taskfields.h"
#include "check/text.h"
#include "dpc/alignment.h"

#include <fmt/format.h>

namespace {

using Fields = std::vector<std::string>;

std::string yesOrNo(bool value)
{
    return value ? "yes" : "no";
}

/// The fields of a task as people read them, in the order of the line.
Fields fieldsOf(const LineFact& line)
{
    const TaskSettings& task = line.used;
    Fields fields{methodName(task.method),
                  yesOrNo(task.flush),
                  yesOrNo(task.preallocate),
                  fmt::format("{} ms", task.chunkWait),
                  fmt::format("{} KiB", task.chunkSize / 1024),
                  std::to_string(task.sysBufferMode),
                  fmt::format("{} KiB", task.fileSize / 1024),
                  std::to_string(task.iterations),
                  std::to_string(task.cacheMode)};
    for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath}) {
        const QByteArray& path = line.path(which);
        // Whole: two long paths may differ in the middle.
        fields.push_back(path.isEmpty() ? which <= DestPath ? "MEMORY" : "(none)"
                                        : '\'' + printable(QString::fromLatin1(path)) + '\'');
    }
    fields.push_back(yesOrNo(task.writeDone));
    return fields;
}

struct Entry
{
    const LineFact* line;
    Fields fields; ///< none for a marker
};

std::vector<Entry> entriesOf(const SeriesFacts& facts)
{
    std::vector<Entry> entries;
    for (const LineFact& line : facts.lines) {
        if (isTask(line))
            entries.push_back({&line, fieldsOf(line)});
        else if (isMarker(line))
            entries.push_back({&line, {}});
    }
    return entries;
}

std::vector<std::string> keysOf(const std::vector<Entry>& entries)
{
    std::vector<std::string> keys;
    keys.reserve(entries.size());
    for (const Entry& entry : entries)
        keys.push_back(fmt::format("{}", fmt::join(entry.fields, "\n")));
    return keys;
}

EntryPlace placeOf(const SeriesFacts& facts, const Entry& entry)
{
    return {facts.fileOf(*entry.line).shown, entry.line->line};
}

std::string nameOf(const Entry& entry)
{
    if (entry.fields.empty())
        return "wait for the next config file";
    return fmt::format("{} {} from {} to {}", entry.fields[0], typeWord(*entry.line),
                       entry.fields[firstPathField - 1], entry.fields[firstPathField]);
}

void addChanges(std::vector<Difference>& differences, const Difference& place, const Fields& first,
                const Fields& second)
{
    for (size_t i = 0; i < first.size(); ++i) {
        if (first[i] == second[i])
            continue;
        Difference difference = place;
        difference.field = fieldName(int(i) + 1);
        difference.before = first[i];
        difference.after = second[i];
        differences.push_back(difference);
    }
}

std::string asText(const EntryPlace& place)
{
    return fmt::format("{}:{}", printable(place.file), place.line);
}

} // namespace

std::vector<Difference> differencesOf(const SeriesFacts& first, const SeriesFacts& second)
{
    const std::vector<Entry> firstEntries = entriesOf(first);
    const std::vector<Entry> secondEntries = entriesOf(second);
    std::vector<Difference> all;
    if (first.info != second.info)
        all.emplace_back();
    for (const AlignedPair& pair : align(keysOf(firstEntries), keysOf(secondEntries))) {
        const Entry* a = pair.first < 0 ? nullptr : &firstEntries[size_t(pair.first)];
        const Entry* b = pair.second < 0 ? nullptr : &secondEntries[size_t(pair.second)];
        // A task never turned into a marker: one went and the other came.
        const bool sameKind =
            a != nullptr && b != nullptr && a->fields.empty() == b->fields.empty();
        if (sameKind) {
            addChanges(
                all,
                {Difference::Kind::Field, placeOf(first, *a), placeOf(second, *b), {}, {}, {}, {}},
                a->fields, b->fields);
            continue;
        }
        if (a != nullptr)
            all.push_back(
                {Difference::Kind::OnlyInFirst, placeOf(first, *a), {}, {}, {}, {}, nameOf(*a)});
        if (b != nullptr)
            all.push_back(
                {Difference::Kind::OnlyInSecond, {}, placeOf(second, *b), {}, {}, {}, nameOf(*b)});
    }
    return all;
}

std::string differencesAsText(const std::vector<Difference>& differences)
{
    std::string text;
    for (const Difference& d : differences) {
        switch (d.kind) {
        case Difference::Kind::InfoText:
            text += "the info text is different\n";
            break;
        case Difference::Kind::Field:
            text += fmt::format("{}, {}: {}: {} -> {}\n", asText(d.first), asText(d.second),
                                d.field, d.before, d.after);
            break;
        case Difference::Kind::OnlyInFirst:
            text += fmt::format("{}: only in the first series: {}\n", asText(d.first), d.entry);
            break;
        case Difference::Kind::OnlyInSecond:
            text += fmt::format("{}: only in the second series: {}\n", asText(d.second), d.entry);
            break;
        }
    }
    return text;
}
