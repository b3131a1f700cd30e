#include "Documents/ShowJson.h"

#include "Documents/EndOfLifeJson.h"
#include "Documents/ExplanationJson.h"
#include "Documents/Json.h"
#include "Facts/Measured.h"
#include "Facts/PropertySetting.h"

#include <nlohmann/json.hpp>

namespace Host::Cli {

nlohmann::ordered_json showJson(const ObjectStore& store, const std::vector<const PI::CObject*>& objects)
{
    nlohmann::ordered_json document = {{"objects", nlohmann::ordered_json::array()}};
    for (const PI::CObject* object : objects)
        document["objects"].push_back(objectJson(store, *object));
    document["facts"] = ownFactsJson(store, objects);
    document["explanations"] = explanationsJson(store, objects);
    document["endOfLife"] = endOfLifeJson(store, objects);
    return document;
}

nlohmann::ordered_json showPropertyJson(const ObjectStore& store,
                                        const std::vector<const PI::CObject*>& objects,
                                        const std::string& name)
{
    const NamedProperty named = namedProperty(objects, name);
    return {{"property", propertyJson(named.m_Property, basisOf(store, named.m_Object, named.m_Property))}};
}

} // namespace Host::Cli
