#pragma once

#include <TLXX/Linux/Sysfs.h>

#include <filesystem>
#include <string>

namespace TLXXTest {

/** The recorded tree of this name. */
std::filesystem::path recordedSysfs(const std::string& name);

/** Lets the process read another sysfs while it lives. */
class CSysfsScope
{
public:
    explicit CSysfsScope(const std::filesystem::path& root);
    ~CSysfsScope();
    CSysfsScope(const CSysfsScope&) = delete;
    CSysfsScope& operator=(const CSysfsScope&) = delete;

private:
    std::filesystem::path m_Former;
};

/** A tree that a test writes and changes. It is removed with the test. */
class CTemporarySysfs
{
public:
    CTemporarySysfs();
    ~CTemporarySysfs();
    CTemporarySysfs(const CTemporarySysfs&) = delete;
    CTemporarySysfs& operator=(const CTemporarySysfs&) = delete;

    const std::filesystem::path& Root() const { return m_Root; }

    /** Writes an attribute below the folder of all controllers, such as "nvme0/transport". */
    void Attribute(const std::string& path, const std::string& value) const;
    /** A PCI Express controller with one namespace of identifier 1. */
    void Controller(std::uint32_t instance, const std::string& address) const;
    void Remove(std::uint32_t instance) const;
    /** Removes what sysfs tells of the controller, but not the controller. */
    void Empty(std::uint32_t instance) const;
    /** Renames a controller's folder, so that another one can have its name. */
    void Rename(const std::string& from, const std::string& to) const;

private:
    std::filesystem::path m_Root;
};

} // namespace TLXXTest
