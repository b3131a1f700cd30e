#include "Plugins/ObjectStore.h"

#include "Base/Failure.h"
#include "Base/Suggestion.h"
#include "Base/Text.h"
#include "Plugins/AdapterIdentities.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <utility>

namespace Host {
namespace {

/** A PCI address, written as `lspci` does. Without a segment it fits this place in any segment. */
struct Address
{
    explicit Address(std::string_view name) : m_Location(TLXX::CPciLocation::Parse(name))
    {
        if (m_Location)
            return;
        m_Location = TLXX::CPciLocation::Parse("0:" + std::string(name));
        m_AnySegment = true;
    }

    bool is(std::optional<TLXX::CPciLocation> location) const
    {
        if (!m_Location || !location)
            return false;
        if (m_AnySegment)
            location->m_Segment = 0;
        return *location == *m_Location;
    }

    std::optional<TLXX::CPciLocation> m_Location;
    bool m_AnySegment = false;
};

bool goesBySerialOrDevice(const PI::CObject& object, std::string_view name)
{
    const std::string serial = textOf(object, PI::PROP_SERIAL_NUMBER);
    const std::string device = textOf(object, PI::PROP_DEVICE_NAME);
    return (!serial.empty() && equalIgnoringCase(serial, name)) ||
           (!device.empty() && equalIgnoringCase(shortDeviceName(device), shortDeviceName(name)));
}

std::string indexName(std::string_view device)
{
    return inSmallLetters(shortDeviceName(device));
}

template<typename Element>
std::unordered_map<std::string, std::size_t> placesOf(const std::vector<Element>& elements)
{
    std::unordered_map<std::string, std::size_t> places;
    places.reserve(elements.size());
    for (std::size_t place = 0; place < elements.size(); ++place)
        if (const std::string& device = elements[place].m_DeviceName; !device.empty())
            places.emplace(indexName(device), place);
    return places;
}

/** Any plug-in is called "plugin". Its own name tells it from others. */
bool isPluginNamed(const PI::CObject& object, std::string_view name)
{
    const std::string own = textOf(object, PI::PROP_NAME);
    return object.m_Type == PI::TYPE_PLUGIN &&
           (equalIgnoringCase(name, "plugin") || (!own.empty() && equalIgnoringCase(name, own)));
}

} // namespace

const PI::CProperty* findProperty(const PI::CObject& object, std::uint32_t propertyId)
{
    const auto found =
        std::find_if(object.m_Properties.begin(), object.m_Properties.end(),
                     [&](const PI::CProperty& property) { return property.Id() == propertyId; });
    return found == object.m_Properties.end() ? nullptr : &*found;
}

std::string textOf(const PI::CObject& object, std::uint32_t propertyId)
{
    const PI::CProperty* property = findProperty(object, propertyId);
    const std::string* text = property != nullptr ? std::get_if<std::string>(&property->GetValue()) : nullptr;
    return text != nullptr ? *text : std::string();
}

std::string_view shortDeviceName(std::string_view device)
{
    // Plug-ins remove the backslashes from Windows paths, but the point between them stays.
    for (const std::string_view folder : {"/dev/", "\\\\.\\", "."})
        if (device.substr(0, folder.size()) == folder)
            return device.substr(folder.size());
    return device;
}

std::string identifierText(std::uint64_t id)
{
    constexpr std::size_t digits = 16;
    char buffer[digits];
    char* const end = std::to_chars(buffer, buffer + digits, id, 16).ptr;
    const std::string text(buffer, end);
    return "0x" + std::string(digits - text.size(), '0') + text;
}

ObjectStore::Shown::Shown(std::vector<PI::CObject> objects) : m_Objects(std::move(objects))
{
    m_Places.reserve(m_Objects.size());
    for (std::size_t place = 0; place < m_Objects.size(); ++place)
        m_Places.emplace(m_Objects[place].m_ID, place);
}

ObjectStore::ObjectStore(std::vector<PI::CObject> objects, std::vector<TLXX::CControllerState> controllers,
                         std::vector<DriveAnswer> answers)
    : ObjectStore(std::move(controllers), std::move(answers),
                  std::make_shared<const Shown>(std::move(objects)))
{}

ObjectStore::ObjectStore(const ObjectStore& former, std::vector<TLXX::CControllerState> controllers,
                         std::vector<DriveAnswer> answers)
    : ObjectStore(std::move(controllers), std::move(answers), former.m_Shown)
{}

ObjectStore::ObjectStore(std::vector<TLXX::CControllerState> controllers, std::vector<DriveAnswer> answers,
                         std::shared_ptr<const Shown> shown)
    : m_Shown(std::move(shown)),
      m_Controllers(std::move(controllers)),
      m_Answers(std::move(answers)),
      m_ControllerPlaces(placesOf(m_Controllers)),
      m_AnswerPlaces(placesOf(m_Answers))
{}

const PI::CObject* ObjectStore::byId(std::uint64_t id) const
{
    const auto found = m_Shown->m_Places.find(id);
    return found == m_Shown->m_Places.end() ? nullptr : &objects()[found->second];
}

const TLXX::CControllerState* ObjectStore::controllerOf(const PI::CObject& adapter) const
{
    const auto found = m_ControllerPlaces.find(indexName(textOf(adapter, PI::PROP_DEVICE_NAME)));
    return found == m_ControllerPlaces.end() ? nullptr : &m_Controllers[found->second];
}

const DriveAnswer* ObjectStore::answerOf(const PI::CObject& adapter) const
{
    const auto found = m_AnswerPlaces.find(indexName(textOf(adapter, PI::PROP_DEVICE_NAME)));
    if (found == m_AnswerPlaces.end())
        return nullptr;
    const DriveAnswer& answer = m_Answers[found->second];
    const std::string serial = textOf(adapter, PI::PROP_SERIAL_NUMBER);
    // The plug-in may still show the drive that was at this device before.
    const bool isAnother =
        !serial.empty() && !answer.m_SerialNumber.empty() && serial != answer.m_SerialNumber;
    return isAnother ? nullptr : &answer;
}

std::optional<TLXX::CPciLocation> ObjectStore::addressOf(const PI::CObject& adapter) const
{
    if (const TLXX::CControllerState* controller = controllerOf(adapter))
        return controller->m_Location;
    const std::optional<TLXX::CPciLocation> shown = pciLocation(adapter);
    // A location that was not found is all zeros. No drive has that location.
    return shown == TLXX::CPciLocation{} ? std::nullopt : shown;
}

std::vector<const PI::CObject*> ObjectStore::childrenOf(const PI::CObject& object) const
{
    std::vector<const PI::CObject*> children;
    for (const std::uint64_t id : object.m_Children)
        if (const PI::CObject* child = byId(id))
            children.push_back(child);
    return children;
}

std::vector<const PI::CObject*> ObjectStore::roots() const
{
    std::set<std::uint64_t> children;
    for (const PI::CObject& object : objects())
        children.insert(object.m_Children.begin(), object.m_Children.end());
    std::vector<const PI::CObject*> roots;
    for (const PI::CObject& object : objects())
        if (!children.contains(object.m_ID))
            roots.push_back(&object);
    return roots;
}

std::vector<const PI::CObject*> ObjectStore::named(std::string_view name) const
{
    if (std::vector<const PI::CObject*> exact = namedExactly(name); !exact.empty())
        return exact;

    std::vector<const PI::CObject*> matches = namedByPlace(name);
    if (matches.empty())
        throw Failure(ExitCode::NoSuchObject, "There is no object \"" + printable(name) + "\"." +
                                                  didYouMean(name, names()) + " These exist:\n" + listing());
    if (matches.size() > 1)
        throw Failure(ExitCode::WrongUsage, "More than one object has the name \"" + printable(name) +
                                                "\"; use its identifier. These exist:\n" + listing());
    const std::vector<const PI::CObject*> children = childrenOf(*matches.front());
    matches.insert(matches.end(), children.begin(), children.end());
    return matches;
}

std::vector<const PI::CObject*> ObjectStore::namedByPlace(std::string_view name) const
{
    const Address address(name);
    std::vector<const PI::CObject*> matches;
    std::set<std::uint64_t> children;
    for (const PI::CObject& object : objects())
        if (goesBySerialOrDevice(object, name) ||
            (object.m_Type == PI::TYPE_ADAPTER && address.is(addressOf(object)))) {
            matches.push_back(&object);
            children.insert(object.m_Children.begin(), object.m_Children.end());
        }
    // A drive and its adapter have the same serial number, so it names both.
    std::erase_if(matches, [&](const PI::CObject* object) { return children.contains(object->m_ID); });
    return matches;
}

std::vector<const PI::CObject*> ObjectStore::namedExactly(std::string_view name) const
{
    const std::optional<std::uint64_t> id = parseHexadecimal(name);
    for (const PI::CObject& object : objects()) {
        const std::string location = textOf(object, PI::PROP_LOCATION);
        if ((id && object.m_ID == *id) || (!location.empty() && equalIgnoringCase(location, name)) ||
            isPluginNamed(object, name))
            return {&object};
    }
    return {};
}

std::vector<std::string> ObjectStore::names() const
{
    std::vector<std::string> names = {"plugin"};
    for (const PI::CObject& object : objects()) {
        names.emplace_back(shortDeviceName(textOf(object, PI::PROP_DEVICE_NAME)));
        names.push_back(textOf(object, PI::PROP_SERIAL_NUMBER));
        names.push_back(textOf(object, PI::PROP_LOCATION));
        names.push_back(identifierText(object.m_ID));
    }
    return names;
}

std::string ObjectStore::listing() const
{
    std::string text;
    for (const PI::CObject& object : objects()) {
        text += "  " + identifierText(object.m_ID);
        for (const std::uint32_t id : {PI::PROP_DEVICE_NAME, PI::PROP_SERIAL_NUMBER, PI::PROP_LOCATION})
            if (const std::string part = textOf(object, id); !part.empty())
                text += "  " + printable(part);
        text += '\n';
    }
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

} // namespace Host
