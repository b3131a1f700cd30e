/**
 * What simulated controllers cost the plug-in:
 * - an enumeration, which asks no drive;
 * - a scan of the drives' answers;
 * - the merge of a scan without changes;
 * - a topology request;
 * - a request for one property of the last drive.
 *
 * "ns/drive" is the cost for each drive. "growth" compares it with the cost in a fleet of ten, so 1 means a
 * cost in proportion to the number of drives. A property request concerns one drive only, so there "growth"
 * compares the whole request with that in a fleet of ten.
 */
#include "Results.h"
#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"

#include <PI/PropertyId.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Adapters = std::vector<NAMESPACE_Ostrel::CNVMeAdapter>;
using Drives = std::vector<NAMESPACE_Ostrel::CNVMePhysicalDrive>;

constexpr int SMALLEST = 10;

/**
 * A running plug-in with a published fleet. Its start is left out, because it inserts every drive's row for
 * every adapter.
 */
class CFleet
{
public:
    explicit CFleet(std::uint32_t count)
    {
        for (std::uint32_t number = 0; number < count; ++number) {
            TestSupport::CFakeDrive drive(number);
            // Segments do not count in locations, so each drive has a bus, device and function of its own.
            drive.m_Location = TLXX::CPciLocation{0, static_cast<std::int32_t>(number / 256),
                                                  static_cast<std::int32_t>(number / 8 % 32),
                                                  static_cast<std::int32_t>(number % 8)};
            m_Fakes.Add(std::move(drive));
        }
        (void)m_Plugin.m_DataLock.Init();
        (void)m_Plugin.m_EventsLock.Init();
        m_Plugin.m_Plugin.m_ID = 1;
        TakeAnswers();
        Merge(true);
        Merge(false);
        Enumerate(); // so that no measurement pays for the first use of the memory
    }

    /** Into a list of its own, so that the plug-in keeps what its drives have answered. */
    void Enumerate() { m_Enumerated.scan(); }

    void Scan(bool initial = false)
    {
        const TLX::Threading::CScopedGuard guard(m_Plugin.m_DataLock);
        m_Plugin.ScanSystem(m_Adapters, m_Drives, initial);
    }

    void Update()
    {
        const TLX::Threading::CScopedGuard guard(m_Plugin.m_DataLock);
        m_Plugin.UpdateSystem(m_Adapters, m_Drives);
    }

    void Topology()
    {
        std::vector<PI::CObject> objects;
        m_Plugin.GetTopology(objects);
        benchmark::DoNotOptimize(objects.data());
    }

    void Property()
    {
        PI::CRequestData data = PI::CProperty(PI::PROP_SERIAL_NUMBER, false);
        if (m_Plugin.Request(PI::REQUEST_GET_PROPERTY, LastDrive(), data) != 0)
            throw std::runtime_error("the last drive has no serial number");
    }

private:
    /** Sets the answers of the drives in the plug-in, because the cost of answering belongs to the drives. */
    void TakeAnswers()
    {
        m_Plugin.m_NVMeDevices.scan();
        std::size_t number = 0;
        for (NAMESPACE_Ostrel::NVMeDevice& device : m_Plugin.m_NVMeDevices) {
            const TestSupport::CFakeDrive& drive = m_Fakes.At(number++);
            device.identifyController = drive.m_Controller;
            device.identifyNamespace = drive.m_Namespace;
            device.smartHealthLog = drive.m_Health;
        }
    }

    void Merge(bool initial)
    {
        Scan(initial);
        Update();
    }

    std::uint64_t LastDrive()
    {
        const TLX::Threading::CScopedGuard guard(m_Plugin.m_DataLock);
        return m_Plugin.m_PhysicalDrives.back().m_ID;
    }

    TestSupport::CFakeDrives m_Fakes;
    TestSupport::CPluginUnderTest m_Plugin;
    NAMESPACE_Ostrel::NVMeDevices m_Enumerated;
    Adapters m_Adapters;
    Drives m_Drives;
};

/** The fleet of one size, kept until another size is asked for. */
CFleet& fleetOf(std::uint32_t count)
{
    static std::unique_ptr<CFleet> fleet;
    static std::uint32_t size = 0;
    if (size != count) {
        fleet.reset();
        fleet = std::make_unique<CFleet>(count);
        size = count;
    }
    return *fleet;
}

using Step = void (*)(CFleet&);

void measure(benchmark::State& state, const std::string& name, Step prepare, Step step, bool oneDrive)
{
    static std::map<std::string, double> smallest;
    const auto count = static_cast<std::uint32_t>(state.range(0));
    CFleet& fleet = fleetOf(count);
    double seconds = 0;
    for (auto _ : state) {
        prepare(fleet);
        const double taken = Benchmarks::secondsOf([&] { step(fleet); });
        state.SetIterationTime(taken);
        seconds += taken;
    }
    const double each = seconds / static_cast<double>(state.iterations()) / (oneDrive ? 1 : count);
    if (count == SMALLEST)
        smallest[name] = each;
    state.counters[oneDrive ? "ns" : "ns/drive"] = each * 1e9;
    state.counters["growth"] = each / smallest.at(name);
}

void registerStep(int count, const std::string& name, Step prepare, Step step, bool oneDrive = false)
{
    benchmark::RegisterBenchmark(name.c_str(), measure, name, prepare, step, oneDrive)
        ->Arg(count)
        ->UseManualTime()
        ->MinTime(0.2)
        ->Unit(benchmark::kMicrosecond);
}

} // namespace

int main(int argc, char** argv)
{
    const Step nothing = [](CFleet&) {};
    for (const int count : {SMALLEST, 100, 1000, 10000}) {
        registerStep(count, "enumeration", nothing, [](CFleet& fleet) { fleet.Enumerate(); });
        registerStep(count, "scan", nothing, [](CFleet& fleet) { fleet.Scan(); });
        registerStep(
            count, "merge", [](CFleet& fleet) { fleet.Scan(); }, [](CFleet& fleet) { fleet.Update(); });
        registerStep(count, "topology", nothing, [](CFleet& fleet) { fleet.Topology(); });
        registerStep(
            count, "property", nothing, [](CFleet& fleet) { fleet.Property(); }, true);
    }
    return Benchmarks::run(argc, argv);
}
