#pragma once

#include <string>
#include <vector>

/// One pair of an alignment: places in the first and in the second list, -1 for none.
struct AlignedPair
{
    int first = -1;
    int second = -1;
};

/// Pairs the entries of two lists in order: equal ones if that keeps the order, and what differs
/// between them one by one. Lists whose differing middle is very long are paired by their places.
std::vector<AlignedPair> align(const std::vector<std::string>& first,
                               const std::vector<std::string>& second);
