#pragma once

#include "Ostrel/Changes.h"
#include "Ostrel/NVMeDevices.h"
#include "Ostrel/ScanContext.h"
#include "Records/Adapter.h"
#include "Records/PhysicalDrive.h"
#include "Records/Plugin.h"
#include "Records/Trace.h"

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
#include <TLX/Thread.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace NAMESPACE_Ostrel {

class CDriveRowInsert;

/**
 * The plug-in object. The host calls only `Request`. The handlers that it dispatches to return a
 * `PI::_ERROR_CODE` and lock what they need. `m_DataLock` is always taken before `m_EventsLock`.
 */
class IPLUGINAPI_IMPL : public IPLUGINAPI
{
public:
    /** Loads the settings. Asks no drive. */
    IPLUGINAPI_IMPL();
    ~IPLUGINAPI_IMPL() override;

    std::uint32_t Request(std::int32_t request, std::uint64_t objectID, PI::CRequestData& data) override;

protected:
    // Requests.
    std::uint32_t Initialize(std::vector<PI::CAdapterID>& adapterIDs);
    /** Stores the host's identities and names the adapters by them. Starts the worker unless it runs. */
    std::uint32_t SetAdapterIDs(const std::vector<PI::CAdapterID>& adapterIDs);
    /** Stops the worker, by force when it does not end in time. */
    std::uint32_t DeInitialize();
    std::uint32_t GetTopology(std::vector<PI::CObject>& objects);
    std::uint32_t GetProperties(std::uint64_t objectID, std::vector<PI::CProperty>& properties);
    std::uint32_t GetProperty(std::uint64_t objectID, PI::CProperty& property);
    std::uint32_t SetProperty(std::uint64_t objectID, const PI::CProperty& property);
    std::uint32_t GetOperations(std::uint64_t objectID, std::vector<PI::COperation>& operations);
    std::uint32_t CheckOperation(std::uint64_t objectID, const PI::COperation& operation);
    std::uint32_t ExecuteOperation(std::uint64_t objectID, PI::COperation& operation);

    // Monitoring.
    /** The body of the worker thread: watches the drives until `m_StopRequest`. */
    void Worker();
    /**
     * Publishes a fresh scan, with an event for every change that hosts are told. Returns 0 when anything has
     * changed. The worker also holds `m_EventsLock` when it calls this.
     */
    std::uint32_t UpdateSystem(std::vector<CNVMeAdapter>& adapters,
                               std::vector<CNVMePhysicalDrive>& physicalDrives) TLX_REQUIRES(m_DataLock);
    /** How a fresh scan differs from the published state. Only raises change counters there. */
    CChanges Compare(const std::vector<CNVMeAdapter>& adapters,
                     const std::vector<CNVMePhysicalDrive>& physicalDrives) TLX_REQUIRES(m_DataLock);

    // Operations of the plug-in's own object.
    std::uint32_t ExecutePluginOperation(CNVMePlugin& plugin, PI::COperation& operation)
        TLX_REQUIRES(m_DataLock);
    /** Hands over all pending events. They are then no longer pending. */
    std::uint32_t GetEvents(CNVMePlugin& plugin, PI::COperation& operation) TLX_REQUIRES(m_DataLock);

    // Scanning. Callers hold m_DataLock, or have the object to themselves. All three always succeed: what a
    // drive does not tell stays unknown.
    /**
     * Makes the records of all devices afresh and links each adapter with its drive. Leaves out the devices
     * that never become objects. Published records keep their identifiers by serial number, except on an
     * `initial` scan: there the lists may be the published ones.
     */
    std::uint32_t ScanSystem(std::vector<CNVMeAdapter>& adapters,
                             std::vector<CNVMePhysicalDrive>& physicalDrives, bool initial)
        TLX_REQUIRES(m_DataLock);
    /** Fills in a new record from what the device has answered, and asks an Intel device for its own logs.
     * `deviceIndex` counts the devices from 0. */
    std::uint32_t ScanAdpater(CNVMeAdapter& adapter, std::uint32_t deviceIndex, const NVMeDevice& device,
                              CScanContext& context) TLX_REQUIRES(m_DataLock);
    /** The same for the drive of `adapter`, whose record is complete. */
    std::uint32_t ScanPhysicalDrive(CNVMePhysicalDrive& drive, const NVMeDevice& device,
                                    const CNVMeAdapter& adapter, const CScanContext& context)
        TLX_REQUIRES(m_DataLock);

