#pragma once

#include <PI/Object.h>
#include <TLXX/Diagnosis.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Host {

/** The property of `object` with this identifier; null when it has none. */
const PI::CProperty* findProperty(const PI::CObject& object, std::uint32_t propertyId);

/** The text of a text property; empty when there is no such property or it is of another kind. */
std::string textOf(const PI::CObject& object, std::uint32_t propertyId);

/** A device's path without the folder that all devices share: "nvme0n1", "PhysicalDrive2". */
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
    /** Without `controllers`, adapters are where the plug-in shows them. */
    explicit ObjectStore(std::vector<PI::CObject> objects,
                         std::vector<TLXX::CControllerState> controllers = {});

    const std::vector<PI::CObject>& objects() const { return m_Objects; }

    const std::vector<TLXX::CControllerState>& controllers() const { return m_Controllers; }

    /** The controller that has the disk of `adapter`; null when the system knows none. */
    const TLXX::CControllerState* controllerOf(const PI::CObject& adapter) const;

    /**
     * Where `adapter` really is; none when nobody knows. The system tells it. Only of an adapter that the
     * system does not know, the plug-in's word is taken: it leaves segments out and goes by number.
     */
    std::optional<TLXX::CPciLocation> addressOf(const PI::CObject& adapter) const;

    /** Null when there is no such object. */
    const PI::CObject* byId(std::uint64_t id) const;

    /** The children that are there, in order. */
    std::vector<const PI::CObject*> childrenOf(const PI::CObject& object) const;

    /** The objects that no other one names as its child, in order. */
    std::vector<const PI::CObject*> roots() const;

    /**
     * The objects that go by `name`: one when it is an identifier, a location, or "plugin"; an adapter and
     * its drives, or another object and its children, when it is a serial number, a device or a PCI address.
     * Throws `Failure`, listing what there
     * is: no such object when nothing goes by that name, wrong usage when more than one adapter does.
     */
    std::vector<const PI::CObject*> named(std::string_view name) const;

private:
    std::vector<const PI::CObject*> namedExactly(std::string_view name) const;
    std::vector<const PI::CObject*> namedByPlace(std::string_view name) const;
    std::vector<std::string> names() const;
    std::string listing() const;

    std::vector<PI::CObject> m_Objects;
    std::vector<TLXX::CControllerState> m_Controllers;
    std::unordered_map<std::uint64_t, std::size_t>
        m_Places; ///< by identifier, the first object's in m_Objects
};

} // namespace Host
