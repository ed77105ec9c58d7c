#pragma once

// Units in which people read sizes and times.

constexpr double bytesPerMib = 1024.0 * 1024.0;
constexpr int msPerSecond = 1000;
constexpr double nsPerMs = 1e6;
