#include <TLXX/DriveSource.h>

namespace TLXX {

IDriveSource::~IDriveSource() = default;

} // namespace TLXX
