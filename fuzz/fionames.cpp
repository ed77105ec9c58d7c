// Input: the name of a file, each byte one character; a "/" is put before it, so that it is
// absolute.

#include "engine/names.h"
#include "fuzz/check.h"
#include "fuzz/slowfionames.h"

#include <algorithm>

namespace {

bool isHarmless(QChar c)
{
    const ushort code = c.unicode();
    return (code >= 'a' && code <= 'z') || (code >= '0' && code <= '9') || code == '.' ||
           code == '-' || code == '_' || code == ' ';
}

/// Names that nobody could have a reason to refuse.
bool isPlain(const QString& path)
{
    return path.size() > 1 && !path.endsWith(' ') &&
           std::all_of(path.begin() + 1, path.end(), isHarmless);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString path = '/' + fuzz::latin1(fuzz::bytesOf(data, size));
    const bool isRefused = !nameProblem(path).empty();
    if (isPlain(path))
        fuzz::same("a plain name is taken", isRefused, false);
    if (isRefused)
        return 0;
    const QByteArray name = encodedName(path);
    const QByteArray line = "filename=" + fileNameValue(path);
    fuzz::same("fio reads the same name, and no other",
               slow::fileNames(slow::jobFileValue(line)) == QByteArrayList{name}, true);

    const QByteArray prerun = "exec_prerun=test -f " + shellWord(name);
    fuzz::same("a shell reads the same name",
               slow::shellWords(slow::jobFileValue(prerun)) == QByteArrayList{"test", "-f", name},
               true);
    if (fitsLog(path))
        fuzz::same("a log holds the same name", slow::logName(name + " add") == name, true);
    return 0;
}
