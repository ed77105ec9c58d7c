// Input: a path, each byte one character; for a third look also each two bytes one character.

#include "fuzz/check.h"
#include "fuzz/slowpathresolve.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

namespace {

// The characters as they are; kvToQString() would turn some back into bytes.
QString unitsOf(const _kvString8_allSize<500>& text)
{
    return kvToQString(text);
}
QString unitsOf(const _kvString<500>& text)
{
    return QString(reinterpret_cast<const QChar*>(text.text), text.length);
}

template <class Text>
QString checkedResolution(const Text& path)
{
    const Text resolved = kvPathResolve(path);
    fuzz::same("a path is resolved by the rules", unitsOf(resolved),
               slow::resolvePath(unitsOf(path)));
    fuzz::same("resolving twice changes nothing more", unitsOf(kvPathResolve(resolved)),
               unitsOf(resolved));
    fuzz::same("a resolved path is never longer", resolved.length <= path.length, true);
    fuzz::same("a text is terminated", int(resolved.text[resolved.length]), 0);
    return unitsOf(resolved);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString path = fuzz::latin1(fuzz::bytesOf(data, size));
    fuzz::same("both widths agree", checkedResolution(kvToString8<500>(path)),
               checkedResolution(kvToString16<500>(path)));

    QString wide;
    for (std::size_t i = 0; i + 1 < size; i += 2)
        wide += QChar(data[i] + 256 * data[i + 1]);
    checkedResolution(kvToString16<500>(wide));
    return 0;
}
