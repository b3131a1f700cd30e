#include "Commands/TopologyCommand.h"

#include "Base/Text.h"
#include "Documents/Json.h"
#include "Facts/Measured.h"
#include "Facts/PropertyText.h"
#include "Facts/Silence.h"
#include "Terminal/Captions.h"
#include "Terminal/Paragraph.h"

#include <PI/PluginHelper.h>
#include <TLX/Clock.h>

#include <nlohmann/json.hpp>

#include <set>

namespace Host::Cli {
namespace {

constexpr std::size_t STEP = 2;

/**
 * The display name. Before the host has handed out identities adapters have none. Then it is maker and model.
 */
std::string nameOf(const PI::CObject& object)
{
    if (std::string name = textOf(object, PI::PROP_NAME); !name.empty())
        return name;
    const std::string vendor = textOf(object, PI::PROP_VENDOR);
    const std::string model = textOf(object, PI::PROP_MODEL);
    return vendor + (vendor.empty() || model.empty() ? "" : " ") + model;
}

std::string operationText(const PI::COperation& operation)
{
    const std::string id = std::to_string(operation.Id());
    const std::string name = PI::PropertyValueToString(operation.Id());
    return name == id ? id : id + " " + printable(name);
}

std::string operationsText(const PI::CObject& object, std::size_t indent)
{
    std::string ids;
    for (const PI::COperation& operation : object.m_Operations)
        ids += (ids.empty() ? "" : ", ") + operationText(operation);
    return ids.empty() ? ids : std::string(indent, ' ') + "Operations: " + ids + '\n';
}

/**
 * Prints an object and those below it. An object that was printed before is not printed again, even if the
 * lists of children name it again.
 */
class Tree
{
public:
    Tree(const ObjectStore& store, const Screen& screen) : m_Store(store), m_Screen(screen) {}

    std::string branch(const PI::CObject& object, std::size_t indent)
    {
        if (!m_Shown.insert(&object).second)
            return {};
        std::string text = headingText(object, m_Screen, indent) +
                           propertiesText(m_Store, object, m_Screen, indent + STEP) +
                           operationsText(object, indent + STEP);
        for (const PI::CObject* child : m_Store.childrenOf(object))
            text += branch(*child, indent + STEP);
        return text;
    }

private:
    const ObjectStore& m_Store;
    const Screen& m_Screen;
    std::set<const PI::CObject*> m_Shown;
};

} // namespace

ExitCode topology(const Session& session)
{
    const Inventory inventory(session);
    const ObjectStore& store = inventory.objects();
    if (!session.m_Options.m_Json) {
        session.print(topologyText(store, session.m_Terminal.screen()));
        return ExitCode::Done;
    }
    nlohmann::ordered_json document = {{"objects", nlohmann::ordered_json::array()}};
    for (const PI::CObject& object : store.objects())
        document["objects"].push_back(objectJson(store, object));
    if (nlohmann::ordered_json unheard = unheardJson(store); !unheard.empty())
        document["unheardDrives"] = std::move(unheard);
    session.print(document);
    return ExitCode::Done;
}

std::string headingText(const PI::CObject& object, const Screen& screen, std::size_t indent)
{
    const std::string name = nameOf(object);
    const std::string heading =
        printable(PI::PropertyValueToString(object.m_Type) + (name.empty() ? "" : " " + name));
    const std::string id = identifierText(object.m_ID);
    const std::string margin(indent, ' ');
    const bool fits =
        !screen.m_Width || indent + displayWidth(heading) + STEP + displayWidth(id) <= *screen.m_Width;
    return margin +
           (fits ? toned(screen, Tone::Heading, heading) + std::string(STEP, ' ')
                 : paragraph(heading, indent, screen, Tone::Heading) + margin) +
           toned(screen, Tone::Faint, id) + '\n';
}

std::string propertiesText(const ObjectStore& store, const PI::CObject& object, const Screen& screen,
                           std::size_t indent)
{
    std::string text;
    for (const std::string& caveat : caveatsOf(store, object))
        text += std::string(indent, ' ') + paragraph(caveat, indent, screen, Tone::Warning);
    std::vector<CaptionedValue> values;
    for (const PI::CProperty& property : object.m_Properties) {
        std::string value = valueText(property);
        const bool measured = basisOf(store, object, property) == Basis::Measured;
        if (!measured && !value.empty())
            value += NOT_MEASURED;
        const auto* code = std::get_if<PI::CCodeValue>(&property.GetValue());
        values.push_back({captionText(property), value,
                          measured && code != nullptr ? toneOfCode(code->m_Code) : Tone::Plain});
    }
    return text + captionsText(values, screen, indent);
}

std::string topologyText(const ObjectStore& store, const Screen& screen)
{
    Tree tree(store, screen);
    std::string text;
    for (const PI::CObject* root : store.roots())
        text += tree.branch(*root, 0);
    // Objects that name one another as children in a circle have no root.
    for (const PI::CObject& object : store.objects())
        text += tree.branch(object, 0);
    for (const Drive& drive : joinDrives(store))
        if (!drive.m_AdapterId)
            text += toned(screen, Tone::Heading, printable(subjectText(drive))) + '\n' +
                    std::string(STEP, ' ') +
                    paragraph(unheardText(drive, TLX::Misc::now()), STEP, screen, Tone::Warning);
    return text;
}

} // namespace Host::Cli
