// zvsim-launch PROGRAM [ARGS...]
// Runs PROGRAM with a simulated bridge board on the USB bus: the launcher
// re-runs itself under umockdev-wrapper, sets up the emulated board, starts
// PROGRAM as a child (which inherits the emulated bus) and serves the board
// until PROGRAM exits. Its exit code is PROGRAM's.

#include "testbed.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <csignal>
#include <cstring>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {
volatile sig_atomic_t childPid = 0;

// An interrupt or termination of the launcher goes on to the program, which
// ends as it would on its own; the launcher then tears the board down.
void forward(int sig)
{
    if (childPid > 0)
        kill(pid_t(childPid), sig);
}
} // namespace

int main(int argc, char* argv[])
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: zvsim-launch PROGRAM [ARGS...]\n");
        return 2;
    }
    if (!zvsim::Testbed::available()) {
        if (std::getenv("ZVSIM_WRAPPED")) {
            std::fprintf(stderr, "zvsim-launch: umockdev-wrapper did not set up the emulation\n");
            return 1;
        }
        setenv("ZVSIM_WRAPPED", "1", 1);
        std::vector<char*> args;
        args.push_back(const_cast<char*>("umockdev-wrapper"));
        for (int i = 0; i < argc; ++i)
            args.push_back(argv[i]);
        args.push_back(nullptr);
        execvp("umockdev-wrapper", args.data());
        std::fprintf(stderr, "zvsim-launch: cannot run umockdev-wrapper: %s\n", std::strerror(errno));
        return 1;
    }

    zvsim::Testbed bus;
    bus.addBoard();

    pid_t child = 0;
    if (posix_spawnp(&child, argv[1], nullptr, nullptr, argv + 1, environ) != 0) {
        std::fprintf(stderr, "zvsim-launch: cannot start %s: %s\n", argv[1], std::strerror(errno));
        return 1;
    }
    childPid = child;
    struct sigaction action = {};
    action.sa_handler = forward;
    sigemptyset(&action.sa_mask);
    for (int sig : {SIGINT, SIGTERM, SIGHUP})
        sigaction(sig, &action, nullptr);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
