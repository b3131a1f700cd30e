/*
 * The smallest possible cost of a look at the drives. Opens each drive once and sends it the three commands
 * that every look needs. Prints the instructions of each of several rounds.
 */
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <time.h>
#include <unistd.h>

#include <linux/nvme_ioctl.h>

enum
{
    ROUNDS = 6,
    GET_LOG_PAGE = 0x02,
    IDENTIFY = 0x06
};

static unsigned char s_Controller[4096];
static unsigned char s_Namespace[4096];
static unsigned char s_Health[512];

static int64_t processorTime(void)
{
    struct timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return time.tv_sec * INT64_C(1000000000) + time.tv_nsec;
}

static void ask(int drive, struct nvme_admin_cmd command, unsigned char* block, uint32_t size)
{
    command.addr = (uintptr_t)block;
    command.data_len = size;
    if (ioctl(drive, NVME_IOCTL_ADMIN_CMD, &command) != 0) {
        perror("NVME_IOCTL_ADMIN_CMD");
        exit(1);
    }
}

static void lookAt(int number)
{
    const struct nvme_admin_cmd controller = {.opcode = IDENTIFY, .cdw10 = 1};
    const struct nvme_admin_cmd name_space = {.opcode = IDENTIFY, .nsid = 1};
    const struct nvme_admin_cmd health = {
        .opcode = GET_LOG_PAGE, .nsid = 0xFFFFFFFF, .cdw10 = 0x02 | ((sizeof s_Health / 4 - 1) << 16)};
    char path[32];
    snprintf(path, sizeof path, "/dev/nvme%d", number);
    const int drive = open(path, O_RDONLY | O_CLOEXEC);
    if (drive < 0) {
        perror(path);
        exit(1);
    }
    ask(drive, controller, s_Controller, sizeof s_Controller);
    ask(drive, name_space, s_Namespace, sizeof s_Namespace);
    ask(drive, health, s_Health, sizeof s_Health);
    close(drive);
}

int main(int argc, char** argv)
{
    const int drives = argc == 2 ? atoi(argv[1]) : 0;
    if (drives < 1) {
        fprintf(stderr, "usage: BareMinimum DRIVES\n");
        return 2;
    }
    for (int round = 0; round < ROUNDS; ++round) {
        const int64_t start = processorTime();
        for (int number = 0; number < drives; ++number)
            lookAt(number);
        printf("%lld\n", (long long)(processorTime() - start));
    }
    return 0;
}
