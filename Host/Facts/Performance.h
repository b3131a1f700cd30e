#pragma once

#include "Facts/Drives.h"

#include <optional>
#include <string>
#include <vector>

namespace Host::Cli {

/** A figure of a drive as monitoring systems draw it. Numbers are decimal texts. */
struct PerformanceFigure
{
    std::string m_Fact; ///< its key in the table of facts
    std::string m_Value;
    std::string m_Unit;         ///< "C", "%", "B", "c" (a counter), or empty
    std::string m_Warning;      ///< the drive's own limit; empty: none
    std::string m_Critical;     ///< likewise
    bool m_AlertsBelow = false; ///< whether the limits are the least good values, not the greatest
};

/** The figures of `drive` that are known. A drive that does not answer has none: its last ones are old. */
std::vector<PerformanceFigure> performanceOf(const Drive& drive);

/**
 * Performance data of one drive by the convention of monitoring systems, a label for each figure: `key`, an
 * underscore and the fact.
 */
std::string performanceText(const std::string& key, const std::vector<PerformanceFigure>& figures);

/** `text` as one line, without the characters to which monitoring systems give a meaning. */
std::string monitoringText(const std::string& text);

} // namespace Host::Cli
