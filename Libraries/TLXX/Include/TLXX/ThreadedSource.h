#pragma once

#include <TLXX/DeviceBackend.h>
#include <TLXX/DriveSource.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace TLXX {

/**
 * Asks drives by the blocking queries of a back-end. One thread asks drive after drive. As long as drives
 * keep it waiting, more threads help, up to one a drive. A thread ends when no drive is left to ask. A thread
 * whose query never returns lives on after destruction, together with its share of the back-end.
 */
class TLXX_EXPORT CThreadedSource : public IDriveSource
{
public:
    /** Throws `std::runtime_error` when the system gives no event. */
    explicit CThreadedSource(std::shared_ptr<IDeviceBackend> backend);
    ~CThreadedSource() override;

    void Submit(const CDriveAddress& drive, const std::vector<CDriveCommand>& commands) override;
    std::optional<CDriveAnswer> Wait(std::uint64_t until) override;
    void Wake() override;

private:
    struct Shared;

    /** Called with the lock of `m_Shared` held. */
    void StartThreads(std::size_t count);

    const std::shared_ptr<Shared> m_Shared;
    std::uint64_t m_LastStart = 0; ///< when threads were last started
};

} // namespace TLXX
