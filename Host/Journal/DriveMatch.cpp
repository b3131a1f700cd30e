#include "Journal/DriveMatch.h"

#include <map>
#include <utility>

namespace Host::Journal {
namespace {

/**
 * A key made from a location says where a drive is, but not which drive it is. So this compares the drives.
 */
bool mayBeSame(const DriveState& former, const Cli::ObservedDrive& drive)
{
    return former.m_Drive.m_Serial == drive.m_Serial &&
           (!drive.m_Serial.empty() || former.m_Drive.m_Model == drive.m_Model);
}

class Matching
{
public:
    Matching(const std::vector<DriveState>& former, const std::vector<Cli::ObservedDrive>& drives)
        : m_Former(former), m_Drives(drives), m_Claimed(former.size()), m_Found(drives.size())
    {}

    /**
     * Matches each drive that has no partner yet with the first free former drive of the same name. Empty
     * names do not match.
     */
    template<typename NameOf>
    void by(NameOf nameOf)
    {
        std::multimap<std::string, std::size_t> free;
        for (std::size_t i = 0; i < m_Former.size(); ++i)
            if (const std::string name = nameOf(m_Former[i]); !m_Claimed[i] && !name.empty())
                free.emplace(name, i);
        for (std::size_t i = 0; i < m_Drives.size(); ++i) {
            if (m_Found[i])
                continue;
            const auto [first, last] = free.equal_range(nameOf(m_Drives[i]));
            for (auto candidate = first; candidate != last; ++candidate)
                if (mayBeSame(m_Former[candidate->second], m_Drives[i])) {
                    m_Found[i] = candidate->second;
                    m_Claimed[candidate->second] = true;
                    free.erase(candidate);
                    break;
                }
        }
    }

    std::vector<std::optional<std::size_t>> found() && { return std::move(m_Found); }

private:
    const std::vector<DriveState>& m_Former;
    const std::vector<Cli::ObservedDrive>& m_Drives;
    std::vector<bool> m_Claimed;
    std::vector<std::optional<std::size_t>> m_Found;
};

struct ByKey
{
    template<typename Drive>
    std::string operator()(const Drive& drive) const
    {
        return drive.m_Key;
    }
};

struct ByPlace
{
    std::string operator()(const DriveState& drive) const { return drive.m_Drive.m_PciAddress; }
    std::string operator()(const Cli::ObservedDrive& drive) const { return drive.m_PciAddress; }
};

} // namespace

std::vector<std::optional<std::size_t>> matchDrives(const std::vector<DriveState>& former,
                                                    const std::vector<Cli::ObservedDrive>& drives)
{
    Matching matching(former, drives);
    matching.by(ByKey());
    matching.by(ByPlace());
    return std::move(matching).found();
}

} // namespace Host::Journal
