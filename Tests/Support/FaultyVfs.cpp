#include "Support/FaultyVfs.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace TestSupport {

using Bytes = std::vector<char>;

/** What all files share. */
struct CFaultyVfs::CState
{
    struct CFault
    {
        std::uint64_t m_From; ///< counts from 1
        bool m_Once;
        Failure m_Failure;
    };

    sqlite3_vfs* m_Real = nullptr;
    sqlite3_vfs m_Own{};
    std::array<std::uint64_t, OPERATIONS> m_Counts{};
    std::array<std::optional<CFault>, OPERATIONS> m_Faults{};
    std::uint64_t m_Count = 0;
    std::uint64_t m_KillAt = 0; ///< 0: never
    Kill m_Kill = Kill::Process;
    bool m_Killed = false;

    /** The result of an operation instead of its own; SQLITE_OK: it goes on. */
    int Begin(Operation operation);
};

namespace {

using CState = CFaultyVfs::CState;
using Operation = CFaultyVfs::Operation;

/** A file as SQLite sees it. SQLite provides the memory; the real file comes directly after this. */
struct CFile
{
    sqlite3_file m_Base;
    CState* m_State;
    bool m_HasDurable;
    bool m_IsRestored; ///< what a dying machine loses is lost
    Bytes* m_Durable;  ///< what survives a crash of the machine
    sqlite3_file* m_Real;
};

CFile& own(sqlite3_file* file)
{
    return *reinterpret_cast<CFile*>(file);
}

sqlite3_file* real(sqlite3_file* file)
{
    return own(file).m_Real;
}

CState& stateOf(sqlite3_vfs* vfs)
{
    return *static_cast<CState*>(vfs->pAppData);
}

// SQLite's own files do not take more at a time.
constexpr std::size_t CHUNK = 1U << 16U;

/** Calls `act` for each chunk of `content`: with its bytes, their number and their place. */
template<typename Content, typename Act>
void eachChunk(Content& content, Act act)
{
    for (std::size_t begin = 0; begin < content.size(); begin += CHUNK)
        act(content.data() + begin, static_cast<int>(std::min(CHUNK, content.size() - begin)),
            static_cast<sqlite3_int64>(begin));
}

Bytes contentOf(sqlite3_file* real)
{
    sqlite3_int64 size = 0;
    if (real->pMethods->xFileSize(real, &size) != SQLITE_OK)
        return {};
    Bytes content(static_cast<std::size_t>(size));
    eachChunk(content, [&](char* bytes, int count, sqlite3_int64 place) {
        real->pMethods->xRead(real, bytes, count, place);
    });
    return content;
}

void setContent(sqlite3_file* real, const Bytes& content)
{
    real->pMethods->xTruncate(real, 0);
    eachChunk(content, [&](const char* bytes, int count, sqlite3_int64 place) {
        real->pMethods->xWrite(real, bytes, count, place);
    });
}

/** The durable content with every second block of what came later. */
Bytes torn(const Bytes& durable, const Bytes& present)
{
    constexpr std::size_t block = 512;
    Bytes result = present;
    for (std::size_t begin = 0; begin < result.size(); begin += 2 * block)
        for (std::size_t i = begin; i < std::min(begin + block, result.size()); ++i)
            result[i] = i < durable.size() ? durable[i] : '\0';
    return result;
}

/** Takes from the file what it loses when the machine dies. Once for each file is enough. */
void loseUnsynchronised(CFile& file)
{
    const CFaultyVfs::Kill kill = file.m_State->m_Kill;
    if (!file.m_State->m_Killed || file.m_IsRestored || file.m_Durable == nullptr ||
        (kill != CFaultyVfs::Kill::Machine && kill != CFaultyVfs::Kill::MachineTorn))
        return;
    file.m_IsRestored = true;
    setContent(file.m_Real, kill == CFaultyVfs::Kill::Machine
                                ? *file.m_Durable
                                : torn(*file.m_Durable, contentOf(file.m_Real)));
}

int close(sqlite3_file* file)
{
    CFile& self = own(file);
    loseUnsynchronised(self);
    delete self.m_Durable;
    return self.m_Real->pMethods->xClose(self.m_Real);
}

int read(sqlite3_file* file, void* buffer, int amount, sqlite3_int64 offset)
{
    if (own(file).m_State->m_Killed)
        return SQLITE_IOERR_READ;
    return real(file)->pMethods->xRead(real(file), buffer, amount, offset);
}

int write(sqlite3_file* file, const void* buffer, int amount, sqlite3_int64 offset)
{
    CFile& self = own(file);
    const bool lived = !self.m_State->m_Killed;
    const int fault = self.m_State->Begin(Operation::Write);
    if (fault == SQLITE_OK)
        return self.m_Real->pMethods->xWrite(self.m_Real, buffer, amount, offset);
    if (lived && self.m_State->m_Killed && self.m_State->m_Kill == CFaultyVfs::Kill::ProcessTorn)
        self.m_Real->pMethods->xWrite(self.m_Real, buffer, amount / 2, offset);
    return fault;
}

int truncate(sqlite3_file* file, sqlite3_int64 size)
{
    const int fault = own(file).m_State->Begin(Operation::Truncate);
    return fault == SQLITE_OK ? real(file)->pMethods->xTruncate(real(file), size) : fault;
}

int sync(sqlite3_file* file, int flags)
{
    CFile& self = own(file);
    const int fault = self.m_State->Begin(Operation::Sync);
    if (fault != SQLITE_OK)
        return fault;
    if (self.m_Durable != nullptr)
        *self.m_Durable = contentOf(self.m_Real);
    // Nothing here depends on the machine's disk, so nobody has to wait for it.
    (void)flags;
    return SQLITE_OK;
}

int fileSize(sqlite3_file* file, sqlite3_int64* size)
{
    return real(file)->pMethods->xFileSize(real(file), size);
}

int lock(sqlite3_file* file, int level)
{
    const int fault = own(file).m_State->Begin(Operation::Lock);
    return fault == SQLITE_OK ? real(file)->pMethods->xLock(real(file), level) : fault;
}

int unlock(sqlite3_file* file, int level)
{
    return real(file)->pMethods->xUnlock(real(file), level);
}

int checkReservedLock(sqlite3_file* file, int* result)
{
    return real(file)->pMethods->xCheckReservedLock(real(file), result);
}

int fileControl(sqlite3_file* file, int operation, void* argument)
{
    return real(file)->pMethods->xFileControl(real(file), operation, argument);
}

int sectorSize(sqlite3_file* file)
{
    return real(file)->pMethods->xSectorSize(real(file));
}

int characteristics(sqlite3_file* file)
{
    return real(file)->pMethods->xDeviceCharacteristics(real(file));
}

int shmMap(sqlite3_file* file, int page, int size, int extend, void volatile** memory)
{
    if (own(file).m_State->m_Killed)
        return SQLITE_IOERR_SHMMAP;
    return real(file)->pMethods->xShmMap(real(file), page, size, extend, memory);
}

int shmLock(sqlite3_file* file, int offset, int count, int flags)
{
    // A lock is given back even by a process that dies.
    const int fault = (flags & SQLITE_SHM_LOCK) != 0 ? own(file).m_State->Begin(Operation::Lock) : SQLITE_OK;
    return fault == SQLITE_OK ? real(file)->pMethods->xShmLock(real(file), offset, count, flags) : fault;
}

void shmBarrier(sqlite3_file* file)
{
    real(file)->pMethods->xShmBarrier(real(file));
}

int shmUnmap(sqlite3_file* file, int remove)
{
    return real(file)->pMethods->xShmUnmap(real(file), own(file).m_State->m_Killed ? 0 : remove);
}

constexpr sqlite3_io_methods METHODS = {2,
                                        close,
                                        read,
                                        write,
                                        truncate,
                                        sync,
                                        fileSize,
                                        lock,
                                        unlock,
                                        checkReservedLock,
                                        fileControl,
                                        sectorSize,
                                        characteristics,
                                        shmMap,
                                        shmLock,
                                        shmBarrier,
                                        shmUnmap,
                                        nullptr,
                                        nullptr};

int openFile(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags)
{
    CState& state = stateOf(vfs);
    CFile& self = own(file);
    self = {};
    if (const int fault = state.Begin(Operation::Open); fault != SQLITE_OK)
        return fault == SQLITE_FULL ? SQLITE_CANTOPEN : fault;
    self.m_State = &state;
    self.m_Real = reinterpret_cast<sqlite3_file*>(&self + 1);
    const int result = state.m_Real->xOpen(state.m_Real, name, self.m_Real, flags, outFlags);
    if (self.m_Real->pMethods == nullptr)
        return result;
    // SQLite needs no temporary file after a crash.
    if (name != nullptr)
        self.m_Durable = new Bytes(contentOf(self.m_Real));
    self.m_Base.pMethods = &METHODS;
    return result;
}

int deleteFile(sqlite3_vfs* vfs, const char* name, int syncFolder)
{
    CState& state = stateOf(vfs);
    const int fault = state.Begin(Operation::Delete);
    return fault == SQLITE_OK ? state.m_Real->xDelete(state.m_Real, name, syncFolder) : fault;
}

} // namespace

