#pragma once

#include "Commands/Session.h"
#include "Plugins/ObjectStore.h"
#include "Terminal/Screen.h"

#include <string>
#include <string_view>
#include <vector>

namespace Host::Cli {

/** Prints the objects that the user named, or one property of them. Throws `Failure`. */
ExitCode show(const Session& session);

/** A property and the object that has it. */
struct NamedProperty
{
    const PI::CObject& m_Object;
    const PI::CProperty& m_Property;
};

/**
 * The properties of the objects below headings, with the meaning of their states and the figures of their
 * end-of-life dates.
 */
std::string showText(const ObjectStore& store, const std::vector<const PI::CObject*>& objects,
                     const Screen& screen);

/**
 * The property of the objects with this number or caption. Case and blanks do not matter. The first one with
 * a value is taken, because an adapter without a name must not hide the name of its drive. Throws `Failure`
 * (wrong usage) with a list of the properties when there is none.
 */
NamedProperty namedProperty(const std::vector<const PI::CObject*>& objects, std::string_view name);

} // namespace Host::Cli
