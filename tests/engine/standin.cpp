// Stands in for fio in tests that are not about fio: answers a call at once with a report of all
// jobs, as fio would print it after a good run, and touches no file of theirs. Variables of the
// environment change its behaviour:
//
//     STANDIN_VERSION  what --version prints, in place of fio-3.33
//     STANDIN_KEEP     a folder that each job file is copied into, under its own name
//     STANDIN_OUTPUT   a file whose content is printed for stages, in place of the report
//     STANDIN_STATUS   the exit status of stages, in place of 0

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

std::vector<Section> sectionsOf(const std::string& text)
{
    std::vector<Section> sections;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        const auto value = [&](const char* key) {
            const bool isIt = line.rfind(key, 0) == 0;
            return isIt ? line.substr(std::strlen(key)) : std::string();
        };
        if (!line.empty() && line.front() == '[')
            sections.push_back({line.substr(1, line.size() - 2), "", 0});
        else if (!value("rw=").empty())
            sections.back().direction = value("rw=");
        else if (!value("size=").empty())
            sections.back().bytes = std::stoll(value("size="));
        else if (!value("read_iolog=").empty())
            sections.back().bytes = bytesOfLog(value("read_iolog="));
    }
    return sections;
}

void printDirection(const char* name, long long bytes)
{
    std::cout << "\"" << name << "\" : { \"io_bytes\" : " << bytes
              << ", \"total_ios\" : " << (bytes > 0 ? 1 : 0) << ", \"runtime\" : 5, "
              << "\"lat_ns\" : { \"mean\" : 1000.0, \"N\" : 1 }, \"clat_ns\" : { \"max\" : 1000, "
              << "\"percentile\" : { \"50.000000\" : 900, \"99.000000\" : 1000 } } }";
}

void printSection(const Section& section, const std::string& client)
{
    std::cout << "{ \"jobname\" : \"" << section.name << "\", \"error\" : 0, ";
    if (!client.empty()) {
        const std::string address = client.substr(client.find(':') + 1);
        const size_t comma = address.find(',');
        std::cout << "\"hostname\" : \"" << address.substr(0, comma) << "\", \"port\" : "
                  << (comma == std::string::npos ? "8765" : address.substr(comma + 1)) << ", ";
    }
    printDirection("read", section.direction == "write" ? 0 : section.bytes);
    std::cout << ", ";
    printDirection("write", section.direction == "read" ? 0 : section.bytes);
    std::cout << ", \"sync\" : { \"total_ios\" : 0 } }";
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
    const std::string output = environment("STANDIN_OUTPUT", "");
    if (isBent && !output.empty()) {
        std::cout << contentOf(output);
    } else {
        std::cout << "{\n\"fio version\" : \"fio-3.33\",\n\""
                  << (client.empty() ? "jobs" : "client_stats") << "\" : [\n";
        const char* separator = "";
        for (const auto& [machine, file] : files) {
            for (const Section& section : sectionsOf(contentOf(file))) {
                std::cout << separator;
                printSection(section, machine);
                separator = ",\n";
            }
        }
        std::cout << "\n]\n}\n";
    }
    return isBent ? std::atoi(environment("STANDIN_STATUS", "0").c_str()) : 0;
}
