#pragma once

#include <QString>

/// A moment in whole seconds.
class _kvTime
{
public:
    /// The current time, or with false the start of 1970.
    explicit _kvTime(bool now);

    /// Local time as "yyyy-MM-dd_HH-mm-ss": sorts by time and is safe in file names everywhere.
    QString asStringFileName_TruncSec() const;

private:
    qint64 m_secondsSinceEpoch = 0;
};

/// A stopwatch, not started.
class kvTimer
{
public:
    kvTimer();

private:
    [[maybe_unused]] qint64 m_startNanoseconds = 0;
};
