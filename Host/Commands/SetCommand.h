#pragma once

#include "Commands/Session.h"
#include "Plugins/ObjectStore.h"
#include "Plugins/PluginLibrary.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace Host::Cli {

/**
 * Changes a property of an object and prints its new value. The plug-ins start no worker, and no row is kept.
 * Throws `Failure`.
 */
ExitCode set(const Session& session);

/**
 * Changes a property of an object and returns it with its new value. The plug-in keeps the value within its
 * bounds. Throws `Failure`: wrong usage when the value has the wrong form, a failed request when the property
 * cannot be set. If the file `settings` is the reason, the message says what is wrong with it.
 */
PI::CProperty setProperty(PluginLibrary& plugin, const PI::CObject& object, const PI::CProperty& property,
                          std::string_view value, const std::filesystem::path& settings);

/** The value that a property has now. If it is not the one that was asked for, the reason. */
std::string setText(const PI::CProperty& property, std::string_view value);

} // namespace Host::Cli
