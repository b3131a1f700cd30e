#pragma once

#include <map>
#include <string>

namespace DocsTest {

/**
 * The tables of Docs/Interfaces.md as Markdown, by their names in that file. The code's behaviour is their
 * source.
 */
std::map<std::string, std::string> interfaceTables();

} // namespace DocsTest
