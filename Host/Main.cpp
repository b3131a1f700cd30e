#include "Cli/Program.h"

#include <string>
#include <vector>

int main(int argc, char** argv)
{
    return Host::Cli::run(std::vector<std::string>(argv, argv + argc));
}
