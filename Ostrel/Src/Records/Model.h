#pragma once

#include <string>
#include <string_view>

namespace NAMESPACE_Ostrel {

/** Whether a model number is of the families whose temperature belongs to the adapter, not to the drive. */
bool IsKnownModelFamily(std::string_view model);

/**
 * The model number without the maker's name in front, as properties show it.
 * Throws `std::out_of_range` for a model number that ends with the maker's name.
 */
std::string modelText(std::string_view vendor, std::string_view model);

/** The model number without a maker's name in front, whoever the maker is, as rows of the database hold it.
 */
std::string rowModelText(std::string_view model);

} // namespace NAMESPACE_Ostrel
