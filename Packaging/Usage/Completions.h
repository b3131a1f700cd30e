#pragma once

#include "Commands/CommandLine.h"

#include <string>

/** The completions for a shell, made from the description of the command line. */
std::string bashCompletions(const Host::Cli::Usage& usage);
std::string fishCompletions(const Host::Cli::Usage& usage);
std::string zshCompletions(const Host::Cli::Usage& usage);
