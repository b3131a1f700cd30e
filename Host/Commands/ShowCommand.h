#pragma once

#include "Commands/Session.h"
#include "Plugins/ObjectStore.h"
#include "Terminal/Screen.h"

#include <string>
#include <string_view>
#include <vector>

namespace Host::Cli {

/** Prints the objects that the user named, or one property of theirs. Throws `Failure`. */
ExitCode show(const Session& session);

/** A property and the object that has it. */
struct NamedProperty
{
    const PI::CObject& m_Object;
    const PI::CProperty& m_Property;
};

/** Headings and properties of the objects, with what their states mean and where their dates come from. */
std::string showText(const ObjectStore& store, const std::vector<const PI::CObject*>& objects,
                     const Screen& screen);

/**
 * The property of the objects with this number or caption, case and blanks aside: the first that has a value,
 * for an adapter without a name must not hide that of its drive. Throws `Failure` (wrong usage), listing what
 * there is, when there is none.
 */
NamedProperty namedProperty(const std::vector<const PI::CObject*>& objects, std::string_view name);

} // namespace Host::Cli
