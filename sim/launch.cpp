// zvsim-launch [--control FIFO] PROGRAM [ARGS...]
// Runs PROGRAM with a simulated bridge board on the USB bus: the launcher
// re-runs itself under umockdev-wrapper, sets up the emulated board, starts
// PROGRAM as a child (which inherits the emulated bus) and serves the board
// until PROGRAM exits. Its exit code is PROGRAM's. With --control it also
// takes commands from a named pipe: unplug and replug the board, set or dump
// the chip's registers, make a transfer fail.

#include "hex_writer.h"
#include "testbed.h"

#include <QByteArray>
#include <QString>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

const char* const kUsage =
    "usage: zvsim-launch [--control FIFO] PROGRAM [ARGS...]\n"
    "Runs PROGRAM with a simulated bridge board (vendor 2976, product 3, bus 1,\n"
    "address 5) and a ZV4280 behind it; PROGRAM's exit code is the launcher's.\n"
    "With --control the launcher makes FIFO (a named pipe) and takes commands\n"
    "from it, one a line, e.g. echo unplug > FIFO:\n"
    "  unplug          the board plugged in last leaves the bus\n"
    "  plug            a new board comes on the bus at the next device address,\n"
    "                  its chip just powered up (as after a replug)\n"
    "  set REG VALUE   the chip of that board holds VALUE (hex) in register REG\n"
    "  dump FILE       that chip's registers are written to FILE as a .hex file\n"
    "  stall           the board's next transfer stalls; the endpoint stays halted\n"
    "                  until the program clears it\n"
    "  fault short N   the board's next reply ends after N bytes\n"
    "  fault overflow  the board's next reply moves every byte and reports an overflow\n"
    "Each command is answered on standard error with a line \"zvsim-launch: ...\".\n";

volatile sig_atomic_t childPid = 0;
int wakeFd = -1; // write end of the self-pipe that says a child has ended

// An interrupt or termination of the launcher goes on to the program, which
// ends as it would on its own; the launcher then tears the board down.
void forward(int sig)
{
    if (childPid > 0)
        kill(pid_t(childPid), sig);
}

void childEnded(int)
{
    const int saved = errno;
    const char byte = 0;
    (void)!write(wakeFd, &byte, 1);
    errno = saved;
}

void say(const std::string& text)
{
    std::fprintf(stderr, "zvsim-launch: %s\n", text.c_str());
}

// The boards on the bus, the last one plugged in at the back; the board
// commands act on that one.
class Bench
{
public:
    Bench() { plug(); }

    void command(const std::string& line)
    {
        char word[16] = {};
        char file[4096] = {};
        int reg = 0;
        unsigned value = 0;
        if (std::sscanf(line.c_str(), "%15s", word) != 1)
            return;
        const std::string verb = word;
        if (verb == "plug") {
            say("plugged a board in at address " + std::to_string(plug()));
        } else if (boards.empty() && (verb == "unplug" || verb == "set" || verb == "dump" || verb == "stall"
                                      || verb == "fault")) {
            say("no board on the bus");
        } else if (verb == "unplug") {
            bus.removeBoard(boards.back().index);
            say("unplugged the board at address " + std::to_string(boards.back().address));
            boards.pop_back();
        } else if (verb == "set" && std::sscanf(line.c_str(), "%*s %d %x", &reg, &value) == 2 && reg >= 0
                   && reg < zvsim::SimulatedChip::kRegisters && value <= 0xFF) {
            bus.setRegister(boards.back().index, reg, uint8_t(value));
            say("register " + std::to_string(reg) + " set");
        } else if (verb == "dump" && std::sscanf(line.c_str(), "%*s %4095[^\n]", file) == 1) {
            const QByteArray regs = bus.registers(boards.back().index);
            const bool written = HexWriter::writeFile(QString::fromLocal8Bit(file),
                                                      HexWriter::chipText(QStringLiteral("ZV4280v2"), regs), false);
            say(written ? std::string("dumped the registers to ") + file : std::string("cannot write ") + file);
        } else if (verb == "stall") {
            bus.stallNext(boards.back().index);
            say("the next transfer stalls");
        } else if (verb != "fault" || !fault(line)) {
            say("unknown command: " + line);
        }
    }

private:
    // "fault short N" or "fault overflow": the next reply of the board goes
    // wrong. False for any other text.
    bool fault(const std::string& line)
    {
        char kind[16] = {};
        int bytes = -1;
        const int n = std::sscanf(line.c_str(), "%*s %15s %d", kind, &bytes);
        const std::string what = n >= 1 ? kind : "";
        if (what == "overflow" && n == 1) {
            bus.failTransfer(boards.back().index, {zvsim::TransferFault::Overflow, false, 0, 0});
            say("the next reply overflows");
        } else if (what == "short" && n == 2 && bytes >= 0) {
            bus.failTransfer(boards.back().index, {zvsim::TransferFault::Short, false, 0, bytes});
            say("the next reply ends after " + std::to_string(bytes) + " bytes");
        } else {
            return false;
        }
        return true;
    }

