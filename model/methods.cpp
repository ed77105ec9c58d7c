#include "model/methods.h"

#include <algorithm>

namespace {

SysBufferMode maxSystemBufferOf(const MethodInfo& method)
{
    SysBufferMode most = -1;
    for (const SystemBuffer& buffer : method.systemBuffers)
        most = buffer.text != nullptr ? std::max(most, buffer.mode) : most;
    return most;
}

} // namespace

bool isWrittenOnly(std::string_view name)
{
    return std::any_of(std::begin(ioMethods), std::end(ioMethods), [&](const MethodInfo& method) {
        return method.name == name && !method.has(IsRead);
    });
}

TaskRules rulesFor(IoMethod method, TestType type)
{
    TaskRules rules;
    const MethodInfo* const info = methodInfo(method);
    // A system copy keeps its flush setting even if nothing is written.
    const bool isOwnWay = info != nullptr && info->copyChunks == CopyChunks::OwnWay;
    rules.allowsFlush = type != TestType::Read || isOwnWay;
    if (info == nullptr)
        return rules;
    rules.maxSystemBuffer = maxSystemBufferOf(*info);
    rules.hasOneSystemBuffer = info->systemBuffers[1].text == nullptr;
    rules.systemBufferNeedsChunks = info->has(BufferIsOfChunk);
    rules.allowsNoChunks = info->copyChunks != CopyChunks::Needed || type != TestType::Copy;
    rules.chunkSizeIsNeeded = isOwnWay || !rules.allowsNoChunks;
    rules.startsWithoutChunks = isOwnWay;
    rules.allowsPreallocation = info->has(CanPreallocate) && type != TestType::Read;
    return rules;
}
