#pragma once

#include <optional>
#include <sys/types.h>

/// Bytes that a process of this machine, its children and those of them that have ended have read
/// and written by system calls; nothing if the system does not tell. While fio runs without a
/// server, this is how far it is: with JSON it prints nothing until the end.
std::optional<long long> bytesMovedBy(pid_t process);
