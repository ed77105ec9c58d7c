#include "shared/kvtime.h"

#include <QDateTime>
#include <QLocale>

_kvTime::_kvTime(bool now)
    : m_secondsSinceEpoch(now ? QDateTime::currentSecsSinceEpoch() : 0)
{}

QString _kvTime::asStringFileName_TruncSec() const
{
    return QLocale::c().toString(QDateTime::fromSecsSinceEpoch(m_secondsSinceEpoch),
                                 QStringLiteral("yyyy-MM-dd_HH-mm-ss"));
}

kvTimer::kvTimer() = default;
