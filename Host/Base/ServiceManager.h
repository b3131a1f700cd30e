#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace Host::Platform {

/**
 * The service manager that started this process. Without one, every function does nothing. Nothing here
 * throws or waits long, because a manager that does not answer must not stop the service.
 */
class ServiceManager
{
public:
    /**
     * Takes what the manager tells in the environment, and removes it there, so that no other process takes
     * it for its own. Create it while the process has a single thread.
     */
    ServiceManager();
    ~ServiceManager();
    ServiceManager(const ServiceManager&) = delete;
    ServiceManager& operator=(const ServiceManager&) = delete;

    /** The service works from now on, or works again after `reloading`. */
    void ready();
    /** The service reads its settings again. */
    void reloading();
    /** The service is about to end. */
    void stopping();
    /** One line for people about what the service does now. */
    void status(const std::string& line);

    /** The manager wants `alive` to be called at least this often, in milliseconds. None: it does not. */
    std::optional<std::uint64_t> lifeSignPeriod() const;
    void alive();

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

} // namespace Host::Platform
