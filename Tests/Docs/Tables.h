#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace DocsTest {

using Row = std::vector<std::string>;

/** A Markdown table. */
std::string table(const Row& titles, const std::vector<Row>& rows);

/** What the catalogue has for a number; the number itself where that is nothing. */
std::string catalogueText(std::uint32_t number);

/** A number and its text in the catalogue. */
std::string coded(std::uint32_t number);

// The tables of each kind of object's properties, of the health that warnings lead to, and of the events.

std::string adapterProperties();
std::string driveProperties();
std::string pluginProperties();
std::string healthTable();
std::string eventTable();

} // namespace DocsTest
