#pragma once

#include <PI/AdapterID.h>
#include <PI/Export.h>
#include <PI/Object.h>
#include <PI/Operation.h>
#include <PI/Property.h>

#include <cstdint>
#include <variant>
#include <vector>

namespace PI {

/**
 * The requests of a host to a plug-in. Each comment names the `CRequestData` alternative that the request
 * uses.
 */
enum _REQUEST : std::int32_t
{
    REQUEST_INITIALIZE = 1,         ///< out: list of `CAdapterID`
    REQUEST_SET_ADAPTER_IDS = 2,    ///< in: list of `CAdapterID`
    REQUEST_DEINITIALIZE = 3,       ///< anything
    REQUEST_GET_TOPOLOGY = 4,       ///< out: list of `CObject`
    REQUEST_GET_PROPERTIES = 5,     ///< out: list of `CProperty`
    REQUEST_GET_PROPERTY = 6,       ///< in and out: `CProperty`
    REQUEST_SET_PROPERTY = 7,       ///< in: `CProperty`
    REQUEST_GET_OPERATIONS = 8,     ///< out: list of `COperation`
    REQUEST_CHECK_OPERATION = 9,    ///< in: `COperation`
    REQUEST_EXECUTE_OPERATION = 10, ///< in and out: `COperation`
};

/** The data of a request. The caller sets the alternative that the request uses. */
using CRequestData = std::variant<std::monostate, std::vector<CAdapterID>, std::vector<CObject>,
                                  std::vector<CProperty>, CProperty, std::vector<COperation>, COperation>;

} // namespace PI

/**
 * A plug-in as its host sees it. The host sets `m_HostContext` and `m_HostCallback` before the first request.
 * When there is something to collect, the plug-in calls `m_HostCallback(m_HostContext, this)` from a thread
 * of its own.
 *
 * Requests come in this order: 1, then 2, then 4 to 10 in any order, then 3. Request 1 takes no lock, so a
 * host sends it once in a life, while no worker runs. After a failed request 1 only request 3 and the release
 * may follow. Request 2 may be repeated; it starts a worker only when none runs. After request 3 pending
 * events can still be collected, and a new life may begin with request 1; its objects have new identifiers.
 *
 * Request 3 returns 0 even when it could not end the worker. While such a worker runs
 * (`TLX::Threading::cancelledThreadRuns`), the host must send no request, must not release the object and
 * must not unload its library. So a plug-in must create its threads as `TLX::Threading::CThread`.
 */
class PI_EXPORT IPLUGINAPI
{
public:
    /** Called from a thread of the plug-in. */
    using HostCallback = void (*)(std::uintptr_t context, IPLUGINAPI* plugin);

    /** The version of the interface in this header. A host refuses an object with another version word. */
    static constexpr std::uint32_t VERSION = 2;

    IPLUGINAPI() = default;
    IPLUGINAPI(const IPLUGINAPI&) = delete;
    IPLUGINAPI& operator=(const IPLUGINAPI&) = delete;

    /**
     * Carries out `request` (a `PI::_REQUEST`) on the object `objectID` and returns a `PI::_ERROR_CODE`.
     * Throws nothing. A failed request that fills a list leaves it empty. A container of the wrong type gives
     * a general failure and is not changed. Safe from any thread after request 1 has returned.
     */
    virtual std::uint32_t Request(std::int32_t request, std::uint64_t objectID, PI::CRequestData& data) = 0;

    virtual ~IPLUGINAPI();

    std::uint32_t m_Version = VERSION;
    std::uint32_t m_Module = 0; ///< the plug-in's module number
    std::uintptr_t m_HostContext = 0;
    HostCallback m_HostCallback = nullptr;
};

/** The two exports of a plug-in library, "createIf" and "releaseIf". */
using CreateIfFunction = std::uint32_t (*)(IPLUGINAPI** plugin);
using ReleaseIfFunction = void (*)(IPLUGINAPI** plugin);
