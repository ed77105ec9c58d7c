#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <unordered_map>
#include <vector>

// The form of a subcommand. Its options, operands and texts are data: the parser, the help pages,
// the manual page and the completions of the shells are all made from them.

/// A constant array and its length.
template <typename T>
class ListOf
{
public:
    constexpr ListOf() = default;
    /// The array must outlive it.
    template <std::size_t N>
    constexpr ListOf(const T (&items)[N])
        : m_items(items)
        , m_size(N)
    {}
    /// For range-based loops.
    constexpr const T* begin() const { return m_items; }
    /// One after the last.
    constexpr const T* end() const { return m_items + m_size; }
    /// True for a list without an array.
    constexpr bool empty() const { return m_size == 0; }

private:
    const T* m_items = nullptr;
    std::size_t m_size = 0;
};

/// The kind of the value of an option or an operand: the parser checks it, the shells complete it.
enum class ValueKind
{
    Flag,       ///< no value
    Text,       ///< anything
    Choice,     ///< one of the choices
    Number,     ///< a whole number from 0
    File,       ///< any file
    Folder,     ///< a folder
    ConfigFile, ///< a file of a series, or a folder
    Machine,    ///< the name of a machine
    Rule,       ///< names of rules of a check, with commas between
    Loss        ///< names of rules of losses that can be allowed, with commas between
};

/// An option of a subcommand. Each is a constant, and stands for itself in Arguments.
struct Option
{
    const char* names = nullptr; ///< as it is typed: "-q,--quiet"
    const char* valueName =
        nullptr; ///< what the help calls its value, in capitals; null for a flag
    ValueKind kind = ValueKind::Flag;
    const char* meaning =
        nullptr; ///< a phrase that begins with a small letter, without a full stop
    ListOf<const char*> choices{}; ///< the first is the default
    bool repeats = false;          ///< may be given several times
    const Option* needs = nullptr; ///< makes sense only beside this one
    bool replacesOperands = false; ///< the command then needs no operand

    /// The long name: "--quiet".
    std::string longName() const;
};

/// A path or a word that a subcommand takes.
struct Operand
{
    const char* name = nullptr; ///< in capitals
    ValueKind kind = ValueKind::Text;
    bool repeats = false; ///< takes all that follow
};

/// How a command ends.
enum ExitCode
{
    exitClean = 0,    ///< nothing found, nothing different
    exitFindings = 1, ///< findings that count, or a difference
    exitUsage = 2     ///< wrong use, or something that can't be read
};

/// Where a command writes to.
struct Output
{
    std::ostream& out;
    std::ostream& err;
    bool colour = false;        ///< of `out`, unless the user says otherwise
    bool isTerminal = false;    ///< true if a person reads `out`
    bool isErrTerminal = false; ///< true if a person reads `err`
    int width = 0;              ///< characters in a line, if `out` is a terminal; 0: not known
};

/// The arguments of one subcommand, as the parser understood them: bytes as the shell passed them.
class Arguments
{
public:
    /// True if the option was given.
    bool has(const Option& option) const { return m_values.count(&option) > 0; }
    /// The value that was given, or the first choice, or nothing.
    std::string value(const Option& option) const;
    /// All values that were given, in their order; each empty for a flag.
    std::vector<std::string> values(const Option& option) const;
    /// The parts between the commas of all values that were given, empty ones too.
    std::vector<std::string> list(const Option& option) const;
    /// A value that is a whole number; 0 if the option was not given.
    int number(const Option& option) const;
    /// The paths or words, decoded like file names.
    const QStringList& operands() const { return m_operands; }

    /// Adds what the parser found.
    void add(const Option& option, std::vector<std::string> values);
    /// Adds what the parser found.
    void addOperand(const std::string& text);

private:
    std::unordered_map<const Option*, std::vector<std::string>> m_values;
    QStringList m_operands;
};

/// A subcommand.
struct Command
{
    const char* name = nullptr;
    const char* title = nullptr; ///< a phrase that begins with a small letter, without a full stop
    ListOf<const Option*> options;
    ListOf<Operand> operands; ///< at least one
    /// Paragraphs with blank lines between. Lines that begin with four blanks are shown as they
    /// are.
    const char* description = nullptr;
    const char* onSuccess = nullptr; ///< the meaning of status 0
    const char* onFindings =
        nullptr; ///< the meaning of status 1; null if the command never ends so
    ListOf<const char*> examples;
    int (*run)(const Arguments& arguments, const Output& output) = nullptr;
};

/// Why an argument cannot be used. A command throws it, and the user reads "dpc: OPTION: REASON
/// (see dpc COMMAND --help)".
struct UsageError
{
    std::string text;

    /// About the command line as a whole.
    explicit UsageError(std::string reason)
        : text(std::move(reason))
    {}
    /// About the value of an option.
    UsageError(const Option& option, const std::string& reason)
        : text(option.longName() + ": " + reason)
    {}
};

/// Text of an argument, decoded like the name of a file.
QString decoded(const std::string& text);

/// One sentence to the error stream; returns exitUsage.
int fail(const Output& output, const std::string& sentence);
