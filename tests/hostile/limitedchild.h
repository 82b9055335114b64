// SPDX-License-Identifier: GPL-3.0-or-later
// Runs a piece of a test in a child process with a ceiling on its address
// space and a deadline, so that a hang or a runaway allocation fails the one
// test (killed by SIGALRM, or aborted by std::bad_alloc) instead of freezing
// or swapping the machine. The ceiling is left off under the sanitizers,
// which reserve terabytes of address space for their shadow memory.
#pragma once

#include <QProcess>

#include <csignal>
#include <cstdio>
#include <functional>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kel::test {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool Sanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool Sanitized = true;
#else
inline constexpr bool Sanitized = false;
#endif
#else
inline constexpr bool Sanitized = false;
#endif

inline constexpr rlim_t MiB = rlim_t(1) << 20;

inline void limitThisProcess(rlim_t addressSpace, unsigned seconds)
{
    if (!Sanitized) {
        const rlimit limit{addressSpace, addressSpace};
        setrlimit(RLIMIT_AS, &limit);
    }
    alarm(seconds);
}

/// The exit status of `body` run in a limited child; 128 + the signal when
/// the child was killed (SIGALRM: past the deadline, SIGABRT: an abort).
inline int runLimited(rlim_t addressSpace, unsigned seconds, const std::function<int()> &body)
{
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        limitThisProcess(addressSpace, seconds);
        const int status = body();
        std::fflush(nullptr);
        _exit(status);
    }
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// A QProcess whose program runs under the same kind of limits.
inline void limitProcess(QProcess &process, rlim_t addressSpace, unsigned seconds)
{
    process.setChildProcessModifier([addressSpace, seconds] { limitThisProcess(addressSpace, seconds); });
}

} // namespace kel::test
