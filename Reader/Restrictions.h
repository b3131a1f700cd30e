#pragma once

namespace Reader {

/**
 * Takes away for good what this process does not need. It keeps only the capability CAP_SYS_ADMIN and the
 * system calls of a short list, and gets no new privileges by running a file. Called while the process has a
 * single thread. Throws `std::system_error` when the system refuses, because then the process must end.
 */
void restrictProcess();

} // namespace Reader
