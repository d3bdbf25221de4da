// From starting the program to its first painted window, against an empty window in the same
// theme; and the memory it has needed by then.
//
// It does without Qt, so that none of what it measures the loading of is in memory on its account.
#include "Measure.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {
constexpr int turns = 11;

/// A folder of the user's own, which goes away with this object, and the environment that makes
/// every program started from here work in it.
class Folder final
{
public:
    Folder()
    {
        std::string path = std::filesystem::temp_directory_path() / "quillstone-bench-XXXXXX";
        if (::mkdtemp(path.data()) == nullptr) {
            std::perror(path.c_str());
            std::exit(1);
        }
        m_path = path;
        for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
            ::setenv(variable, m_path.c_str(), 1);
        }
        ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    }
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

    void useData(const std::string &name) const
    {
        ::setenv("QS_DATA_DIR", (m_path / name).c_str(), 1);
    }

private:
    std::filesystem::path m_path;
};

[[noreturn]] void fail(const std::string &program)
{
    std::fprintf(stderr, "%s failed.\n", program.c_str());
    std::exit(1);
}

std::string beside(const char *name)
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
}

struct Start
{
    double milliseconds = 0;
    double megabytes = 0; ///< largest resident set
};

/// Starts a program and waits until it has painted, then until it has ended.
Start start(const std::string &program)
{
    int ends[2];
    if (::pipe(ends) != 0) {
        fail(program);
    }
    const std::string descriptor = std::to_string(ends[1]);
    Start start;
    pid_t child = -1;
    start.milliseconds = Measure::milliseconds([&] {
        child = ::fork();
        if (child == 0) {
            ::close(ends[0]);
            ::execl(program.c_str(), program.c_str(), descriptor.c_str(), nullptr);
            ::_exit(127);
        }
        ::close(ends[1]);
        char byte = 0;
        if (child < 0 || ::read(ends[0], &byte, 1) != 1) {
            fail(program);
        }
    });
    ::close(ends[0]);
    int status = 0;
    rusage usage = {};
    if (::wait4(child, &status, 0, &usage) != child || status != 0) {
        fail(program);
    }
    start.megabytes = static_cast<double>(usage.ru_maxrss) / 1024;
    return start;
}

/// Makes the system forget what it has read from disk, which only root may; false when it may not.
bool forgetFiles()
{
    ::sync();
    std::ofstream caches("/proc/sys/vm/drop_caches");
    return static_cast<bool>(caches << "3" << std::flush);
}

/// Prints how the window's start compares with the empty one's; returns the most memory it took.
double compare(const std::string &path, double wanted, bool cold)
{
    const auto run = [cold](const char *name) {
        if (cold) {
            forgetFiles();
        }
        return start(beside(name));
    };
    Measure::Series memory;
    const auto window = [&] {
        const Start figures = run("bench_program");
        memory.add(figures.megabytes);
        return figures.milliseconds;
    };
    const auto empty = [&] { return run("bench_empty").milliseconds; };
    const auto [ours, peers] = Measure::inTurns(turns, window, empty);
    Measure::print({.path = path,
                    .ours = ours.median(),
                    .peer = peers.median(),
                    .unit = "ms",
                    .peerName = "empty themed window",
                    .wanted = wanted});
    return memory.largest();
}

/// Compares cold, where that is possible, and warm; returns the most memory the window took.
double compare(const std::string &documents, double wanted)
{
    if (forgetFiles()) {
        compare("cold start to the first painted window, " + documents, wanted, true);
    } else {
        std::fprintf(stderr, "Only root can measure a cold start.\n");
    }
    return compare("warm start (all files in memory), " + documents, wanted, false);
}

void createUser(int documents)
{
    const std::string command = '"' + beside("bench_user") + "\" " + std::to_string(documents);
    if (std::system(command.c_str()) != 0) {
        fail(command);
    }
}
} // namespace

int main()
{
    const Folder folder;
    folder.useData("none");
    createUser(0);
    const double memory = compare("0 documents", 3);
    Measure::print({.path = "peak memory at that start, 0 documents",
                    .ours = memory,
                    .peer = 100,
                    .unit = "MB",
                    .peerName = "limit"});
    folder.useData("many");
    createUser(10'000);
    compare("10,000 documents", 5);
    return 0;
}
