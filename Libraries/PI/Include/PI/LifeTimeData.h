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
 * The endurance table, with longer texts before shorter ones that they contain. Reads it once from the folder
 * given to `SetLifeTimeFolder`. A file that cannot be read or is damaged gives an empty table, and the next
 * call tries again; `readLifeTimeData` says what is wrong with it. A table stays valid until the process
 * ends, even when another folder is set. Safe from any thread.
 */
PI_EXPORT const std::vector<CNVMeLifeTimeData>& GetLifeTimeDataNVMe();

/**
 * The first family in `table` whose text is part of `model`. Only the first `m_Characters` characters of the
 * text count. Null when there is none.
 */
PI_EXPORT const CNVMeLifeTimeData* findLifeTimeData(const std::vector<CNVMeLifeTimeData>& table,
                                                    std::string_view model);

/** Sets the folder that holds "Endurance.txt". The host calls it before it loads plug-ins. */
PI_EXPORT void SetLifeTimeFolder(std::filesystem::path folder);

/**
 * Reads an endurance table. A line has a model text, a '|' and the rating in terabytes (10^12 bytes) written.
 * Empty lines and lines that begin with '#' are skipped. Throws `std::runtime_error` with the file and the
 * line for anything else. A rating must be a whole number and at least 2 TiB (3 TB). A text must not come
 * after a shorter one that it contains. Also throws when the file cannot be read.
 */
PI_EXPORT std::vector<CNVMeLifeTimeData> readLifeTimeData(const std::filesystem::path& file);

} // namespace PI
