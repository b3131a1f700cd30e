#pragma once

#include "Commands/Session.h"
#include "Plugins/ObjectStore.h"
#include "Plugins/PluginLibrary.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace Host::Cli {

/**
 * Gives a property of an object another value, and prints what it is then. The plug-ins do not start to
 * watch, and no row is kept. Throws `Failure`.
 */
ExitCode set(const Session& session);

/**
 * Gives a property of an object another value and returns it as it is then; the plug-in keeps it within its
 * bounds. Throws `Failure`: wrong usage for what is no such value, a failed request for a property that
 * cannot be set, which says what is wrong with the file `settings` where that is the reason.
 */
PI::CProperty setProperty(PluginLibrary& plugin, const PI::CObject& object, const PI::CProperty& property,
                          std::string_view value, const std::filesystem::path& settings);

/** What a property is now, and why it is not what was asked for. */
std::string setText(const PI::CProperty& property, std::string_view value);

} // namespace Host::Cli
