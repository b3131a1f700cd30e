#include "Ostrel/PluginApi.h"

#include "Ostrel/Guarded.h"
#include "Ostrel/Module.h"

#include <Database/Database.h>

#include <algorithm>
#include <iterator>

namespace NAMESPACE_Ostrel {
namespace {

using PI::CRequestData;

using AdapterIDs = std::vector<PI::CAdapterID>;
using Objects = std::vector<PI::CObject>;
using Properties = std::vector<PI::CProperty>;
using Operations = std::vector<PI::COperation>;

/** How one request is carried out. */
struct CRequestRow
{
    PI::_REQUEST m_Request;
    bool (*m_Fits)(const CRequestData&); ///< whether the container is the request's
    void (*m_Empty)(CRequestData&);      ///< what a failure does to the container; null: nothing
    std::uint32_t (*m_Handler)(IPLUGINAPI_IMPL&, CRequestData&); ///< null: not carried out
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

template<typename Container>
std::uint32_t invoke(IPLUGINAPI_IMPL& plugin, std::uint32_t (IPLUGINAPI_IMPL::*handler)(Container&),
                     CRequestData& data)
{
    return (plugin.*handler)(std::get<Container>(data));
}

template<auto Handler>
std::uint32_t call(IPLUGINAPI_IMPL& plugin, CRequestData& data)
{
    return invoke(plugin, Handler, data);
}

} // namespace

IPLUGINAPI_IMPL::IPLUGINAPI_IMPL()
{
    m_Database = getDatabasePointer();
    LoadSettings();
}

IPLUGINAPI_IMPL::~IPLUGINAPI_IMPL() = default;

std::uint32_t IPLUGINAPI_IMPL::Request(std::int32_t request, std::uint64_t /*objectID*/,
                                       PI::CRequestData& data)
{
    static constexpr CRequestRow ROWS[] = {
        {PI::REQUEST_INITIALIZE, carries<AdapterIDs>, empty<AdapterIDs>, call<&IPLUGINAPI_IMPL::Initialize>},
        {PI::REQUEST_SET_ADAPTER_IDS, carries<AdapterIDs>, nullptr, nullptr},
        {PI::REQUEST_DEINITIALIZE, anything, nullptr, nullptr},
        {PI::REQUEST_GET_TOPOLOGY, carries<Objects>, empty<Objects>, call<&IPLUGINAPI_IMPL::GetTopology>},
        {PI::REQUEST_GET_PROPERTIES, carries<Properties>, empty<Properties>, nullptr},
        {PI::REQUEST_GET_PROPERTY, carries<PI::CProperty>, nullptr, nullptr},
        {PI::REQUEST_SET_PROPERTY, carries<PI::CProperty>, nullptr, nullptr},
        {PI::REQUEST_GET_OPERATIONS, carries<Operations>, empty<Operations>, nullptr},
        {PI::REQUEST_CHECK_OPERATION, carries<PI::COperation>, nullptr, nullptr},
        {PI::REQUEST_EXECUTE_OPERATION, carries<PI::COperation>, nullptr, nullptr},
    };
    const auto* row = std::find_if(std::begin(ROWS), std::end(ROWS), [request](const CRequestRow& candidate) {
        return candidate.m_Request == request;
    });
    if (row == std::end(ROWS))
        return PI::ERR_UNKNOWN_REQUEST;
    if (!row->m_Fits(data))
        return PI::ERR_GENERAL_FAILURE;

    std::uint32_t result = PI::ERR_GENERAL_FAILURE;
    if (row->m_Handler != nullptr)
        result = guarded([&] { return row->m_Handler(*this, data); });
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
