// Stands in for fio in tests that are not about fio: answers a call at once with a report of all
// jobs, as fio would print it after a good run, and touches no file of theirs. Variables of the
// environment change its behaviour:
//
//     STANDIN_VERSION  what --version prints, in place of fio-3.33
//     STANDIN_KEEP     a folder that each job file is copied into, under its own name
//     STANDIN_OUTPUT   a file whose content is printed for stages, in place of the report
//     STANDIN_STATUS   the exit status of stages, in place of 0
//     STANDIN_ERRORS   a text for the error stream
//     STANDIN_NO       guards with a section that holds this text are answered with no
//     STANDIN_MUTE     guards with a section that holds this text are not answered
//     STANDIN_ASK      if set, guards are answered as the shell answers their questions
//     STANDIN_NOW      a shell command that stages begin with

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Section
{
    std::string name;
    std::string direction;
    long long bytes = 0;
    long long place = 1; ///< in its job file
};

std::string contentOf(const std::string& path)
{
    std::ifstream file(path);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string environment(const char* name, const char* otherwise)
{
    const char* const value = std::getenv(name);
    return value != nullptr ? value : otherwise;
}

constexpr const char* prerun = "exec_prerun=";

bool succeeds(const std::string& command)
{
    // NOLINTNEXTLINE(cert-env33-c,concurrency-mt-unsafe): what fio does
    return std::system((command + " > /dev/null").c_str()) == 0;
}

/// The bytes that a log of calls reads or writes: all lines "FILE read OFFSET LENGTH", or "...
/// write ...".
long long bytesOfLog(const std::string& path)
{
    std::istringstream lines(contentOf(path));
    std::string line;
    long long bytes[2] = {0, 0};
    while (std::getline(lines, line)) {
        std::istringstream words(line);
        std::string file;
        std::string call;
        long long offset = 0;
        long long length = 0;
        if (words >> file >> call >> offset >> length && (call == "read" || call == "write"))
            bytes[call == "write"] += length;
    }
    return std::max(bytes[0], bytes[1]);
}

std::vector<Section> sectionsOf(const std::string& text, bool isGuard)
{
    const std::string no = isGuard ? environment("STANDIN_NO", "") : "";
    const std::string mute = isGuard ? environment("STANDIN_MUTE", "") : "";
    const bool asks = isGuard && std::getenv("STANDIN_ASK") != nullptr;
    const auto holds = [](const std::string& line, const std::string& wanted) {
        return !wanted.empty() && line.find(wanted) != std::string::npos;
    };
    std::vector<Section> sections;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        const auto value = [&](const char* key) {
            const bool isIt = line.rfind(key, 0) == 0;
            return isIt ? line.substr(std::strlen(key)) : std::string();
        };
        if (!line.empty() && line.front() == '[')
            sections.push_back({line.substr(1, line.size() - 2), "", 0, int(sections.size()) + 1});
        else if (!value("rw=").empty())
            sections.back().direction = value("rw=");
        else if (!value("size=").empty())
            sections.back().bytes = std::stoll(value("size="));
        else if (!value("read_iolog=").empty())
            sections.back().bytes = bytesOfLog(value("read_iolog="));
        else if (holds(line, mute))
            sections.back().name.clear();
        else if (holds(line, no) || (asks && !value(prerun).empty() && !succeeds(value(prerun))))
            sections.back().bytes = 0;
    }
    return sections;
}

/// Each figure has a value of its own, so that none can stand for another.
void printDirection(const char* name, const Section& section, bool isUsed)
{
    const long long place = section.place;
    const bool hasMoved = isUsed && section.bytes > 0;
    std::cout << "\"" << name << "\" : { \"io_bytes\" : " << (isUsed ? section.bytes : 0)
              << ", \"total_ios\" : " << (hasMoved ? 10 + place : 0)
              << ", \"runtime\" : " << (hasMoved ? 500 * place : 0)
              << ", \"lat_ns\" : { \"mean\" : " << 2000000 * place
              << ".5, \"N\" : " << (hasMoved ? 10 + place : 0)
              << " }, \"clat_ns\" : { \"max\" : " << 9000 + place
              << ", \"percentile\" : { \"50.000000\" : " << 1000 + place
              << ", \"99.000000\" : " << 7000 + place << " } } }";
}

