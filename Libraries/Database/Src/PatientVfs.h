#pragma once

#include "BusyPolicy.h"

namespace Database {

/**
 * The name of an SQLite file system that is the system's own, but for its pauses: where SQLite waits by
 * itself for another process's lock on the log, it waits no longer than the thread's policy allows. Null when
 * there is no memory for it; SQLite then takes its usual one.
 */
const char* patientVfs();

/** Puts a policy in force for SQLite's own pauses on this thread, until it goes. */
class CPolicyInForce
{
public:
    explicit CPolicyInForce(CBusyPolicy& policy);
    ~CPolicyInForce();
    CPolicyInForce(const CPolicyInForce&) = delete;
    CPolicyInForce& operator=(const CPolicyInForce&) = delete;

private:
    CBusyPolicy* const m_Former;
};

} // namespace Database