int CFaultyVfs::CState::Begin(Operation operation)
{
    constexpr std::array device = {SQLITE_CANTOPEN,    SQLITE_IOERR_WRITE,  SQLITE_IOERR_TRUNCATE,
                                   SQLITE_IOERR_FSYNC, SQLITE_IOERR_DELETE, SQLITE_IOERR_LOCK};
    const auto place = static_cast<std::size_t>(operation);
    if (m_Killed)
        return device[place];
    ++m_Count;
    ++m_Counts[place];
    if (m_Count == m_KillAt) {
        m_Killed = true;
        return device[place];
    }
    const std::optional<CFault>& fault = m_Faults[place];
    if (!fault || m_Counts[place] < fault->m_From || (fault->m_Once && m_Counts[place] > fault->m_From))
        return SQLITE_OK;
    if (fault->m_Failure == Failure::Device)
        return device[place];
    return operation == Operation::Lock ? SQLITE_BUSY : SQLITE_FULL;
}

CFaultyVfs::CFaultyVfs() : m_State(std::make_unique<CState>())
{
    m_State->m_Real = sqlite3_vfs_find(nullptr);
    m_State->m_Own = *m_State->m_Real;
    sqlite3_vfs& own = m_State->m_Own;
    own.zName = "faulty";
    own.pAppData = m_State.get();
    own.szOsFile = static_cast<int>(sizeof(CFile)) + m_State->m_Real->szOsFile;
    own.xOpen = openFile;
    own.xDelete = deleteFile;
    sqlite3_vfs_register(&own, 1);
}

