#pragma once

#include "Plugins/ObjectStore.h"
#include "Plugins/PluginLibrary.h"

#include <PI/Object.h>
#include <PI/Property.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Host::Cli {

/** A property and the object that has it. */
struct NamedProperty
{
    const PI::CObject& m_Object;
    const PI::CProperty& m_Property;
};

/**
 * The property of the objects with this number or caption. Case and blanks do not matter. The first one with
 * a value is taken, because an adapter without a name must not hide the name of its drive. Throws `Failure`
 * (wrong usage) with a list of the properties when there is none.
 */
NamedProperty namedProperty(const std::vector<const PI::CObject*>& objects, std::string_view name);

/**
 * Changes a property of an object and returns it with its new value. The plug-in keeps the value within its
 * bounds. Throws `Failure`: wrong usage when the value has the wrong form, a failed request when the property
 * cannot be set. If the file `settings` is the reason, the message says what is wrong with it.
 */
PI::CProperty setProperty(PluginLibrary& plugin, const PI::CObject& object, const PI::CProperty& property,
                          std::string_view value, const std::filesystem::path& settings);

/** The value that a property has now. If it is not the one that was asked for, the reason. */
std::string setText(const PI::CProperty& property, std::string_view value);

} // namespace Host::Cli
