#include "configset/infotext.h"

void InfoText::addLine(QString line)
{
    line.replace(QChar::Nbsp, ' ').replace('\r', '\n');
    m_text += m_text.isEmpty() ? line : '\n' + line;
}

LoadListener silentListener(InfoText& info)
{
    return {[&info] { return info.text().isEmpty(); },
            [&info](const QString& line) { info.addLine(line); },
            [](const QString& /*line*/, const QString& /*file*/) {}};
}
