#include <PI/Object.h>

namespace PI {

// Out of line, so that host and plug-ins share one virtual table and one type information.
CObject::CObject() = default;
CObject::CObject(const CObject&) = default;
CObject::CObject(CObject&&) noexcept = default;
CObject& CObject::operator=(const CObject&) = default;
CObject& CObject::operator=(CObject&&) noexcept = default;
CObject::~CObject() = default;

} // namespace PI
