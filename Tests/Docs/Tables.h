#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace DocsTest {

using Row = std::vector<std::string>;

/** A Markdown table. */
std::string table(const Row& titles, const std::vector<Row>& rows);

/** The catalogue's text of a number, or the number itself when there is no text. */
std::string catalogueText(std::uint32_t number);

/** A number and its text in the catalogue. */
std::string coded(std::uint32_t number);

// The tables of the properties of each kind of object, of the health for each warning, and of the events.

std::string adapterProperties();
std::string driveProperties();
std::string pluginProperties();
std::string healthTable();
std::string eventTable();

/** The table of the facts about a drive. */
std::string factTable();

/** The table of the kinds of entries in the journal. */
std::string journalTable();

} // namespace DocsTest