    struct Board
    {
        int index;
        int address;
    };

    // A replugged board comes back at a new address, as on a real bus.
    int plug()
    {
        zvsim::BoardConfig config;
        config.address = uint8_t(nextAddress++);
        boards.push_back({bus.addBoard(config), config.address});
        return config.address;
    }

    zvsim::Testbed bus;
    std::vector<Board> boards;
    int nextAddress = 5;
};

// Makes the control pipe, or takes a named pipe that is already there; -1
// when neither works. The descriptor is open for reading and writing, so
// that a writer closing its end never reads as the end of the pipe.
int openControl(const char* path, bool* made)
{
    *made = mkfifo(path, 0600) == 0;
    struct stat info = {};
    if (!*made && (errno != EEXIST || stat(path, &info) != 0 || !S_ISFIFO(info.st_mode)))
        return -1;
    return open(path, O_RDWR | O_NONBLOCK | O_CLOEXEC);
}

} // namespace

int main(int argc, char* argv[])
{
    int first = 1;
    const char* controlPath = nullptr;
    if (argc > 2 && std::strcmp(argv[1], "--control") == 0) {
        controlPath = argv[2];
        first = 3;
    }
    if (first >= argc || argv[first][0] == '-') {
        std::fputs(kUsage, stderr);
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

    bool madeControl = false;
    const int control = controlPath ? openControl(controlPath, &madeControl) : -1;
    if (controlPath && control < 0) {
        std::fprintf(stderr, "zvsim-launch: cannot make the control pipe %s: %s\n", controlPath, std::strerror(errno));
        return 1;
    }
    int wake[2];
    if (pipe2(wake, O_CLOEXEC | O_NONBLOCK) != 0) {
        std::fprintf(stderr, "zvsim-launch: %s\n", std::strerror(errno));
        return 1;
    }
    wakeFd = wake[1];
    struct sigaction action = {};
    sigemptyset(&action.sa_mask);
    action.sa_handler = childEnded;
    action.sa_flags = SA_RESTART | SA_NOCLDSTOP;
    sigaction(SIGCHLD, &action, nullptr);

    Bench bench;

    pid_t child = 0;
    const int spawned = posix_spawnp(&child, argv[first], nullptr, nullptr, argv + first, environ);
    if (spawned != 0) {
        std::fprintf(stderr, "zvsim-launch: cannot start %s: %s\n", argv[first], std::strerror(spawned));
        return 1;
    }
    childPid = child;
    action.sa_handler = forward;
    action.sa_flags = SA_RESTART;
    for (int sig : {SIGINT, SIGTERM, SIGHUP})
        sigaction(sig, &action, nullptr);

    // The board commands run here, on the main thread, between the wake-ups
    // of the pipes.
    std::string pending;
    int status = 0;
    for (;;) {
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child || (ended < 0 && errno != EINTR))
            break;
        pollfd fds[2] = {{wake[0], POLLIN, 0}, {control, POLLIN, 0}};
        if (poll(fds, control >= 0 ? 2 : 1, -1) < 0 && errno != EINTR)
            break;
        char buffer[512];
        while (read(wake[0], buffer, sizeof buffer) > 0) {
        }
        if (control >= 0 && (fds[1].revents & POLLIN)) {
            ssize_t n;
            while ((n = read(control, buffer, sizeof buffer)) > 0)
                pending.append(buffer, size_t(n));
            for (size_t end; (end = pending.find('\n')) != std::string::npos; pending.erase(0, end + 1))
                bench.command(pending.substr(0, end));
        }
    }
    if (control >= 0) {
        close(control);
        if (madeControl)
            unlink(controlPath);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
