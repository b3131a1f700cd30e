#include "Commands/ShowCommand.h"

#include "Base/Failure.h"
#include "Base/Suggestion.h"
#include "Base/Text.h"
#include "Commands/ServiceCommands.h"
#include "Commands/TopologyCommand.h"
#include "Documents/ShowJson.h"
#include "Facts/EndOfLife.h"
#include "Facts/Explanation.h"
#include "Facts/FactTable.h"
#include "Facts/PropertySetting.h"
#include "Facts/PropertyText.h"
#include "Terminal/Captions.h"
#include "Terminal/Paragraph.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <variant>

namespace Host::Cli {
namespace {

constexpr std::size_t MARGIN = 2;

/** A heading and its paragraph. */
std::string section(const std::string& heading, const std::string& text, const Screen& screen)
{
    return std::string(MARGIN, ' ') + paragraph(heading, MARGIN, screen, Tone::Heading) +
           std::string(2 * MARGIN, ' ') + paragraph(text, 2 * MARGIN, screen);
}

/** A fact as text for people. Empty when it is not known. */
struct FactToText
{
    std::string_view m_Unit;

    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(std::uint64_t number) const
    {
        constexpr unsigned mebibyte = 20;
        const bool isSize = m_Unit == "bytes" && number >> mebibyte != 0;
        return isSize ? sizeText(number >> mebibyte) : withUnit(std::to_string(number));
    }
    std::string operator()(std::int32_t number) const { return withUnit(std::to_string(number)); }
    std::string operator()(float number) const { return withUnit(numberText(static_cast<double>(number))); }
    /** Facts from the drive or the system have no other type. */
    template<typename Other>
    std::string operator()(const Other& /*value*/) const
    {
        return {};
    }

private:
    std::string withUnit(const std::string& number) const
    {
        const std::string_view gap = m_Unit.empty() || m_Unit == "%" ? "" : " ";
        return number + std::string(gap) + std::string(m_Unit);
    }
};

/** The facts about `drive` from these `origins`, below a heading. Empty when none of them is known. */
std::string factsText(const char* heading, std::initializer_list<FactOrigin> origins, const Drive& drive,
                      const Screen& screen)
{
    std::vector<CaptionedValue> values;
    for (const Fact& fact : facts())
        if (std::find(origins.begin(), origins.end(), fact.m_Source.m_Origin) != origins.end())
            values.push_back({fact.m_Caption, std::visit(FactToText{fact.m_Unit}, fact.m_Value(drive))});
    const std::string text = captionsText(values, screen, 2 * MARGIN);
    return text.empty()
               ? text
               : '\n' + std::string(MARGIN, ' ') + paragraph(heading, MARGIN, screen, Tone::Heading) + text;
}

std::string ownFactsText(const ObjectStore& store, const PI::CObject& object, const Screen& screen)
{
    const std::optional<Drive> drive = driveOf(store, object);
    if (!drive)
        return {};
    return factsText("From the drive's own log", {FactOrigin::HealthLog, FactOrigin::Identify}, *drive,
                     screen) +
           factsText("From the system", {FactOrigin::System}, *drive, screen);
}

std::string explanationText(const ObjectStore& store, const PI::CObject& object, const Screen& screen)
{
    std::string text;
    for (const ExplainedCode& each : explainedCodes(store, object))
        text += section(printable(captionText(*each.m_Property) + ": " + each.m_Text),
                        std::string(each.m_Meaning) + " " + each.m_Advice, screen);
    const std::optional<Drive> drive = driveOf(store, object);
    if (const auto end = drive ? explainEndOfLife(*drive) : std::nullopt)
        text += section("Estimated end of life: " + end->m_Date, endOfLifeText(*end), screen);
    return text.empty() ? text : '\n' + text;
}

void showProperty(const Session& session, const ObjectStore& store,
                  const std::vector<const PI::CObject*>& objects, const std::string& name)
{
    if (session.m_Options.m_Json)
        return session.print(showPropertyJson(store, objects, name));
    const auto [object, property] = namedProperty(objects, name);
    const Basis basis = basisOf(store, object, property);
    if (basis != Basis::Measured)
        session.m_Terminal.tell(printable(captionText(property)) + " is not measured: " +
                                (basis == Basis::NotRead ? "the health log of this drive was not read."
                                                         : "the plug-in shows the same for other drives."));
    session.print(printable(valueText(property)) + '\n');
}

ExitCode showHere(const Session& session)
{
    const Inventory inventory(session);
    const ObjectStore& store = inventory.objects();
    const std::vector<const PI::CObject*> objects = session.namedObjects(store);
    if (session.m_Options.m_Property)
        showProperty(session, store, objects, *session.m_Options.m_Property);
    else if (session.m_Options.m_Json)
        session.print(showJson(store, objects));
    else
        session.print(showText(store, objects, session.m_Terminal.screen()));
    return ExitCode::Done;
}

} // namespace

ExitCode show(const Session& session)
{
    return hereOrThroughService(
        session.m_Options, [&] { return showHere(session); },
        [&](const RunningService& service) {
            return showThroughService(service, session.m_Options, session.m_Terminal);
        });
}

std::string showText(const ObjectStore& store, const std::vector<const PI::CObject*>& objects,
                     const Screen& screen)
{
    std::string text;
    for (const PI::CObject* object : objects)
        text += (text.empty() ? "" : "\n") + headingText(*object, screen, 0) +
                propertiesText(store, *object, screen, MARGIN) + ownFactsText(store, *object, screen) +
                explanationText(store, *object, screen);
    return text;
}

} // namespace Host::Cli
