"""The options and commands in the program's own help."""

import re

import stage

# Where descriptions begin in the help.
COLUMN = 24


def _entries(text, heading):
    """The left column below a heading, such as "--data DIR" or "list"."""
    _, _, rest = text.partition(f"\n{heading}:\n")
    block = rest.split("\n\n")[0].splitlines()
    lines = [line for line in block if line[2:3].strip()]
    return [(line[:COLUMN] if line[COLUMN - 1:COLUMN].isspace() else line).strip() for line in lines]


class Usage:
    """
    The commands, each with its name and arguments ("show OBJECT [PROPERTY]"), and the options of all of them, as
    the help has them ("-h,--help", "--data DIR").
    """

    def __init__(self):
        general = stage.ostrel("--help")
        self.commands = {}
        self.general = set(_entries(general, "Options"))
        self.options = set(self.general)
        self.own = {}
        for command in _entries(general, "Commands"):
            # A monitoring system must not take the help of "check" for a verdict, so its exit code is not 0.
            text = stage.attempt(stage.root / "usr/bin/ostrel", command, "--help").stdout
            self.own[command] = set(_entries(text, "Options"))
            self.options |= self.own[command]
            (line,) = re.findall(r"^Usage: ostrel (.*)$", text, re.MULTILINE)
            self.commands[command] = line.replace(" [OPTIONS]", "")
        if not self.commands or len(self.options) < len(self.commands):
            raise AssertionError(f"the help was not understood:\n{general}")

    def option_names(self, command=None):
        """Each name alone, such as "--data" and "-h": the general ones, and those of the command."""
        options = self.general | self.own.get(command, set())
        return {name for option in options for name in option.split(" ")[0].split(",")}
