#include "Ostrel/PluginApi.h"

#include "Ostrel/Guarded.h"
#include "OstrelPlugin/PollInterval.h"
#include "Records/Module.h"

#include <Database/Database.h>

#include <algorithm>
#include <iterator>
#include <type_traits>

namespace NAMESPACE_Ostrel {
namespace {

using PI::CRequestData;

using AdapterIDs = std::vector<PI::CAdapterID>;
using Objects = std::vector<PI::CObject>;
using Properties = std::vector<PI::CProperty>;
using Operations = std::vector<PI::COperation>;

/** How a request is carried out. */
struct CRequestRow
{
    PI::_REQUEST m_Request;
    bool (*m_Fits)(const CRequestData&); ///< whether the container is the request's
    void (*m_Empty)(CRequestData&);      ///< what a failure does to the container; null: nothing
    std::uint32_t (*m_Handler)(IPLUGINAPI_IMPL&, std::uint64_t objectID, CRequestData&);
};

bool anything(const CRequestData&)
{
    return true;
}

template<typename Container>
bool carries(const CRequestData& data)
{
    return std::holds_alternative<Container>(data);
}

template<typename List>
void empty(CRequestData& data)
{
    std::get<List>(data).clear();
}

// The handlers come in three shapes.

std::uint32_t invoke(IPLUGINAPI_IMPL& plugin, std::uint32_t (IPLUGINAPI_IMPL::*handler)(),
                     std::uint64_t /*objectID*/, CRequestData& /*data*/)
{
    return (plugin.*handler)();
}

template<typename Container>
std::uint32_t invoke(IPLUGINAPI_IMPL& plugin, std::uint32_t (IPLUGINAPI_IMPL::*handler)(Container&),
                     std::uint64_t /*objectID*/, CRequestData& data)
{
    return (plugin.*handler)(std::get<std::remove_const_t<Container>>(data));
}

template<typename Container>
std::uint32_t invoke(IPLUGINAPI_IMPL& plugin,
                     std::uint32_t (IPLUGINAPI_IMPL::*handler)(std::uint64_t, Container&),
                     std::uint64_t objectID, CRequestData& data)
{
    return (plugin.*handler)(objectID, std::get<std::remove_const_t<Container>>(data));
}

template<auto Handler>
std::uint32_t call(IPLUGINAPI_IMPL& plugin, std::uint64_t objectID, CRequestData& data)
{
    return invoke(plugin, Handler, objectID, data);
}

} // namespace

IPLUGINAPI_IMPL::IPLUGINAPI_IMPL()
{
    m_Database = getDatabasePointer();
    m_ConfigFile.SetFileName("Ostrel.ini");
    m_PollInterval = readPollInterval(m_ConfigFile);
}

IPLUGINAPI_IMPL::~IPLUGINAPI_IMPL() = default;

std::uint32_t IPLUGINAPI_IMPL::Request(std::int32_t request, std::uint64_t objectID, PI::CRequestData& data)
{
    static constexpr CRequestRow ROWS[] = {
        {PI::REQUEST_INITIALIZE, carries<AdapterIDs>, empty<AdapterIDs>, call<&IPLUGINAPI_IMPL::Initialize>},
        {PI::REQUEST_SET_ADAPTER_IDS, carries<AdapterIDs>, nullptr, call<&IPLUGINAPI_IMPL::SetAdapterIDs>},
        {PI::REQUEST_DEINITIALIZE, anything, nullptr, call<&IPLUGINAPI_IMPL::DeInitialize>},
        {PI::REQUEST_GET_TOPOLOGY, carries<Objects>, empty<Objects>, call<&IPLUGINAPI_IMPL::GetTopology>},
        {PI::REQUEST_GET_PROPERTIES, carries<Properties>, empty<Properties>,
         call<&IPLUGINAPI_IMPL::GetProperties>},
        {PI::REQUEST_GET_PROPERTY, carries<PI::CProperty>, nullptr, call<&IPLUGINAPI_IMPL::GetProperty>},
        {PI::REQUEST_SET_PROPERTY, carries<PI::CProperty>, nullptr, call<&IPLUGINAPI_IMPL::SetProperty>},
        {PI::REQUEST_GET_OPERATIONS, carries<Operations>, empty<Operations>,
         call<&IPLUGINAPI_IMPL::GetOperations>},
        {PI::REQUEST_CHECK_OPERATION, carries<PI::COperation>, nullptr,
         call<&IPLUGINAPI_IMPL::CheckOperation>},
        {PI::REQUEST_EXECUTE_OPERATION, carries<PI::COperation>, nullptr,
         call<&IPLUGINAPI_IMPL::ExecuteOperation>},
    };
    const auto* row = std::find_if(std::begin(ROWS), std::end(ROWS), [request](const CRequestRow& candidate) {
        return candidate.m_Request == request;
    });
    if (row == std::end(ROWS))
        return PI::ERR_UNKNOWN_REQUEST;
    if (!row->m_Fits(data))
        return PI::ERR_GENERAL_FAILURE;

    const std::uint32_t result = guarded([&] { return row->m_Handler(*this, objectID, data); });
    if (result != PI::ERR_SUCCESS && row->m_Empty != nullptr)
        row->m_Empty(data);
    return result;
}

std::uint64_t IPLUGINAPI_IMPL::NextObjectID()
{
    constexpr unsigned MODULE_SHIFT = 48;
    return m_IDCounter++ | (std::uint64_t{MODULE_ID} << MODULE_SHIFT);
}

} // namespace NAMESPACE_Ostrel
