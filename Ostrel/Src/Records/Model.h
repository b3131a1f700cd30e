#pragma once

#include <string>
#include <string_view>

namespace NAMESPACE_Ostrel {

/**
 * Whether a model belongs to a known family. There the adapter shows the temperature, elsewhere the drive
 * does.
 */
bool IsKnownModelFamily(std::string_view model);

/**
 * The model number without the maker's name at its start, as properties show it. Throws `std::out_of_range`
 * for a model number that ends with the maker's name.
 */
std::string modelText(std::string_view vendor, std::string_view model);

/** The model number without any maker's name at its start, as rows of the database have it. */
std::string rowModelText(std::string_view model);

} // namespace NAMESPACE_Ostrel
