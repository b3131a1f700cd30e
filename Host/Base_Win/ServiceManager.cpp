#include "Base/ServiceManager.h"

// On this system no manager starts the program.
namespace Host::Platform {

struct ServiceManager::Native
{};

ServiceManager::ServiceManager() = default;
ServiceManager::~ServiceManager() = default;

void ServiceManager::ready() {}

void ServiceManager::reloading() {}

void ServiceManager::stopping() {}

void ServiceManager::status(const std::string& /*line*/) {}

std::optional<std::uint64_t> ServiceManager::lifeSignPeriod() const
{
    return std::nullopt;
}

void ServiceManager::alive() {}

} // namespace Host::Platform
