#include "shared/kvfileglobal.h"

#include <algorithm>

int copyFile_chunksize()
{
    return 1048576;
}

// cacheMode, fileSize and unused are left as they are: their owners set them.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
_fileGLobal::_fileGLobal()
{
    // The timer is constructed by now; zeroing it with its neighbours and the gaps between them
    // leaves no chance byte in the block.
    auto* const blockStart = reinterpret_cast<unsigned char*>(&ioChunkWait);
    auto* const blockEnd = reinterpret_cast<unsigned char*>(&timer) + sizeof timer;
    std::fill(blockStart, blockEnd, static_cast<unsigned char>(0));

    // Only now, because two of these lie in the block.
    // NOLINTBEGIN(cppcoreguidelines-prefer-member-initializer)
    sysBufferMode = defaultSysBufferMode;
    chunkWait = 0;
    chunkSize = 0;
    preallocate = false;
    flush = false;
    generation = 1;
    ioBufferSize = copyFile_chunksize();
    // NOLINTEND(cppcoreguidelines-prefer-member-initializer)
}

bool _fileGLobal::preallocateFile()
{
    setErrorText(_kvString8_allSize<500>("Preallocation not supported!"));
    return false;
}

void _fileGLobal::clearInvalidSettings()
{
    setErrorText(_kvString8_allSize<500>("clearInvalidSettings not supported!"));
}

void _fileGLobal::setErrorText(const _kvString8_allSize<500>& text1,
                               const _kvString8_allSize<500>& text2,
                               const _kvString8_allSize<500>& text3,
                               const _kvString8_allSize<500>& text4,
                               const _kvString8_allSize<500>& text5)
{
    // One of the texts may be the error text itself.
    _kvString8_allSize<500> message("ERROR: ");
    for (const auto* text : {&text1, &text2, &text3, &text4, &text5})
        message.add(*text);
    errorText = message;
}
