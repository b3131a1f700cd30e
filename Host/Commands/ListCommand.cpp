#include "Commands/ListCommand.h"

#include "Base/Text.h"
#include "Commands/ServiceCommands.h"
#include "Documents/Json.h"
#include "Facts/FactTable.h"
#include "Facts/PropertyText.h"
#include "Facts/Silence.h"
#include "Terminal/Paragraph.h"
#include "Terminal/Table.h"

#include <PI/PropertyId.h>
#include <TLX/Clock.h>

#include <nlohmann/json.hpp>

namespace Host::Cli {
namespace {

constexpr char UNKNOWN[] = "-";

Table newTable()
{
    // The least widths at which drives can still be told apart. The device's name is never shortened.
    return Table({{factOf("device").heading()},
                  {factOf("vendor").heading(), false, 0, 2},
                  {factOf("model").heading(), false, 10, 6},
                  {factOf("serial").heading(), false, 8},
                  {factOf("firmware").heading(), false, 0, 1},
                  {factOf("capacityMiB").heading(), true, 0, 5},
                  {factOf("temperature").heading(), true, 0, 4},
                  {factOf("wear").heading(), true, 0, 3},
                  {factOf("health").heading()}});
}

std::string orUnknown(const std::string& text)
{
    return text.empty() ? UNKNOWN : text;
}

template<typename Number>
std::string orUnknown(const std::optional<Number>& number, PI::_UNITS unit)
{
    return number ? withUnit(numberText(static_cast<double>(*number)), unit) : UNKNOWN;
}

std::string reasonsText(const Drive& drive)
{
    std::string text;
    for (const CodeText& reason : drive.m_Reasons)
        text += (text.empty() ? "" : "; ") + reason.m_Text;
    return text;
}

std::string healthText(const Drive& drive, bool withReasons)
{
    const std::string reasons = withReasons ? reasonsText(drive) : std::string();
    return drive.m_Health->m_Text + (reasons.empty() ? "" : ": " + reasons);
}

/** The health of a silent drive, as it was. */
std::string lastHealthText(const Drive& drive)
{
    return drive.m_Health ? "; its health was: " + healthText(drive, false) : "";
}

/** The remarks about a drive below the table, each a paragraph. */
std::string notesText(const std::string& device, const Drive& drive, const Screen& screen)
{
    std::vector<std::string> notes;
    if (isSilent(drive))
        notes.push_back(printable(silenceReason(*drive.m_Answer, TLX::Misc::now()) + lastHealthText(drive)));
    if (!drive.m_Reasons.empty())
        notes.push_back(printable(reasonsText(drive)));
    if (drive.m_HealthLogRead == false)
        notes.emplace_back("its health log was not read");
    if (drive.m_Place == ShownPlace::Another)
        notes.push_back("is at " + drive.m_PciAddress + ", but is shown at " + printable(drive.m_Location));
    const std::string head = device + ": ";
    std::string text;
    for (const std::string& note : notes)
        text += head + paragraph(note, displayWidth(head), screen);
    return text;
}

Cell healthCell(const Drive& drive, bool onTerminal)
{
    if (isSilent(drive) && onTerminal)
        return {"No answer", Tone::Bad};
    if (isSilent(drive))
        return {silenceText(*drive.m_Answer, TLX::Misc::now()) + lastHealthText(drive), Tone::Bad};
    if (!drive.m_Health)
        return {UNKNOWN};
    return {healthText(drive, !onTerminal),
            drive.m_Health->m_Code ? toneOfCode(*drive.m_Health->m_Code) : Tone::Plain};
}

ExitCode listHere(const Session& session)
{
    const Inventory inventory(session);
    if (session.m_Options.m_Json)
        session.print(listJson(inventory.objects()));
    else
        session.print(listText(joinDrives(inventory.objects()), session.m_Terminal.screen()));
    return ExitCode::Done;
}

} // namespace

ExitCode list(const Session& session)
{
    return hereOrThroughService(
        session.m_Options, [&] { return listHere(session); },
        [&](const RunningService& service) {
            // The texts of the units come with the plug-ins.
            PluginSet plugins;
            for (const std::filesystem::path& file : session.m_Plugins)
                plugins.load(file);
            return listThroughService(service, session.m_Options, session.m_Terminal);
        });
}

std::string listText(const std::vector<Drive>& drives, const Screen& screen)
{
    const bool terminal = screen.m_Width.has_value();
    Table table = newTable();
    std::string notes;
    for (const Drive& drive : drives) {
        const std::string device = orUnknown(std::string(shortDeviceName(drive.m_Device)));
        table.add({{device},
                   {orUnknown(drive.m_Vendor)},
                   {orUnknown(drive.m_Model)},
                   {orUnknown(drive.m_Serial)},
                   {orUnknown(drive.m_Firmware)},
                   {drive.m_CapacityMiB ? sizeText(*drive.m_CapacityMiB) : UNKNOWN},
                   {orUnknown(drive.m_Temperature, PI::UNIT_CELSIUS)},
                   {orUnknown(drive.m_Wear, PI::UNIT_PERCENT)},
                   healthCell(drive, terminal)});
        if (terminal)
            notes += notesText(printable(device), drive, screen);
    }
    return table.text(screen) + (notes.empty() ? "" : "\n" + notes);
}

} // namespace Host::Cli