    // Properties. `propertyId` is that of one property or `PI::ALL_PROPERTIES`. Callers hold m_DataLock.
    std::uint32_t GetPluginProperties(const CNVMePlugin& plugin, std::vector<PI::CProperty>& properties,
                                      std::uint32_t propertyId) TLX_REQUIRES(m_DataLock);
    /** Also updates the adapter's end-of-life date. */
    std::uint32_t GetAdapterProperties(CNVMeAdapter& adapter, std::vector<PI::CProperty>& properties,
                                       std::uint32_t propertyId) TLX_REQUIRES(m_DataLock);
    std::uint32_t GetPhysicalDriveProperties(const CNVMePhysicalDrive& drive,
                                             std::vector<PI::CProperty>& properties, std::uint32_t propertyId)
        TLX_REQUIRES(m_DataLock);
    /** Sets the poll interval, the only property that can be set, and stores it in the settings. */
    std::uint32_t SetPluginProperty(CNVMePlugin& plugin, const PI::CProperty& property)
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
    /** The same for a drive that is inserted many times. */
    std::uint32_t InsertObjectToDatabase(const CDriveRowInsert& insert);
    std::uint32_t UpdateObjectInDatabase(const CNVMePhysicalDrive& drive);
    /** Makes `row` afresh from `adapter`. */
    std::uint32_t SetDatabaseObjectProperties(RaidDataModels::Adapter& row, const CNVMeAdapter& adapter);
    /** Makes `row` afresh from `drive`. */
    std::uint32_t SetDatabaseObjectProperties(RaidDataModels::PD& row, const CNVMePhysicalDrive& drive);

    std::uint64_t m_IDCounter = 0;            ///< the next object identifier's lower 48 bits
    std::vector<PI::CAdapterID> m_AdapterIDs; ///< identities that the host handed over
    std::vector<PI::CEvent> m_Events TLX_GUARDED_BY(m_EventsLock); ///< not yet fetched by the host
    std::unique_ptr<TLX::Threading::CThread> m_WorkerThread;       ///< null until request 2
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
    /** The name of a lock or event that could not be made ready, and the result of its `Init`. */
    struct CLockFailure
    {
        const char* m_Name;
        std::uint32_t m_Result;
    };

    /** Makes the locks and events ready, up to the first that fails. */
    std::optional<CLockFailure> InitializeLocks();
    /** Whether there are devices. Returns false also when the enumeration failed. */
    bool FindDevices();
    /** Asks every device to identify itself. Drops those that fail even when asked again. */
    void IdentifyDevices();
    std::uint64_t NextObjectID();

    bool WorkerRuns();
    /** One cycle: scans the drives and calls the host after changes. */
    void RunCycle();
    /** Scans and updates. Returns 0 when anything has changed. */
    std::uint32_t Refresh() TLX_REQUIRES(m_DataLock);
    /**
     * Calls the host if it has set a callback. Ignores what the call throws, because that is the host's own
     * fault.
     */
    void NotifyHost();

    /** Makes `adapters` the children of the plug-in's object. */
    void LinkAdapters(std::vector<CNVMeAdapter>& adapters) TLX_REQUIRES(m_DataLock);
    /** Makes events pending. The caller may already hold `m_EventsLock`. */
    void AddEvents(const std::vector<PI::CEvent>& events);
    /** Writes the published changes to the database, and all rows anew when that is needed. */
    void Persist(const CChanges& changes) TLX_REQUIRES(m_DataLock);
    void WriteChanges(const CChanges& changes) TLX_REQUIRES(m_DataLock);
    void DeleteRemoved(const CChanges& changes) TLX_REQUIRES(m_DataLock);
    /**
     * Writes all present rows anew and deletes the rows of numbers that no adapter has any more. Stops at the
     * first failure.
     */
    bool RewriteRows() TLX_REQUIRES(m_DataLock);
    /**
     * Runs one operation on a row and returns whether it succeeded. Throws nothing but a forced end. After a
     * failure the next cycle writes all rows anew.
     */
    template<typename Record>
    bool WriteRow(std::uint32_t (IPLUGINAPI_IMPL::*operation)(const Record&), const Record& record)
        TLX_REQUIRES(m_DataLock);

    /** Whether an operation on a row has failed since all rows were last correct. */
    bool m_RowsFailed TLX_GUARDED_BY(m_DataLock) = false;
    /** Adapters as they were before they moved or went. The database may still have rows of their numbers. */
    std::vector<CNVMeAdapter> m_LeftNumbers TLX_GUARDED_BY(m_DataLock);

    // Objects by identifier: first the plug-in's own, then the adapters, then the drives.
    bool IsPlugin(std::uint64_t objectID) const TLX_REQUIRES(m_DataLock);
    bool IsAdapterOrDrive(std::uint64_t objectID) const TLX_REQUIRES(m_DataLock);
    /** Builds an object's properties for `request`, which is at `place`. */
    std::uint32_t BuildProperties(std::uint64_t objectID, std::vector<PI::CProperty>& properties,
                                  std::uint32_t propertyId, std::string_view request,
                                  const CTracePlace& place) TLX_REQUIRES(m_DataLock);
};

} // namespace NAMESPACE_Ostrel
