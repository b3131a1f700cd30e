#include "Base/Platform.h"
#include "Commands/Program.h"

int main(int argc, char** argv)
{
    return Host::Cli::run(Host::Platform::commandLine(argc, argv));
}
