#pragma once

#include "ScanFixture.h"

#include <TLX/WaitResult.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace TestSupport {

template<typename Record>
std::vector<std::string> serials(const std::vector<Record>& records)
{
    std::vector<std::string> texts;
    for (const Record& record : records)
        texts.push_back(record.m_SerialNumber);
    return texts;
}

inline std::vector<std::uint32_t> identifiers(const std::vector<PI::CEvent>& events)
{
    std::vector<std::uint32_t> ids;
    for (const PI::CEvent& event : events)
        ids.push_back(event.m_Id);
    return ids;
}

/** Publishes scans as the worker does, with both locks held. */
class UpdateSystem : public CScanFixture
{
protected:
    UpdateSystem()
    {
        for (auto* lock : {&m_Plugin.m_DataLock, &m_Plugin.m_EventsLock}) {
            EXPECT_EQ(lock->Init(), TLX::Threading::WaitResult::Taken);
            EXPECT_EQ(lock->Wait(), TLX::Threading::WaitResult::Taken);
        }
        m_Plugin.m_Plugin.m_ID = FIRST_ID | 0xFFFF;
        for (std::uint32_t bus = 0; bus < 10; ++bus) {
            PI::CAdapterID identity;
            identity.m_Bus = bus;
            identity.m_AdapterNumber = bus;
            m_Plugin.m_AdapterIDs.push_back(identity);
        }
    }

    ~UpdateSystem() override
    {
        m_Plugin.m_EventsLock.Release();
        m_Plugin.m_DataLock.Release();
    }

    /** Publishes the machine's present drives as the first inventory. */
    void PublishFirst()
    {
        Scan();
        Publish();
    }

    /** Scans again and merges the result. */
    std::uint32_t Update()
    {
        Scan(false);
        return m_Plugin.UpdateSystem(m_Adapters, m_Drives);
    }

    NAMESPACE_Ostrel::CChanges Compare()
    {
        Scan(false);
        return m_Plugin.Compare(m_Adapters, m_Drives);
    }

    NAMESPACE_Ostrel::CNVMeAdapter Adapter(const std::string& serial, std::uint64_t id)
    {
        NAMESPACE_Ostrel::CNVMeAdapter adapter;
        adapter.m_SerialNumber = serial;
        adapter.m_ID = id;
        return adapter;
    }

    NAMESPACE_Ostrel::CNVMePhysicalDrive Drive(const std::string& serial, std::uint64_t id)
    {
        NAMESPACE_Ostrel::CNVMePhysicalDrive drive;
        drive.m_SerialNumber = serial;
        drive.m_ID = id;
        return drive;
    }
};

} // namespace TestSupport
