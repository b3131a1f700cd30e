#pragma once

#include "Commands/Session.h"
#include "Plugins/ObjectStore.h"
#include "Terminal/Screen.h"

#include <string>

namespace Host::Cli {

/** Prints every object below its parent. Throws `Failure`. */
ExitCode topology(const Session& session);

/** The kind of an object, its name and its identifier. */
std::string headingText(const PI::CObject& object, const Screen& screen, std::size_t indent);

/**
 * The properties of `object`, each on a line after `indent` blanks, with aligned captions. A text above them
 * says which values were not measured.
 */
std::string propertiesText(const ObjectStore& store, const PI::CObject& object, const Screen& screen,
                           std::size_t indent);

/** Every object of `store`, with its properties and operations. */
std::string topologyText(const ObjectStore& store, const Screen& screen);

} // namespace Host::Cli
