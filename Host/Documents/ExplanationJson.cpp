#include "Documents/ExplanationJson.h"

#include <nlohmann/json.hpp>

namespace Host::Cli {

nlohmann::ordered_json explanationsJson(const ObjectStore& store,
                                        const std::vector<const PI::CObject*>& objects)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const PI::CObject* object : objects)
        for (const ExplainedCode& each : explainedCodes(store, *object))
            list.push_back({{"object", identifierText(object->m_ID)},
                            {"property", each.m_Property->Id()},
                            {"code", each.m_Code},
                            {"text", each.m_Text},
                            {"meaning", each.m_Meaning},
                            {"advice", each.m_Advice}});
    return list;
}

} // namespace Host::Cli
