// Input, all of it Latin-1: what is done with an archive of files, and the archive.
//
//   chosen.dpc              the file that the user chooses; "+" before it: there is an info text
//   ==> ...                as archive.h says

#include "configset/seriesloader.h"
#include "fuzz/archive.h"
#include "fuzz/slowseries.h"

namespace {

slow::Load load(const QString& chosen, const QString& infoText)
{
    slow::Load result;
    result.info += infoText;
    const LoadListener listener{
        [&] { return result.info.join('\n').isEmpty(); },
        [&](const QString& text) { result.info += text; },
        [&](const QString& line, const QString& file) { result.rejected << line << file; }};
    TaskList tasks;
    loadSeries(seriesNameForLoading(chosen), tasks, listener);
    for (const TestTask& task : qAsConst(tasks))
        result.tasks += describe(task);
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const fuzz::ArchiveFolder folder;
    const QString root = folder.path();

    QByteArray input = fuzz::bytesOf(data, size);
    QString chosen = fuzz::latin1(input.split('\n').first().left(fuzz::maxNameLength));
    const QString infoText = chosen.startsWith('+') ? "info" : "";
    chosen.remove(0, infoText.isEmpty() ? 0 : 1);
    folder.unpack(input);

    slow::Load loaded;
    const QString date = slow::withinOneSecond([&] { loaded = load(root + chosen, infoText); });
    const slow::Load expected = slow::Loader(infoText, date).load(root + chosen);
    fuzz::same("tasks come from the files in order", loaded.tasks.join('\n'),
               expected.tasks.join('\n'));
    fuzz::same("comments become the info text", loaded.info.join('\n'), expected.info.join('\n'));
    fuzz::same("refused lines are told", loaded.rejected.join('\n'), expected.rejected.join('\n'));
    fuzz::same("a load gives what the files hold", loaded, expected);
    return 0;
}
