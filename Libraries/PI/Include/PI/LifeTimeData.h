#pragma once

#include <PI/Export.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace PI {

/** How much may be written to the drives of one product family. */
struct CNVMeLifeTimeData
{
    std::string m_Model;       ///< text that the family's model numbers contain
    std::size_t m_Characters;  ///< how many of its characters count
    std::uint64_t m_Endurance; ///< rating in TiB, never 0
};

/**
 * The endurance table, longer texts before shorter ones that they contain. Read once from the folder given to
 * `SetLifeTimeFolder`; a file that cannot be read or is damaged gives an empty table (`readLifeTimeData` says
 * what is wrong with it) and is tried again by the next call. A table stays valid for good, also after
 * another folder is set. Safe from any thread.
 */
PI_EXPORT const std::vector<CNVMeLifeTimeData>& GetLifeTimeDataNVMe();

/** The first family in `table` that `model` belongs to: its text, as far as it counts, stands in it. Null
 * when there is none. */
PI_EXPORT const CNVMeLifeTimeData* findLifeTimeData(const std::vector<CNVMeLifeTimeData>& table,
                                                    std::string_view model);

/** Sets the folder that holds "Endurance.txt". The host calls it before it loads plug-ins. */
PI_EXPORT void SetLifeTimeFolder(std::filesystem::path folder);

/**
 * Reads an endurance table: lines of model text, a '|' and the rating in terabytes (10^12 bytes) written;
 * empty lines and '#' comments are passed over. Throws `std::runtime_error`, naming file and line, for
 * anything else: a file that cannot be read, a rating that is no number or below 2 TiB (3 TB), or a text that
 * stands behind a shorter one that it contains.
 */
PI_EXPORT std::vector<CNVMeLifeTimeData> readLifeTimeData(const std::filesystem::path& file);

} // namespace PI
