#include "OstrelPlugin/Operations.h"

namespace NAMESPACE_Ostrel {
namespace {

constexpr PI::COperationTemplate GET_EVENTS{PI::OPERATION_GET_EVENTS, 6, 1, 1, 1, false, 0, 1, 1};

} // namespace

std::vector<PI::COperation> pluginOperations()
{
    return {PI::COperation(GET_EVENTS)};
}

} // namespace NAMESPACE_Ostrel
