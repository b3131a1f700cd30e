#pragma once

#include "Records/Adapter.h"
#include "Records/IdentityIndex.h"
#include "Records/Lifetime.h"
#include "Records/PhysicalDrive.h"
#include "Records/SerialIndex.h"

#include <PI/LifeTimeData.h>
#include <TLXX/System.h>

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace NAMESPACE_Ostrel {

/**
 * Look-ups that one scan does again and again. The lists that it was made from must outlive it, unchanged.
 */
class CScanContext
{
public:
    explicit CScanContext(const std::vector<PI::CAdapterID>& identities) : m_Identities(identities) {}

    /** The version of a driver, read once. */
    const std::string& DriverVersion(const std::string& driver)
    {
        const auto known = m_DriverVersions.find(driver);
        if (known != m_DriverVersions.end())
            return known->second;
        return m_DriverVersions[driver] = TLXX::CSystem::GetModuleVersion(driver);
    }

    /** The rating of a model, looked up once. */
    std::uint64_t LifetimeRating(const std::string& model)
    {
        const auto known = m_LifetimeRatings.find(model);
        if (known != m_LifetimeRatings.end())
            return known->second;
        // Loaded once for each scan, because each call tries again to read a table that could not be read.
        if (m_LifetimeTable == nullptr)
            m_LifetimeTable = &PI::GetLifeTimeDataNVMe();
        return m_LifetimeRatings[model] = lifetimeRating(*m_LifetimeTable, model);
    }

    /** The identities that the host has handed over. */
    const CIdentityIndex m_Identities;

    /**
     * The published records, from which records take their identifiers; none when nothing is published yet.
     */
    std::optional<CSerialIndex<const CNVMeAdapter>> m_PublishedAdapters;
    std::optional<CSerialIndex<const CNVMePhysicalDrive>> m_PublishedDrives;

private:
    std::unordered_map<std::string, std::string> m_DriverVersions;
    const std::vector<PI::CNVMeLifeTimeData>* m_LifetimeTable = nullptr;
    std::unordered_map<std::string, std::uint64_t> m_LifetimeRatings;
};

} // namespace NAMESPACE_Ostrel
