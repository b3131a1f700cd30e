#include "PatientVfs.h"

#include <sqlite3.h>

#include <cstdint>
#include <thread>

namespace Database {

namespace {

constexpr int MICROSECONDS = 1000; ///< in one millisecond

thread_local CBusyPolicy* t_Policy = nullptr;

int waitByPolicy(sqlite3_vfs*, int microseconds)
{
    if (t_Policy == nullptr) {
        sqlite3_vfs* const usual = sqlite3_vfs_find(nullptr);
        return usual->xSleep(usual, microseconds);
    }
    // Without these pauses SQLite soon gives up, after a fixed number of attempts.
    if (microseconds < MICROSECONDS)
        std::this_thread::yield();
    else
        t_Policy->Wait(static_cast<std::uint64_t>(microseconds / MICROSECONDS));
    return microseconds;
}

class CPatientVfs
{
public:
    CPatientVfs()
    {
        const sqlite3_vfs* const usual = sqlite3_vfs_find(nullptr);
        if (usual == nullptr)
            return;
        m_Vfs = *usual;
        m_Vfs.zName = "ostrel-patient";
        m_Vfs.xSleep = waitByPolicy;
        m_IsRegistered = sqlite3_vfs_register(&m_Vfs, 0) == SQLITE_OK;
    }
    ~CPatientVfs()
    {
        if (m_IsRegistered)
            sqlite3_vfs_unregister(&m_Vfs);
    }
    CPatientVfs(const CPatientVfs&) = delete;
    CPatientVfs& operator=(const CPatientVfs&) = delete;

    const char* Name() const { return m_IsRegistered ? m_Vfs.zName : nullptr; }

private:
    sqlite3_vfs m_Vfs{};
    bool m_IsRegistered = false;
};

} // namespace

const char* patientVfs()
{
    static const CPatientVfs vfs;
    return vfs.Name();
}

CPolicyInForce::CPolicyInForce(CBusyPolicy& policy) : m_Former(t_Policy)
{
    t_Policy = &policy;
}

CPolicyInForce::~CPolicyInForce()
{
    t_Policy = m_Former;
}

} // namespace Database
