#include "QuerySession.h"

#include "NvmeStatus.h"

#include <utility>

namespace TLXX {
namespace {

thread_local CQuerySession::Native* t_Innermost = nullptr;

} // namespace

CQuerySession::Native::Native(std::string path)
    : m_Path(std::move(path)), m_Outer(std::exchange(t_Innermost, this))
{}

Platform::CDisk& CQuerySession::Native::Disk()
{
    if (!m_Disk || m_Disk->Status() != STATUS_SUCCESS)
        m_Disk.emplace(m_Path);
    return *m_Disk;
}

CQuerySession::CQuerySession(std::string path) : m_Native(std::make_unique<Native>(std::move(path))) {}

CQuerySession::~CQuerySession()
{
    t_Innermost = m_Native->m_Outer;
}

CQuerySession::Native* sessionOf(const std::string& path)
{
    return t_Innermost != nullptr && t_Innermost->m_Path == path ? t_Innermost : nullptr;
}

} // namespace TLXX
