#pragma once

#include <map>
#include <string>

namespace DocsTest {

/** The tables of Docs/Interfaces.md as Markdown, by their names there, made from what the code does. */
std::map<std::string, std::string> interfaceTables();

} // namespace DocsTest
