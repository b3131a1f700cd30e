#pragma once

#include <string_view>

namespace Host {

/** Where the program writes text: a terminal, a pipe, a file. */
class Output
{
public:
    virtual ~Output() = default;

    /** Writes everything, and waits where the output takes no more for now. Throws when it cannot. */
    virtual void write(std::string_view text) = 0;

    virtual bool isTerminal() const = 0;
    /** Columns of the terminal; 80 when it does not say. */
    virtual unsigned terminalWidth() const = 0;
    /** Whether the terminal understands the escape sequences of colours. */
    virtual bool showsColours() const = 0;
};

} // namespace Host
