#pragma once

#include <PI/Export.h>
#include <PI/Operation.h>
#include <PI/Property.h>

#include <cstdint>
#include <vector>

namespace PI {

/** The types of objects. */
enum _OBJECT_TYPE : std::uint32_t
{
    TYPE_PLUGIN = 19006,
    TYPE_PHYSICAL_DRIVE = 19018,
    TYPE_ADAPTER = 19038,
};

/** One object of the host's topology. Plug-ins derive their records from it; copies of this part travel to
 * the host. */
class PI_EXPORT CObject
{
public:
    CObject();
    CObject(const CObject&);
    CObject(CObject&&) noexcept;
    CObject& operator=(const CObject&);
    CObject& operator=(CObject&&) noexcept;
    virtual ~CObject();

    std::uint64_t m_ID = 0;
    std::uint32_t m_Type = 0; ///< an `_OBJECT_TYPE`
    std::vector<std::uint64_t> m_Parents;
    std::vector<std::uint64_t> m_Children;
    std::uint64_t m_UpdateCount = 0; ///< goes up with every change that a host should look at
    std::vector<CProperty> m_Properties;
    std::vector<COperation> m_Operations;
};

} // namespace PI