CFaultyVfs::~CFaultyVfs()
{
    sqlite3_vfs_unregister(&m_State->m_Own);
    sqlite3_vfs_register(m_State->m_Real, 1);
}

std::uint64_t CFaultyVfs::Count() const
{
    return m_State->m_Count;
}

std::uint64_t CFaultyVfs::Count(Operation operation) const
{
    return m_State->m_Counts[static_cast<std::size_t>(operation)];
}

void CFaultyVfs::FailFrom(Operation operation, std::uint64_t others, Failure failure)
{
    m_State->m_Faults[static_cast<std::size_t>(operation)] = {Count(operation) + others + 1, false, failure};
}

void CFaultyVfs::FailOnce(Operation operation, std::uint64_t others, Failure failure)
{
    m_State->m_Faults[static_cast<std::size_t>(operation)] = {Count(operation) + others + 1, true, failure};
}

void CFaultyVfs::Heal()
{
    m_State->m_Faults = {};
}

void CFaultyVfs::KillAfter(std::uint64_t others, Kill kill)
{
    m_State->m_KillAt = m_State->m_Count + others + 1;
    m_State->m_Kill = kill;
}

bool CFaultyVfs::Killed() const
{
    return m_State->m_Killed;
}

void CFaultyVfs::Revive()
{
    m_State->m_KillAt = 0;
    m_State->m_Killed = false;
}

} // namespace TestSupport
