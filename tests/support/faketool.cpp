// Stands in any tool's place below a temporary tool root. Notes how it was called and answers as the test has
// laid down.
//
// $SEALWRIGHT_FAKE_ROOT/calls            one JSON array a line: the tool's name, then its arguments
// $SEALWRIGHT_FAKE_ROOT/runs/NAME        how many runs of that tool there have been
// $SEALWRIGHT_FAKE_ROOT/answers/NAME/N   a folder: what the N-th run answers; "always" for the others
//
// $SEALWRIGHT_FAKE_ROOT/kills/NAME/N     there: the N-th run ends its caller when its own work is done
//
// In a folder of an answer: stdout, stderr, status, signal (kills itself by it), hang (waits while it is
// there, and then makes a file released beside it), and content (written to the path in the file target,
// where "{last}" is the last argument). Where there is reads-input, the tool keeps its standard input in
// $SEALWRIGHT_FAKE_ROOT/inputs/NAME first.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

std::string contents(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string quoted(const std::string &text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        if (c == '\n')
            result += "\\n";
        else if (c == '\t')
            result += "\\t";
        else
            result += c;
    }
    return result + '"';
}

/// "altool--notarize-app" and the like for the tools that are several in one.
std::string toolName(const std::vector<std::string> &arguments)
{
    std::string name = std::filesystem::path(arguments.front()).filename();
    size_t next = 1;
    if (name == "xcrun" && arguments.size() > next)
        name = arguments[next++];
    if (name == "altool" && arguments.size() > next)
        name += arguments[next];
    return name;
}

void appendCall(const std::filesystem::path &root, const std::string &name,
                const std::vector<std::string> &arguments)
{
    std::string line = "[";
    line += quoted(name);
    for (size_t i = 1; i < arguments.size(); ++i)
        line.append(",").append(quoted(arguments[i]));
    line += "]\n";
    const int file = open((root / "calls").c_str(), O_WRONLY | O_APPEND | O_CREAT, 0600);
    if (file < 0 || write(file, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        std::abort();
    close(file);
}

int countRun(const std::filesystem::path &root, const std::string &name)
{
    std::filesystem::create_directories(root / "runs");
    const std::filesystem::path path = root / "runs" / name;
    const int file = open(path.c_str(), O_RDWR | O_CREAT, 0600);
    if (file < 0 || flock(file, LOCK_EX) != 0)
        std::abort();
    const std::string before = contents(path);
    const int run = before.empty() ? 1 : std::stoi(before) + 1;
    std::ofstream(path) << run;
    close(file);
    return run;
}

void copyTo(int descriptor, const std::filesystem::path &path)
{
    const std::string bytes = contents(path);
    size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = write(descriptor, bytes.data() + written, bytes.size() - written);
        if (count < 0)
            return;
        written += static_cast<size_t>(count);
    }
}

void waitForRelease(const std::filesystem::path &answer)
{
    if (!std::filesystem::exists(answer / "hang"))
        return;
    while (std::filesystem::exists(answer / "hang"))
        usleep(1000);
    std::ofstream(answer / "released") << '\n';
}

} // namespace

int main(int argc, char **argv)
{
    const char *const rootVariable = std::getenv("SEALWRIGHT_FAKE_ROOT");
    if (!rootVariable)
        return 70;
    const std::filesystem::path root = rootVariable;
    const std::vector<std::string> arguments(argv, argv + argc);
    const std::string name = toolName(arguments);
    const int run = countRun(root, name);
    appendCall(root, name, arguments);
    std::filesystem::path answer = root / "answers" / name / std::to_string(run);
    if (!std::filesystem::exists(answer))
        answer = root / "answers" / name / "always";
    if (std::filesystem::exists(answer / "content")) {
        std::string target = contents(answer / "target");
        if (target == "{last}")
            target = arguments.back();
        std::filesystem::copy_file(answer / "content", target,
                                   std::filesystem::copy_options::overwrite_existing);
    }
    if (std::filesystem::exists(answer / "reads-input")) {
        std::filesystem::create_directories(root / "inputs");
        std::ofstream(root / "inputs" / name, std::ios::binary) << contents("/dev/stdin");
    }
    if (std::filesystem::exists(root / "kills" / name / std::to_string(run)))
        kill(getppid(), SIGKILL);
    copyTo(STDOUT_FILENO, answer / "stdout");
    copyTo(STDERR_FILENO, answer / "stderr");
    waitForRelease(answer);
    if (const std::string signal = contents(answer / "signal"); !signal.empty())
        raise(std::stoi(signal));
    const std::string status = contents(answer / "status");
    return status.empty() ? 0 : std::stoi(status);
}
