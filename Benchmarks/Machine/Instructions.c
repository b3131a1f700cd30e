/*
 * Counts instructions on a machine whose clock advances one nanosecond for each instruction. There the
 * processor time of a process is the number of instructions that it, and the kernel for it, executed.
 *
 *   Instructions                  checks that: prints what a loop of 20,000,000 instructions takes
 *   Instructions of PID           what a running process has executed so far
 *   Instructions run COMMAND ...  what a command executes from its start to its end, and in a second line what
 *                                 the processes execute that it leaves behind; nonzero when it fails
 */
#include <fcntl.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

static int64_t nanoseconds(clockid_t clock)
{
    struct timespec time;
    if (clock_gettime(clock, &time) != 0) {
        perror("clock_gettime");
        exit(1);
    }
    return time.tv_sec * INT64_C(1000000000) + time.tv_nsec;
}

static int64_t ofLoop(void)
{
    uint64_t rounds = 10000000;
    const int64_t start = nanoseconds(CLOCK_PROCESS_CPUTIME_ID);
    __asm__ volatile("1: dec %0\n\tjnz 1b" : "+r"(rounds) : : "cc");
    return nanoseconds(CLOCK_PROCESS_CPUTIME_ID) - start;
}

static int64_t ofProcess(pid_t pid)
{
    clockid_t clock;
    if (clock_getcpuclockid(pid, &clock) != 0) {
        fprintf(stderr, "there is no process %d\n", (int)pid);
        exit(1);
    }
    return nanoseconds(clock);
}

/* Waits for the end of any process that is left. Returns its number, or 0 when there is none. */
static pid_t awaitEnd(siginfo_t* end, int64_t* instructions)
{
    if (waitid(P_ALL, 0, end, WEXITED | WNOWAIT) != 0)
        return 0;
    // The process has ended, but its clock exists until someone waits for the process.
    *instructions = ofProcess(end->si_pid);
    return waitpid(end->si_pid, NULL, 0);
}

static int64_t ofCommand(char** command)
{
    // Processes that the command leaves behind become children of this one.
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t child = fork();
    if (child == 0) {
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, STDOUT_FILENO);
        execvp(command[0], command);
        perror(command[0]);
        _exit(127);
    }
    int64_t own = 0;
    int64_t others = 0;
    int64_t instructions = 0;
    siginfo_t end;
    for (pid_t ended; (ended = awaitEnd(&end, &instructions)) != 0;) {
        *(ended == child ? &own : &others) += instructions;
        if (ended == child && (end.si_code != CLD_EXITED || end.si_status != 0)) {
            fprintf(stderr, "%s failed with status %d\n", command[0], end.si_status);
            exit(1);
        }
    }
    if (own == 0) {
        perror("fork");
        exit(1);
    }
    printf("%lld\n", (long long)own);
    return others;
}

int main(int argc, char** argv)
{
    int64_t instructions;
    if (argc == 1)
        instructions = ofLoop();
    else if (argc == 3 && strcmp(argv[1], "of") == 0)
        instructions = ofProcess((pid_t)atoi(argv[2]));
    else if (argc >= 3 && strcmp(argv[1], "run") == 0)
        instructions = ofCommand(argv + 2);
    else
        return 2;
    printf("%lld\n", (long long)instructions);
    return 0;
}
