#pragma once

#include "Ostrel/PluginApi.h"

namespace TestSupport {

/** The plug-in object with its internals accessible. */
class CPluginUnderTest : public NAMESPACE_Ostrel::IPLUGINAPI_IMPL
{
public:
    using IPLUGINAPI_IMPL::Compare;
    using IPLUGINAPI_IMPL::DeInitialize;
    using IPLUGINAPI_IMPL::DeleteObjectFromDatabase;
    using IPLUGINAPI_IMPL::GetAdapterProperties;
    using IPLUGINAPI_IMPL::GetEvents;
    using IPLUGINAPI_IMPL::GetPhysicalDriveProperties;
    using IPLUGINAPI_IMPL::GetPluginProperties;
    using IPLUGINAPI_IMPL::GetTopology;
    using IPLUGINAPI_IMPL::Initialize;
    using IPLUGINAPI_IMPL::InsertObjectToDatabase;
    using IPLUGINAPI_IMPL::ScanAdpater;
    using IPLUGINAPI_IMPL::ScanPhysicalDrive;
    using IPLUGINAPI_IMPL::ScanSystem;
    using IPLUGINAPI_IMPL::SetAdapterIDs;
    using IPLUGINAPI_IMPL::SetDatabaseObjectProperties;
    using IPLUGINAPI_IMPL::SetPluginProperty;
    using IPLUGINAPI_IMPL::UpdateObjectInDatabase;
    using IPLUGINAPI_IMPL::UpdateSystem;
    using IPLUGINAPI_IMPL::Worker;

    using IPLUGINAPI_IMPL::m_AdapterIDs;
    using IPLUGINAPI_IMPL::m_Adapters;
    using IPLUGINAPI_IMPL::m_Database;
    using IPLUGINAPI_IMPL::m_DataLock;
    using IPLUGINAPI_IMPL::m_Events;
    using IPLUGINAPI_IMPL::m_EventsLock;
    using IPLUGINAPI_IMPL::m_ForceWorker;
    using IPLUGINAPI_IMPL::m_IDCounter;
    using IPLUGINAPI_IMPL::m_NVMeDevices;
    using IPLUGINAPI_IMPL::m_PhysicalDrives;
    using IPLUGINAPI_IMPL::m_Plugin;
    using IPLUGINAPI_IMPL::m_PollInterval;
    using IPLUGINAPI_IMPL::m_PrivateEvent;
    using IPLUGINAPI_IMPL::m_StopRequest;
    using IPLUGINAPI_IMPL::m_WorkerThread;
};

} // namespace TestSupport
