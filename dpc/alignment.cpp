#include "dpc/alignment.h"

#include <algorithm>
#include <cstdint>

namespace {

using Texts = std::vector<std::string>;

/// The middle of two lists, without their equal ends.
struct Middle
{
    int begin = 0;
    int firstEnd = 0;
    int secondEnd = 0;
};

Middle middleOf(const Texts& first, const Texts& second)
{
    Middle middle{0, int(first.size()), int(second.size())};
    const int shorter = std::min(middle.firstEnd, middle.secondEnd);
    while (middle.begin < shorter && first[size_t(middle.begin)] == second[size_t(middle.begin)])
        ++middle.begin;
    while (middle.firstEnd > middle.begin && middle.secondEnd > middle.begin &&
           first[size_t(middle.firstEnd - 1)] == second[size_t(middle.secondEnd - 1)]) {
        --middle.firstEnd;
        --middle.secondEnd;
    }
    return middle;
}

/// For each pair of places the length of the longest common part from there on.
class CommonLengths
{
public:
    CommonLengths(const Texts& first, const Texts& second, const Middle& middle)
        : m_middle(middle)
        , m_width(middle.secondEnd - middle.begin + 1)
        , m_lengths(size_t(middle.firstEnd - middle.begin + 1) * size_t(m_width))
    {
        for (int i = middle.firstEnd - 1; i >= middle.begin; --i) {
            for (int j = middle.secondEnd - 1; j >= middle.begin; --j)
                at(i, j) = first[size_t(i)] == second[size_t(j)]
                               ? at(i + 1, j + 1) + 1
                               : std::max(at(i + 1, j), at(i, j + 1));
        }
    }

    std::int32_t& at(int i, int j)
    {
        return m_lengths[size_t(i - m_middle.begin) * size_t(m_width) + size_t(j - m_middle.begin)];
    }

private:
    Middle m_middle;
    int m_width;
    std::vector<std::int32_t> m_lengths;
};

/// Pairs two runs that have nothing in common one by one.
void addRuns(std::vector<AlignedPair>& pairs, int first, int firstEnd, int second, int secondEnd)
{
    while (first < firstEnd || second < secondEnd) {
        pairs.push_back({first < firstEnd ? first : -1, second < secondEnd ? second : -1});
        first = std::min(first + 1, firstEnd);
        second = std::min(second + 1, secondEnd);
    }
}

void addMiddle(std::vector<AlignedPair>& pairs, const Texts& first, const Texts& second,
               const Middle& middle)
{
    CommonLengths lengths(first, second, middle);
    int runFirst = middle.begin;
    int runSecond = middle.begin;
    int i = middle.begin;
    int j = middle.begin;
    while (i < middle.firstEnd && j < middle.secondEnd) {
        if (first[size_t(i)] == second[size_t(j)]) {
            addRuns(pairs, runFirst, i, runSecond, j);
            pairs.push_back({i++, j++});
            runFirst = i;
            runSecond = j;
        } else if (lengths.at(i + 1, j) >= lengths.at(i, j + 1)) {
            ++i;
        } else {
            ++j;
        }
    }
    addRuns(pairs, runFirst, middle.firstEnd, runSecond, middle.secondEnd);
}

} // namespace

std::vector<AlignedPair> align(const Texts& first, const Texts& second)
{
    constexpr std::int64_t maxCells = 9000000; // 36 MB, some milliseconds
    const Middle middle = middleOf(first, second);
    std::vector<AlignedPair> pairs;
    pairs.reserve(first.size() + second.size());
    for (int i = 0; i < middle.begin; ++i)
        pairs.push_back({i, i});
    const std::int64_t cells =
        std::int64_t(middle.firstEnd - middle.begin + 1) * (middle.secondEnd - middle.begin + 1);
    if (cells <= maxCells)
        addMiddle(pairs, first, second, middle);
    else
        addRuns(pairs, middle.begin, middle.firstEnd, middle.begin, middle.secondEnd);
    for (int i = middle.firstEnd; i < int(first.size()); ++i)
        pairs.push_back({i, middle.secondEnd + i - middle.firstEnd});
    return pairs;
}
