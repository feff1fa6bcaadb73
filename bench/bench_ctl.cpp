// Whole-process time of zv4280ctl on a simulated board: "fields" (no
// board), "get", "dump", and "field NAME=CODE" (read, rules, write the
// change, read back), beside a process that does nothing (/bin/true) in the
// same emulated environment, which is what the launcher alone costs. Medians
// of wall and processor time over repeated runs; the board is served by this
// program's testbed thread, as the launcher serves it. Other zv4280ctl
// programs named as arguments are measured beside this build's.

#include "bench_support.h"
#include "testbed.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <fcntl.h>
#include <functional>
#include <cstdio>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

namespace {


double seconds(const timeval& t)
{
    return double(t.tv_sec) + double(t.tv_usec) / 1e6;
}

struct Sample
{
    double wallMs = 0;
    double cpuMs = 0; // user and system time of the program
    int exit = -1;
};

// Runs the program (zv4280ctl unless the first argument is a path) with its
// arguments, its output dropped.
Sample runOnce(std::vector<const char*> args)
{
    const char* program = ZV_CTL_PROGRAM;
    if (!args.empty() && args.front()[0] == '/') {
        program = args.front();
        args.erase(args.begin());
    }
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(program));
    for (const char* a : args)
        argv.push_back(const_cast<char*>(a));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    Sample s;
    QElapsedTimer clock;
    clock.start();
    pid_t child = 0;
    if (posix_spawn(&child, program, &actions, nullptr, argv.data(), environ) == 0) {
        int status = 0;
        rusage usage{};
        if (wait4(child, &status, 0, &usage) == child) {
            s.wallMs = clock.nsecsElapsed() / 1e6;
            s.cpuMs = (seconds(usage.ru_utime) + seconds(usage.ru_stime)) * 1000;
            s.exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
    }
    posix_spawn_file_actions_destroy(&actions);
    return s;
}

// The zv4280ctl programs measured side by side: this build's, then those
// named on the command line (an older build's, say), their runs interleaved.
std::vector<const char*> programs{ZV_CTL_PROGRAM};

bool measure(const char* what, int runs, const std::function<std::vector<const char*>(int)>& args)
{
    const bool alone = args(0).front()[0] == '/'; // a program of its own, not zv4280ctl
    const size_t count = alone ? 1 : programs.size();
    std::vector<std::vector<double>> wall(count), cpu(count);
    for (int i = 0; i < runs; ++i)
        for (size_t p = 0; p < count; ++p) {
            std::vector<const char*> a = args(i);
            if (!alone)
                a.insert(a.begin(), programs[p]);
            const Sample s = runOnce(a);
            if (s.exit != 0) {
                std::fprintf(stderr, "bench_ctl: %s (%s) ended with %d\n", what, a.front(), s.exit);
                return false;
            }
            wall[p].push_back(s.wallMs);
            cpu[p].push_back(s.cpuMs);
        }
    for (size_t p = 0; p < count; ++p)
        std::printf("%-44s %9.1f ms wall %9.1f ms cpu  (fastest %.1f ms, %d runs)%s%s\n", what, median(wall[p]),
                    median(cpu[p]), *std::min_element(wall[p].begin(), wall[p].end()), runs, p ? "  " : "",
                    p ? programs[p] : "");
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    if (!zvsim::Testbed::available()) {
        std::fprintf(stderr, "bench_ctl: run it under umockdev-wrapper\n");
        return 1;
    }
    for (int i = 1; i < argc; ++i)
        programs.push_back(argv[i]);
    zvsim::Testbed bus;
    bus.addBoard();
    const int runs = 21;
    // Alternate codes, so that every write changes the register.
    const bool ok = measure("a process alone (/bin/true)", runs, [](int) { return std::vector<const char*>{"/bin/true"}; })
                    && measure("zv4280ctl fields", runs, [](int) { return std::vector<const char*>{"fields"}; })
                    && measure("zv4280ctl get 12", runs, [](int) { return std::vector<const char*>{"get", "12"}; })
                    && measure("zv4280ctl dump", runs, [](int) { return std::vector<const char*>{"dump"}; })
                    && measure("zv4280ctl field ChA_PLL_RDiv=N", runs, [](int i) {
                           return std::vector<const char*>{"field", i % 2 ? "ChA_PLL_RDiv=3" : "ChA_PLL_RDiv=12"};
                       });
    return ok ? 0 : 1;
}
