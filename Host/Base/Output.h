#pragma once

#include <string_view>

namespace Host {

/** Where the program writes text, for example a terminal, a pipe or a file. */
class Output
{
public:
    virtual ~Output() = default;

    /** Writes the whole text. Waits while the output accepts no more. Throws when it cannot write. */
    virtual void write(std::string_view text) = 0;

    virtual bool isTerminal() const = 0;
    /** The number of columns of the terminal, or 80 when the terminal does not tell it. */
    virtual unsigned terminalWidth() const = 0;
    /** Whether the terminal understands escape sequences for colours. */
    virtual bool showsColours() const = 0;
};

} // namespace Host
