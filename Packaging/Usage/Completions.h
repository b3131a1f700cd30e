#pragma once

#include "Commands/CommandLine.h"

#include <string>

/** The completions of a shell for what the command line takes. */
std::string bashCompletions(const Host::Cli::Usage& usage);
std::string fishCompletions(const Host::Cli::Usage& usage);
std::string zshCompletions(const Host::Cli::Usage& usage);
