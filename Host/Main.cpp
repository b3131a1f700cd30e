#include "Cli/Program.h"
#include "Core/Platform.h"

int main(int argc, char** argv)
{
    return Host::Cli::run(Host::Platform::commandLine(argc, argv));
}