/// Empty for this machine.
std::string hostOf(const std::string& client)
{
    const std::string address = client.substr(client.find(':') + 1);
    return address.substr(0, address.find(','));
}

void printSection(const Section& section, const std::string& client)
{
    std::cout << "{ \"jobname\" : \"" << section.name << "\", \"error\" : 0, ";
    if (!client.empty()) {
        const size_t comma = client.find(',');
        std::cout << "\"hostname\" : \"" << hostOf(client) << "\", \"port\" : "
                  << (comma == std::string::npos ? "8765" : client.substr(comma + 1)) << ", ";
    }
    std::cout << "\"job_start\" : " << 1700000000000 + 10000 * section.place << ", ";
    printDirection("read", section, section.direction != "write");
    std::cout << ", ";
    printDirection("write", section, section.direction != "read");
    std::cout << ", \"sync\" : { \"total_ios\" : " << section.place - 1
              << ", \"lat_ns\" : { \"mean\" : 3000.0, \"N\" : " << section.place - 1 << " } } }";
}

/// Logs of calls on other machines are written by sections that come before the others.
void prepare(const std::string& text)
{
    std::istringstream lines(text);
    std::string line;
    bool isPreparation = false;
    while (std::getline(lines, line)) {
        if (!line.empty() && line.front() == '[')
            isPreparation = line.find("-prepare-") != std::string::npos;
        else if (isPreparation && line.rfind(prerun, 0) == 0)
            succeeds(line.substr(std::strlen(prerun)));
    }
}

/// Bandwidth over time, as fio writes it beside its report.
void writeLogs(const std::string& text, const std::string& client)
{
    std::istringstream lines(text);
    std::string line;
    long long place = 0;
    while (std::getline(lines, line)) {
        const std::string key = "write_bw_log=";
        place += !line.empty() && line.front() == '[' ? 1 : 0;
        if (line.rfind(key, 0) != 0)
            continue;
        const std::string host = hostOf(client);
        std::ofstream log(line.substr(key.size()) + "_bw." + std::to_string(place) + ".log" +
                          (host.empty() ? "" : '.' + host));
        for (int sample = 0; sample < 3; ++sample)
            log << 1700000000000 + 10000 * place + 100LL * sample << ", " << 2048 * (place + sample)
                << ", 0, 65536, 0\n";
    }
}

/// Of a guard nobody asks for anything bent.
bool isStage(const std::string& file)
{
    return file.rfind("stage-", 0) == 0;
}

} // namespace

int main(int count, char** arguments)
{
    std::vector<std::pair<std::string, std::string>> files; // client and job file
    std::string client;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        if (argument == "--version") {
            std::cout << environment("STANDIN_VERSION", "fio-3.33") << '\n';
            return 0;
        }
        if (argument.rfind("--client=", 0) == 0)
            client = argument.substr(std::strlen("--client="));
        else if (argument.rfind("--", 0) != 0)
            files.emplace_back(client, argument);
    }
    const std::string keep = environment("STANDIN_KEEP", "");
    if (!keep.empty()) {
        for (const auto& file : files)
            std::ofstream(keep + '/' + file.second.substr(file.second.rfind('/') + 1))
                << contentOf(file.second);
    }
    const bool isBent = !files.empty() && isStage(files.front().second);
    if (isBent && !succeeds(environment("STANDIN_NOW", ":")))
        return 2;
    std::cerr << environment("STANDIN_ERRORS", "");
    const std::string output = environment("STANDIN_OUTPUT", "");
    if (isBent && !output.empty()) {
        std::cout << contentOf(output);
    } else {
        std::cout << "{\n\"fio version\" : \"fio-3.33\",\n\""
                  << (client.empty() ? "jobs" : "client_stats") << "\" : [\n";
        const char* separator = "";
        for (const auto& [machine, file] : files) {
            prepare(contentOf(file));
            if (isBent)
                writeLogs(contentOf(file), machine);
            for (const Section& section : sectionsOf(contentOf(file), !isBent)) {
                std::cout << separator;
                printSection(section, machine);
                separator = ",\n";
            }
        }
        std::cout << "\n]\n}\n";
    }
    return isBent ? std::atoi(environment("STANDIN_STATUS", "0").c_str()) : 0;
}
