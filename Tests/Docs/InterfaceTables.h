#pragma once

#include <map>
#include <string>

namespace DocsTest {

/**
 * The tables of Docs/Interfaces.md as Markdown, by their names in that file. They are made from what the code
 * does.
 */
std::map<std::string, std::string> interfaceTables();

/** The tables of Docs/Metrics.md, likewise. */
std::map<std::string, std::string> metricTables();

/** The tables of Docs/Service.md, likewise. */
std::map<std::string, std::string> serviceTables();

/** The definitions in Docs/Schemas/<schema>.json that are made from the table of facts, by their names. */
std::map<std::string, std::string> schemaMembers(const std::string& schema);

} // namespace DocsTest
