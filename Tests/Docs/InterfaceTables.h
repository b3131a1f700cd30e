#pragma once

#include <map>
#include <string>

namespace DocsTest {

/**
 * The tables of Docs/Interfaces.md as Markdown, by their names in that file. The code's behaviour is their
 * source.
 */
std::map<std::string, std::string> interfaceTables();

/** What the table of facts makes of the schema Docs/Schemas/<schema>.json, by the names of its definitions.
 */
std::map<std::string, std::string> schemaMembers(const std::string& schema);

} // namespace DocsTest
