#include "Text.h"

#include <PI/LifeTimeData.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <list>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace PI {

namespace {

constexpr const char* FILE_NAME = "Endurance.txt";

// 1 TiB would read as "unrated" wherever a rating is used.
constexpr std::uint64_t LOWEST_RATING = 2;

struct Tables
{
    std::mutex m_Lock;
    std::filesystem::path m_Folder;
    // Callers hold references without a lock, so a table is never removed.
    std::list<std::vector<CNVMeLifeTimeData>> m_Read;
    bool m_Current = false;
};

Tables& tables()
{
    // Never destroyed: a plug-in's worker may still hold a table while the process ends.
    static Tables& instance = *new Tables;
    return instance;
}

/**
 * Converts terabytes to tebibytes by the ratio 5^12 to 2^28. It works in two halves, because the product can
 * exceed 64 bits.
 */
std::uint64_t tebibytes(std::uint64_t terabytes)
{
    constexpr std::uint64_t FACTOR = 244140625;
    constexpr unsigned SHIFT = 28;
    constexpr std::uint64_t LOW = (std::uint64_t{1} << SHIFT) - 1;
    return (terabytes >> SHIFT) * FACTOR + (((terabytes & LOW) * FACTOR) >> SHIFT);
}

CNVMeLifeTimeData parseRow(std::string_view line)
{
    const auto separator = line.find('|');
    if (separator == std::string_view::npos) {
        throw std::runtime_error("no '|' between model and rating");
    }
    const auto model = trim(line.substr(0, separator));
    const auto rating = trim(line.substr(separator + 1));
    if (model.empty()) {
        throw std::runtime_error("no model text");
    }
    std::uint64_t terabytes = 0;
    const auto [end, error] = std::from_chars(rating.data(), rating.data() + rating.size(), terabytes);
    if (error != std::errc() || end != rating.data() + rating.size()) {
        throw std::runtime_error("the rating is no whole number of terabytes");
    }
    const auto endurance = tebibytes(terabytes);
    if (endurance < LOWEST_RATING) {
        throw std::runtime_error("the rating is below 3 terabytes");
    }
    return {std::string(model), model.size(), endurance};
}

void append(std::vector<CNVMeLifeTimeData>& table, CNVMeLifeTimeData row)
{
    const auto hides = [&row](const CNVMeLifeTimeData& earlier) {
        return row.m_Model.find(earlier.m_Model) != std::string::npos;
    };
    const auto earlier = std::find_if(table.begin(), table.end(), hides);
    if (earlier != table.end()) {
        throw std::runtime_error("'" + row.m_Model + "' comes after '" + earlier->m_Model +
                                 "', which it contains");
    }
    table.push_back(std::move(row));
}

} // namespace

std::vector<CNVMeLifeTimeData> readLifeTimeData(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::vector<CNVMeLifeTimeData> table;
    std::string line;
    std::size_t number = 0;
    try {
        while (std::getline(stream, line)) {
            ++number;
            const auto text = trim(line);
            if (!text.empty() && text.front() != '#') {
                append(table, parseRow(text));
            }
        }
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(file.string() + ":" + std::to_string(number) + ": " + error.what());
    }
    if (!stream.eof()) {
        throw std::runtime_error(file.string() + ": cannot be read");
    }
    return table;
}

const std::vector<CNVMeLifeTimeData>& GetLifeTimeDataNVMe()
{
    auto& all = tables();
    const std::lock_guard guard(all.m_Lock);
    if (!all.m_Current) {
        try {
            all.m_Read.push_back(readLifeTimeData(all.m_Folder / FILE_NAME));
        } catch (const std::runtime_error&) {
            // Drives can be shown without a rating. `readLifeTimeData` gives the reason to callers that need
            // it.
            static const auto& none = *new std::vector<CNVMeLifeTimeData>;
            return none;
        }
        all.m_Current = true;
    }
    return all.m_Read.back();
}

const CNVMeLifeTimeData* findLifeTimeData(const std::vector<CNVMeLifeTimeData>& table, std::string_view model)
{
    const auto family = std::find_if(table.begin(), table.end(), [&](const CNVMeLifeTimeData& row) {
        const std::string_view key = std::string_view(row.m_Model).substr(0, row.m_Characters);
        return model.find(key) != std::string_view::npos;
    });
    return family == table.end() ? nullptr : &*family;
}

void SetLifeTimeFolder(std::filesystem::path folder)
{
    auto& all = tables();
    const std::lock_guard guard(all.m_Lock);
    all.m_Folder = std::move(folder);
    all.m_Current = false;
}

} // namespace PI
