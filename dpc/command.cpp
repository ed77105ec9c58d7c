#include "dpc/command.h"

#include <QFile>

#include <ostream>

std::string Option::longName() const
{
    const std::string all = names;
    return all.substr(all.find("--"));
}

std::string Arguments::value(const Option& option) const
{
    const auto found = m_values.find(&option);
    if (found != m_values.end())
        return found->second.back();
    return option.choices.empty() ? std::string() : *option.choices.begin();
}

std::vector<std::string> Arguments::values(const Option& option) const
{
    const auto found = m_values.find(&option);
    return found == m_values.end() ? std::vector<std::string>() : found->second;
}

std::vector<std::string> Arguments::list(const Option& option) const
{
    std::vector<std::string> parts;
    for (const std::string& value : values(option)) {
        size_t start = 0;
        for (size_t comma = value.find(','); comma != std::string::npos;
             comma = value.find(',', start)) {
            parts.push_back(value.substr(start, comma - start));
            start = comma + 1;
        }
        parts.push_back(value.substr(start));
    }
    return parts;
}

int Arguments::number(const Option& option) const
{
    return QString::fromStdString(value(option)).toInt();
}

void Arguments::add(const Option& option, std::vector<std::string> values)
{
    m_values[&option] = std::move(values);
}

void Arguments::addOperand(const std::string& text)
{
    m_operands += decoded(text);
}

QString decoded(const std::string& text)
{
    return QFile::decodeName(QByteArray::fromStdString(text));
}

int fail(const Output& output, const std::string& sentence)
{
    output.err << "dpc: " << sentence << '\n';
    return exitUsage;
}
