#include "Web/Routes.h"

#include "Documents/EntryJson.h"
#include "Documents/Json.h"
#include "Documents/Metrics.h"
#include "Documents/ServiceJson.h"
#include "Documents/ShowJson.h"
#include "Documents/StatusPage.h"
#include "Facts/NamedObjects.h"
#include "Web/JournalStream.h"
#include "Web/ObjectPath.h"
#include "Web/OpenApi.h"
#include "Web/Parameters.h"
#include "Web/Problem.h"
#include "Web/SetProperty.h"

#include <TLX/Clock.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

namespace Host::Web {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t USUAL_ENTRIES = 100;
constexpr std::size_t ENTRIES_ON_PAGE = 20;
constexpr Bounds ENTRIES = {1, 1000};
constexpr Bounds COLUMNS = {0, 10000};
constexpr Bounds NUMBERS = {0, std::numeric_limits<std::uint64_t>::max()};

/** A request on its way. */
struct Call
{
    IServiceView& m_View;
    const ShowText& m_ShowText;
    const Request& m_Request;
    std::string m_Rest; ///< of the path, after the route's own part
};

Response document(const Call& call, const Json& json)
{
    Response response;
    response.m_Type = "application/json";
    response.m_Body = Cli::documentText(json, call.m_View.figures().m_Simulated);
    return response;
}

Response text(std::string_view type, std::string content)
{
    Response response;
    response.m_Type = type;
    response.m_Body = std::move(content);
    return response;
}

/** What the drives answered last. Throws `Failure` if they have not been asked yet. */
std::shared_ptr<const Cli::Snapshot> readSnapshot(const IServiceView& view)
{
    std::shared_ptr<const Cli::Snapshot> snapshot = view.snapshot();
    if (snapshot->m_Round > 0)
        return snapshot;
    const std::string trouble = view.figures().m_Trouble;
    throw Failure(ExitCode::NoHardware, trouble.empty() ? "The drives have not been read yet." : trouble);
}

Response status(const Call& call)
{
    return document(call, Cli::statusJson(*call.m_View.snapshot(), call.m_View.figures(), TLX::Misc::now()));
}

Response drives(const Call& call)
{
    return document(call, Cli::drivesJson(*readSnapshot(call.m_View)));
}

Response drive(const Call& call)
{
    const auto snapshot = readSnapshot(call.m_View);
    const auto key = std::find(snapshot->m_Keys.begin(), snapshot->m_Keys.end(), call.m_Rest);
    if (key == snapshot->m_Keys.end())
        return problem(404, "No drive has the key \"" + call.m_Rest + "\".");
    const auto& found = snapshot->m_Drives.at(static_cast<std::size_t>(key - snapshot->m_Keys.begin()));
    return document(call, Cli::keyedDriveJson(*key, found));
}

/** Whether a text is asked for instead of a document, and its form. */
std::optional<TextForm> textForm(const Request& request)
{
    const auto columns = queryNumber(request, "columns", COLUMNS);
    const bool colours = queryNumber(request, "colours", {0, 1}).value_or(0) == 1;
    return columns ? std::optional(TextForm{static_cast<unsigned>(*columns), colours}) : std::nullopt;
}

Response object(const Call& call)
{
    const auto form = textForm(call.m_Request);
    const auto snapshot = readSnapshot(call.m_View);
    const ObjectStore& store = snapshot->m_Objects;
    const std::vector<const PI::CObject*> objects = Cli::namedObjects(store, call.m_Rest);
    return form ? text("text/plain; charset=utf-8", call.m_ShowText(store, objects, *form))
                : document(call, Cli::showJson(store, objects));
}

Response property(const Call& call)
{
    const PropertyName name = *propertyAt(call.m_Request.m_Path);
    const auto snapshot = readSnapshot(call.m_View);
    const ObjectStore& store = snapshot->m_Objects;
    return document(call,
                    Cli::showPropertyJson(store, Cli::namedObjects(store, name.m_Object), name.m_Property));
}

/** The journal cannot be read for a reason that may pass, so the status is another one than for other
 * failures. */
std::vector<Journal::NumberedEntry> read(const Call& call, std::uint64_t after, std::size_t limit)
{
    try {
        return entriesAfter(call.m_View, after, limit);
    } catch (const Failure& failure) {
        throw Failure(ExitCode::NoHardware, failure.what());
    }
}

Response journal(const Call& call)
{
    const std::uint64_t after = queryNumber(call.m_Request, "after", NUMBERS).value_or(0);
    const std::uint64_t limit = queryNumber(call.m_Request, "limit", ENTRIES).value_or(USUAL_ENTRIES);
    Json list = Json::array();
    for (const Journal::NumberedEntry& entry : read(call, after, limit))
        list.push_back(Cli::numberedEntryJson(entry));
    return document(call, {{"entries", std::move(list)}});
}

/** A client that comes back says which entry it had last. A new one gets what is new from now on. */
std::uint64_t streamBegin(const Call& call)
{
    const auto last = call.m_Request.m_Headers.find("last-event-id");
    if (last != call.m_Request.m_Headers.end() && !last->second.empty())
        return parameterNumber("Last-Event-ID", last->second, NUMBERS);
    const auto after = queryNumber(call.m_Request, "after", NUMBERS);
    return after ? *after : call.m_View.figures().m_LastEntry;
}

Response journalStream(const Call& call)
{
    const std::uint64_t after = streamBegin(call);
    (void)read(call, after, 1); // A stream can no longer tell why it fails.
    Response response;
    response.m_Type = "text/event-stream";
    response.m_Events = std::make_unique<JournalStream>(call.m_View, after);
    return response;
}

Response metrics(const Call& call)
{
    const auto accept = call.m_Request.m_Headers.find("accept");
    const Cli::MetricsFormat format =
        Cli::chosenFormat(accept == call.m_Request.m_Headers.end() ? std::string_view() : accept->second);
    return text(Cli::contentType(format),
                Cli::metricsText(*call.m_View.snapshot(), call.m_View.figures(), format));
}

/** The page shows what is known, also when the journal cannot be read. The page itself tells why not. */
std::vector<Journal::NumberedEntry> lastEntries(const IServiceView& view, std::uint64_t last)
{
    try {
        return view.journal(last - std::min<std::uint64_t>(last, ENTRIES_ON_PAGE), ENTRIES_ON_PAGE);
    } catch (const Failure&) {
        return {};
    }
}

Response page(const Call& call)
{
    const Cli::ServiceFigures figures = call.m_View.figures();
    return text("text/html; charset=utf-8",
                Cli::statusPage(*call.m_View.snapshot(), figures,
                                lastEntries(call.m_View, figures.m_LastEntry), TLX::Misc::now()));
}

Response description(const Call&)
{
    return text("application/json", std::string(openApi()));
}

Response style(const Call&)
{
    return text("text/css; charset=utf-8", std::string(Cli::statusStyle()));
}

/** A path, or what begins with it when it ends with a slash. */
struct Route
{
    std::string_view m_Path;
    std::array<std::string_view, 2> m_Parameters; ///< of the query
    Response (*m_Answer)(const Call&);
};

constexpr Route PROPERTY = {OBJECTS_PATH, {}, property};

constexpr std::array<Route, 10> ROUTES = {{
    {"/", {}, page},
    {Cli::STYLE_PATH, {}, style},
    {"/metrics", {}, metrics},
    {"/api/v1/status", {}, status},
    {"/api/v1/drives", {}, drives},
    {"/api/v1/drives/", {}, drive},
    {"/api/v1/journal", {"after", "limit"}, journal},
    {"/api/v1/journal/stream", {"after"}, journalStream},
    {OBJECTS_PATH, {"columns", "colours"}, object},
    {"/api/v1/openapi.json", {}, description},
}};

bool leadsTo(const Route& route, std::string_view path)
{
    const bool isPrefix = route.m_Path.size() > 1 && route.m_Path.ends_with('/');
    return isPrefix ? path.starts_with(route.m_Path) && path.size() > route.m_Path.size()
                    : path == route.m_Path;
}

Response notAllowed(const std::string& allowed)
{
    Response response = problem(405, "This path allows only " + allowed + ".");
    response.m_Headers.emplace_back("Allow", allowed);
    return response;
}

void checkParameters(const Route& route, const Request& request)
{
    for (const auto& [name, value] : request.m_Query)
        if (std::find(route.m_Parameters.begin(), route.m_Parameters.end(), name) ==
                route.m_Parameters.end() ||
            name.empty())
            throw WrongParameter(name, "This path has no parameter \"" + name + "\".");
}

const Route* routeOf(const std::string& path)
{
    if (propertyAt(path))
        return &PROPERTY;
    const auto* const found =
        std::find_if(ROUTES.begin(), ROUTES.end(), [&](const Route& each) { return leadsTo(each, path); });
    return found == ROUTES.end() ? nullptr : found;
}

Response answer(IServiceView& view, const ShowText& showText, const Request& request)
{
    const Route* const route = routeOf(request.m_Path);
    if (route == nullptr)
        return problem(404, "There is nothing at this path.");
    if (request.m_Method != "GET")
        return notAllowed(route == &PROPERTY ? "GET, HEAD, PUT" : "GET, HEAD");
    checkParameters(*route, request);
    return route->m_Answer({view, showText, request, request.m_Path.substr(route->m_Path.size())});
}

} // namespace

Handler routes(IServiceView& view, ShowText showText)
{
    return [&view, showText = std::move(showText)](const Request& request, const Respond& respond) {
        try {
            const auto name = propertyAt(request.m_Path);
            if (name && request.m_Method == "PUT")
                return setProperty(view, *name, request, respond);
            respond(answer(view, showText, request));
        } catch (const WrongParameter& wrong) {
            respond(problem(400, wrong.what(), wrong.name()));
        }
    };
}

} // namespace Host::Web
