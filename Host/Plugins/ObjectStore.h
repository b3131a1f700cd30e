#pragma once

#include "Drives/DriveAnswer.h"

#include <PI/Object.h>
#include <TLXX/Diagnosis.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Host {

/** The property of `object` with this identifier, or null. */
const PI::CProperty* findProperty(const PI::CObject& object, std::uint32_t propertyId);

/** The value of a text property. Empty when there is no such property or its value is no text. */
std::string textOf(const PI::CObject& object, std::uint32_t propertyId);

/** A device's path without the folder that is the same for all devices: "nvme0n1", "PhysicalDrive2". */
std::string_view shortDeviceName(std::string_view device);

/** An identifier as people read and type it: "0x" and 16 hexadecimal digits. */
std::string identifierText(std::uint64_t id);

/**
 * The objects that a plug-in answered, in its order, and what the system says of their controllers.
 * References hold as long as the store.
 */
class ObjectStore
{
public:
    /** Without `controllers`, the addresses that the plug-in shows are used. */
    explicit ObjectStore(std::vector<PI::CObject> objects,
                         std::vector<TLXX::CControllerState> controllers = {},
                         std::vector<DriveAnswer> answers = {});

    /** The objects of `former`, which both share from now on, with other controllers and answers. */
    ObjectStore(const ObjectStore& former, std::vector<TLXX::CControllerState> controllers,
                std::vector<DriveAnswer> answers);

    const std::vector<PI::CObject>& objects() const { return m_Shown->m_Objects; }

    const std::vector<TLXX::CControllerState>& controllers() const { return m_Controllers; }

    /** Which drives answered in the last round, those that no object shows included. */
    const std::vector<DriveAnswer>& answers() const { return m_Answers; }

    /** Whether the drive of `adapter` answered; null when it was in no round. */
    const DriveAnswer* answerOf(const PI::CObject& adapter) const;

    /** The controller of the disk of `adapter`, or null when the system does not know it. */
    const TLXX::CControllerState* controllerOf(const PI::CObject& adapter) const;

    /**
     * The real location of `adapter`, or nothing when it is not known. The system tells it. If the system
     * does not know the adapter, the plug-in's location is used. That one has no segment and may be numbered.
     */
    std::optional<TLXX::CPciLocation> addressOf(const PI::CObject& adapter) const;

    /** Null when there is no such object. */
    const PI::CObject* byId(std::uint64_t id) const;

    /** The children that exist, in order. */
    std::vector<const PI::CObject*> childrenOf(const PI::CObject& object) const;

    /** The objects that are not a child of another object, in order. */
    std::vector<const PI::CObject*> roots() const;

    /**
     * The objects called `name`. An identifier, a location or "plugin" is the name of one object. A serial
     * number, a device or a PCI address is the name of an adapter and its drives, or of another object and
     * its children. Throws `Failure` with a list of what exists: no such object when nothing has that name,
     * wrong usage when several adapters have it.
     */
    std::vector<const PI::CObject*> named(std::string_view name) const;

private:
    /** What a plug-in showed. It never changes, so stores and threads share it. */
    struct Shown
    {
        explicit Shown(std::vector<PI::CObject> objects);

        const std::vector<PI::CObject> m_Objects;
        std::unordered_map<std::uint64_t, std::size_t> m_Places; ///< of the first object with an identifier
    };

    ObjectStore(std::vector<TLXX::CControllerState> controllers, std::vector<DriveAnswer> answers,
                std::shared_ptr<const Shown> shown);

    std::vector<const PI::CObject*> namedExactly(std::string_view name) const;
    std::vector<const PI::CObject*> namedByPlace(std::string_view name) const;
    std::vector<std::string> names() const;
    std::string listing() const;

    /** By short device name in small letters, the place of the first element with it. */
    using DevicePlaces = std::unordered_map<std::string, std::size_t>;

    std::shared_ptr<const Shown> m_Shown; ///< never null
    std::vector<TLXX::CControllerState> m_Controllers;
    std::vector<DriveAnswer> m_Answers;
    DevicePlaces m_ControllerPlaces;
    DevicePlaces m_AnswerPlaces;
};

} // namespace Host
