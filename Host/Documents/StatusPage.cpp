#include "Documents/StatusPage.h"

#include "Base/PercentCode.h"
#include "Base/Text.h"
#include "Base/Time.h"
#include "Facts/DriveEvent.h"
#include "Facts/FactTable.h"
#include "Facts/PropertyText.h"
#include "Facts/ServiceVerdict.h"
#include "Facts/Silence.h"

#include <PI/Property.h>

#include <array>
#include <optional>

namespace Host::Cli {
namespace {

/** `text` between tags or quotes, fit to be shown. */
std::string html(std::string_view text)
{
    std::string result;
    for (const char character : printable(text))
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += character;
        }
    return result;
}

std::string link(const std::string& path, std::string_view text)
{
    return "<a href=\"" + path + "\">" + html(text) + "</a>";
}

std::string timeElement(std::uint64_t time)
{
    return "<time datetime=\"" + utcText(time) + "\">" + localTimeText(time) + "</time>";
}

std::string classOf(Verdict verdict)
{
    constexpr std::array names = {"ok", "warning", "critical", "unknown"};
    return names.at(static_cast<std::size_t>(verdict));
}

template<typename Number>
std::string amountText(const std::optional<Number>& number, std::uint32_t unit)
{
    return number ? withUnit(numberText(static_cast<double>(*number)), unit) : "";
}

std::string stateText(const DriveCheck& check)
{
    const bool wasHealthy = isSilent(*check.m_Drive) && check.m_Drive->m_Health;
    return check.m_Judgement.m_Reason +
           (wasHealthy ? "; its health was: " + check.m_Drive->m_Health->m_Text : "");
}

/** A column of the table of drives. It is headed as in `list`. */
struct Column
{
    const char* m_Fact;
    std::string (*m_Text)(const Drive& drive);
};

constexpr std::array<Column, 6> COLUMNS = {{
    {"model", [](const Drive& drive) { return drive.m_Model; }},
    {"serial", [](const Drive& drive) { return drive.m_Serial; }},
    {"firmware", [](const Drive& drive) { return drive.m_Firmware; }},
    {"capacityMiB",
     [](const Drive& drive) { return drive.m_CapacityMiB ? sizeText(*drive.m_CapacityMiB) : ""; }},
    {"temperature", [](const Drive& drive) { return amountText(drive.m_Temperature, PI::UNIT_CELSIUS); }},
    {"wear", [](const Drive& drive) { return amountText(drive.m_Wear, PI::UNIT_PERCENT); }},
}};

std::string heading(const char* fact)
{
    return factOf(fact).heading();
}

std::string cell(const std::string& column, const std::string& content)
{
    return "<td data-column=\"" + html(column) + "\">" + (content.empty() ? "-" : content) + "</td>";
}

std::string driveRow(const DriveCheck& check)
{
    const std::string device(shortDeviceName(check.m_Drive->m_Device));
    std::string row = isSilent(*check.m_Drive) ? "<tr class=\"silent\">" : "<tr>";
    row += cell(heading("device"),
                link("/api/v1/drives/" + percentEncoded(check.m_Key), device.empty() ? check.m_Key : device));
    for (const Column& column : COLUMNS)
        row += cell(heading(column.m_Fact), html(column.m_Text(*check.m_Drive)));
    return row +
           cell(heading("health"), "<span class=\"" + classOf(check.m_Judgement.m_Verdict) + "\">" +
                                       html(stateText(check)) + "</span>") +
           "</tr>\n";
}

std::string headRow()
{
    std::string row = "<tr><th scope=\"col\">" + html(heading("device")) + "</th>";
    for (const Column& column : COLUMNS)
        row += "<th scope=\"col\">" + html(heading(column.m_Fact)) + "</th>";
    return row + "<th scope=\"col\">" + html(heading("health")) + "</th></tr>\n";
}

std::string driveSection(const std::vector<DriveCheck>& drives)
{
    std::string section = "<section>\n<h2>Drives</h2>\n";
    if (drives.empty())
        return section + "<p>None.</p>\n</section>\n";
    section += "<table class=\"drives\">\n<thead>\n" + headRow() + "</thead>\n<tbody>\n";
    for (const DriveCheck& check : drives)
        section += driveRow(check);
    return section + "</tbody>\n</table>\n</section>\n";
}

std::string classOf(Journal::Severity severity)
{
    switch (severity) {
    case Journal::Severity::Warning:
        return classOf(Verdict::Warning);
    case Journal::Severity::Error:
        return classOf(Verdict::Critical);
    default:
        return "information";
    }
}

std::string entryRow(const Journal::NumberedEntry& numbered)
{
    const Journal::Entry& entry = numbered.m_Entry;
    return "<tr><td>" + timeElement(entry.m_End) + "</td><td class=\"" + classOf(entry.m_Severity) + "\">" +
           html(severityText(static_cast<std::uint32_t>(entry.m_Severity))) + "</td><td>" +
           html(entry.m_Text) + "</td></tr>\n";
}

/** The newest entry comes first. */
std::string journalSection(const std::vector<Journal::NumberedEntry>& last)
{
    std::string section = "<section>\n<h2>Journal</h2>\n";
    if (last.empty())
        return section + "<p>No entries.</p>\n</section>\n";
    section += "<table class=\"journal\">\n<thead>\n<tr><th scope=\"col\">Time</th>"
               "<th scope=\"col\">Severity</th><th scope=\"col\">What happened</th></tr>\n"
               "</thead>\n<tbody>\n";
    for (auto entry = last.rbegin(); entry != last.rend(); ++entry)
        section += entryRow(*entry);
    return section + "</tbody>\n</table>\n</section>\n";
}

std::string footer(const Snapshot& snapshot, std::uint64_t now)
{
    const std::string read =
        snapshot.m_Round == 0 ? "" : " The drives were read at " + timeElement(snapshot.m_Time) + '.';
    return "<footer>\n<p>As of " + timeElement(now) + '.' + read + "</p>\n<nav><p>" +
           link("/metrics", "Metrics") + ", " + link("/api/v1/status", "status") + ", " +
           link("/api/v1/drives", "drives") + " and " + link("/api/v1/journal", "journal") + " as JSON, " +
           link("/api/v1/openapi.json", "description of the interface") + "</p></nav>\n<p>Ostrel " +
           OSTREL_VERSION + "</p>\n</footer>\n";
}

} // namespace

std::string statusPage(const Snapshot& snapshot, const ServiceFigures& figures,
                       const std::vector<Journal::NumberedEntry>& last, std::uint64_t now)
{
    const std::vector<DriveCheck> drives = checkDrives(snapshot, now);
    const Judgement judgement = judgeService(drives, snapshot, figures);
    const std::string verdict = verdictText(judgement.m_Verdict);
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
           verdict + " - Ostrel</title>\n<link rel=\"stylesheet\" href=\"" + std::string(STYLE_PATH) +
           "\">\n</head>\n<body>\n<header>\n<h1>Ostrel</h1>\n" +
           (figures.m_Simulated ? "<p>These drives are simulated.</p>\n" : "") +
           "</header>\n<main>\n<p class=\"verdict " + classOf(judgement.m_Verdict) + "\"><strong>" + verdict +
           "</strong>: " + html(judgement.m_Reason) + "</p>\n" + driveSection(drives) + journalSection(last) +
           "</main>\n" + footer(snapshot, now) + "</body>\n</html>\n";
}

} // namespace Host::Cli
