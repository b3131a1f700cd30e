#pragma once

namespace Reader {

/**
 * Takes away for good what this process does not need: every capability except CAP_SYS_ADMIN, new privileges
 * by running a file, and every system call that is not in a short list. Called while the process has a single
 * thread. Throws `std::system_error` when the system refuses, because then the process must end.
 */
void restrictProcess();

} // namespace Reader
