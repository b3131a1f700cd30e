#pragma once

#include "Commands/CommandLine.h"

namespace CLI {
class App;
}

namespace Host::Cli {

/** Adds all options and commands of the program to a parser, which puts their values into `options`. */
void addSyntax(CLI::App& app, Options& options);

} // namespace Host::Cli
