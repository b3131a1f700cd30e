#include "Plugins/KeptRows.h"

#include "Base/Text.h"

#include <Database/Maintenance.h>
#include <DatabaseORM/DatabaseException.h>

#include <optional>
#include <utility>
#include <vector>

namespace Host {
namespace {

/** Null when the object is no adapter. */
const std::uint64_t* adapterNumber(const PI::CObject& object)
{
    const PI::CProperty* property = findProperty(object, PI::PROP_ADAPTER_NUMBER);
    return object.m_Type == PI::TYPE_ADAPTER && property != nullptr
               ? std::get_if<std::uint64_t>(&property->GetValue())
               : nullptr;
}

/** Returns false when rows were written after `changes` was counted. */
bool removeRowsOfOthers(const ObjectStore& inventory, std::int64_t changes)
{
    std::vector<std::int32_t> numbers;
    std::vector<std::string> serials;
    for (const PI::CObject& object : inventory.objects()) {
        if (object.m_Type == PI::TYPE_PHYSICAL_DRIVE)
            serials.push_back(textOf(object, PI::PROP_SERIAL_NUMBER));
        else if (const std::uint64_t* number = adapterNumber(object))
            numbers.push_back(static_cast<std::int32_t>(*number));
    }
    return removeOtherObjects(numbers, serials, changes);
}

} // namespace

KeptRows::KeptRows(Warn warn) : m_Warn(std::move(warn)) {}

void KeptRows::cleanUp(const std::function<ObjectStore()>& look)
{
    constexpr int attempts = 5;
    try {
        for (int attempt = 0; attempt < attempts; ++attempt) {
            const std::int64_t changes = countDatabaseChanges();
            if (removeRowsOfOthers(look(), changes))
                break;
        }
    } catch (const DBEXCEPTION::DatabaseException&) {
        // The failure is not lost. The database keeps it as its last failure.
    }
    tellFailure();
}

void KeptRows::tellFailure()
{
    const std::optional<std::string> failure = takeDatabaseFailure();
    if (failure && m_Told.isNew(*failure))
        m_Warn("The rows of the drives may not have been kept: " + printable(*failure) + ".");
}

} // namespace Host
