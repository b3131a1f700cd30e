#pragma once

#include "BusyPolicy.h"

namespace Database {

/**
 * The name of an SQLite file system that differs from the system's own only in its pauses. Where SQLite
 * itself waits for another process's lock on the log, it waits no longer than the thread's policy allows.
 * Null when memory is short; SQLite then uses its default.
 */
const char* patientVfs();

/** Applies a policy to SQLite's own pauses on this thread for the lifetime of this object. */
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
