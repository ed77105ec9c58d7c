#pragma once

// Units in which people read sizes and times.

constexpr long long bytesPerKib = 1024;
constexpr double bytesPerMib = 1024.0 * 1024.0;
constexpr int msPerSecond = 1000;
constexpr double nsPerMs = 1e6;
