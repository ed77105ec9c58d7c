#include "engine/plan.h"

#include "engine/names.h"

const char* jobKindName(JobKind kind)
{
    switch (kind) {
    case JobKind::Create:
        return "create";
    case JobKind::Write:
        return "write";
    case JobKind::Read:
        return "read";
    case JobKind::Copy:
        break;
    }
    return "copy";
}

const char* fileStateName(FileState state)
{
    switch (state) {
    case FileState::Absent:
        return "absent";
    case FileState::Made:
        return "made";
    case FileState::MaybeMade:
        return "maybe-made";
    case FileState::Readable:
        return "readable";
    case FileState::ReadWritable:
        break;
    }
    return "read-writable";
}

QByteArray machineKey(const Plan& plan, int machine)
{
    return QByteArray::number(machine + 1) + '-' + plainWord(plan.machines[size_t(machine)].name);
}
