#pragma once

#include "shared/kvstring16.h"
#include "shared/kvstring8.h"

/// Characters that a fixed-capacity string can hold, its terminating zero not counted.
template <class Text>
constexpr int capacity = 0;
template <int N>
constexpr int capacity<_kvString8_allSize<N>> = N;
template <int N>
constexpr int capacity<_kvString<N>> = N;
