#pragma once

#include "Cli/Screen.h"

#include <PI/Object.h>

#include <string>
#include <string_view>
#include <vector>

namespace Host::Cli {

/** Headings and properties of the objects. */
std::string showText(const std::vector<const PI::CObject*>& objects, const Screen& screen);

/**
 * The property of the objects with this number or caption, case aside: the first that has a value, for an
 * adapter without a name must not hide that of its drive. Throws `Failure` (wrong usage),
 * listing what there is, when there is none.
 */
const PI::CProperty& namedProperty(const std::vector<const PI::CObject*>& objects, std::string_view name);

} // namespace Host::Cli
