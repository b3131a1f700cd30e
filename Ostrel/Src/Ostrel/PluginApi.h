#pragma once

#include "Ostrel/NVMeDevices.h"
#include "OstrelAdapter/Record.h"
#include "OstrelPhysicalDrive/Record.h"
#include "OstrelPlugin/Record.h"

#include <DatabaseORM/Models.h>
#include <DatabaseORM/Storage.h>
#include <PI/AdapterID.h>
#include <PI/ConfigFile.h>
#include <PI/Event.h>
#include <PI/IPluginApi.h>
#include <PI/Object.h>
#include <PI/Operation.h>
#include <PI/Property.h>
#include <TLX/Event.h>
#include <TLX/FastMutex.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace NAMESPACE_Ostrel {

/**
 * The plug-in object. The host reaches it through `Request` alone; the handlers behind it return a
 * `PI::_ERROR_CODE` and lock what they need. `m_DataLock` is always taken before `m_EventsLock`.
 */
class IPLUGINAPI_IMPL : public IPLUGINAPI
{
public:
    /** Loads the settings; touches no drive. */
    IPLUGINAPI_IMPL();
    ~IPLUGINAPI_IMPL() override;

    std::uint32_t Request(std::int32_t request, std::uint64_t objectID, PI::CRequestData& data) override;

protected:
    // Requests.
    std::uint32_t Initialize(std::vector<PI::CAdapterID>& adapterIDs);
    std::uint32_t GetTopology(std::vector<PI::CObject>& objects);

    // Scanning. Callers hold m_DataLock, or are alone with the object.
    std::uint32_t ScanSystem(std::vector<CNVMeAdapter>& adapters,
                             std::vector<CNVMePhysicalDrive>& physicalDrives, bool initial)
        TLX_REQUIRES(m_DataLock);
    std::uint32_t ScanAdpater(CNVMeAdapter& adapter, std::uint32_t deviceIndex, const NVMeDevice& device,
                              bool initial) TLX_REQUIRES(m_DataLock);
    std::uint32_t ScanPhysicalDrive(CNVMePhysicalDrive& drive, const NVMeDevice& device,
                                    const CNVMeAdapter& adapter, bool initial) TLX_REQUIRES(m_DataLock);

    // Properties. `propertyId` is one property's or `PI::ALL_PROPERTIES`. Callers hold m_DataLock.
    std::uint32_t GetPluginProperties(const CNVMePlugin& plugin, std::vector<PI::CProperty>& properties,
                                      std::uint32_t propertyId) TLX_REQUIRES(m_DataLock);
    /** Also renews the adapter's end-of-life date. */
    std::uint32_t GetAdapterProperties(CNVMeAdapter& adapter, std::vector<PI::CProperty>& properties,
                                       std::uint32_t propertyId) TLX_REQUIRES(m_DataLock);
    std::uint32_t GetPhysicalDriveProperties(const CNVMePhysicalDrive& drive,
                                             std::vector<PI::CProperty>& properties, std::uint32_t propertyId)
        TLX_REQUIRES(m_DataLock);

    // Rows of the host's database. A failure of the database is traced and becomes `ERR_GENERAL_FAILURE`; the
    // records stay as they are. An update finds its row by its keys and does nothing when there is none.
    // Callers never run two of these at once.
    std::uint32_t InsertObjectToDatabase(const CNVMePlugin& plugin);
    std::uint32_t UpdateObjectInDatabase(const CNVMePlugin& plugin);
    std::uint32_t DeleteObjectFromDatabase(const CNVMePlugin& plugin);
    std::uint32_t InsertObjectToDatabase(const CNVMeAdapter& adapter);
    std::uint32_t UpdateObjectInDatabase(const CNVMeAdapter& adapter);
    std::uint32_t DeleteObjectFromDatabase(const CNVMeAdapter& adapter);
    std::uint32_t InsertObjectToDatabase(const CNVMePhysicalDrive& drive);
    std::uint32_t UpdateObjectInDatabase(const CNVMePhysicalDrive& drive);
    /** Makes `row` afresh from `adapter`. */
    std::uint32_t SetDatabaseObjectProperties(RaidDataModels::Adapter& row, const CNVMeAdapter& adapter);
    /** Makes `row` afresh from `drive`. */
    std::uint32_t SetDatabaseObjectProperties(RaidDataModels::PD& row, const CNVMePhysicalDrive& drive);

    std::uint64_t m_IDCounter = 0;            ///< the next object identifier's lower 48 bits
    std::vector<PI::CAdapterID> m_AdapterIDs; ///< identities that the host handed over
    std::vector<PI::CEvent> m_Events TLX_GUARDED_BY(m_EventsLock); ///< not yet fetched by the host
    std::shared_ptr<DatabaseORM::storage_t> m_Database; ///< shared with the host and its other plug-ins
    PI::CConfigFile m_ConfigFile;
    std::atomic<std::uint32_t> m_PollInterval = 0; ///< seconds
    CNVMePlugin m_Plugin TLX_GUARDED_BY(m_DataLock);
    std::vector<CNVMeAdapter> m_Adapters TLX_GUARDED_BY(m_DataLock);
    std::vector<CNVMePhysicalDrive> m_PhysicalDrives TLX_GUARDED_BY(m_DataLock);
    NVMeDevices m_NVMeDevices;
    TLX::Threading::Native_OS::CFastMutex m_DataLock;
    TLX::Threading::Native_OS::CFastMutex m_EventsLock;
    TLX::Threading::CEvent m_ForceWorker;  ///< wakes the worker for an immediate scan
    TLX::Threading::CEvent m_StopRequest;  ///< asks the worker to end
    TLX::Threading::CEvent m_PrivateEvent; ///< wakes the worker to notify the host at once

private:
    /** A lock or event that could not be made ready, and what its `Init` returned. */
    struct CLockFailure
    {
        const char* m_Name;
        std::uint32_t m_Result;
    };

    void LoadSettings();
    /** Makes the locks and events ready, up to the first that fails. */
    std::optional<CLockFailure> InitializeLocks();
    /** Asks every device what it is; those that do not say even when asked again are dropped. */
    void IdentifyDevices();
    std::uint64_t NextObjectID();
};

} // namespace NAMESPACE_Ostrel
