#include "check/nametemplates.h"
#include "check/text.h"

#include <algorithm>

namespace {

// In the place of numbers. A path that holds them itself is expanded as it is.
constexpr char iterationMark = '\x01';
constexpr char taskMark = '\x02';

bool holdsMark(const QByteArray& path)
{
    return std::any_of(path.begin(), path.end(),
                       [](char c) { return c == iterationMark || c == taskMark; });
}

QByteArray withMarks(QByteArray path)
{
    path.replace(iterVariable, QByteArray(1, iterationMark));
    for (int i = 0; i < pathVariableCount; ++i) {
        if (variationOf(static_cast<PathVariable>(i)) == VariesBy::Task)
            path.replace(pathVariables[i], QByteArray(1, taskMark));
    }
    return path;
}

QByteArray filled(const QByteArray& text, int iteration, int taskNumber)
{
    if (!holdsMark(text))
        return text;
    QByteArray name;
    name.reserve(text.size() + 10);
    const auto isMark = [](char c) { return c == iterationMark || c == taskMark; };
    const char* from = text.begin();
    while (true) {
        const char* const mark = std::find_if(from, text.end(), isMark);
        name.append(from, int(mark - from));
        if (mark == text.end())
            return name;
        name += QByteArray::number(*mark == iterationMark ? iteration : taskNumber);
        from = mark + 1;
    }
}

} // namespace

QByteArray NameTemplates::expand(const LineFact& line, const QByteArray& path, int iteration)
{
    if (holdsMark(path))
        return toLatin1(m_expander.initName(line, path, iteration));
    if (line.file != m_file)
        m_templates.clear();
    m_file = line.file;
    auto known = m_templates.constFind(path);
    if (known == m_templates.cend())
        known = m_templates.insert(path, toLatin1(m_expander.initName(line, withMarks(path), 0)));
    return filled(*known, iteration, line.taskNumber);
}
