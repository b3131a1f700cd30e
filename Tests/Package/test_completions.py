"""The completions, asked by the shells themselves."""

import re
import unittest

import stage
from usage import Usage

# Keys work only after the line editor has started; before that the terminal takes Ctrl+U for "delete the line".
# Without a baud rate the editor shows a list at once and does not wait for a pause in the keys.
ZSH = r"""
zmodload zsh/zpty
zpty -b shell zsh -f -i
zpty -w shell "PS1=; BAUD=0; fpath=($1 \$fpath); autoload -U compinit; compinit -u -D
zle-line-init() { print RE''ADY }; zle -N zle-line-init"
zpty -r shell text '*READY*'
zpty -w -n shell "$2"$'\t\t\C-uprint EN""D\n'
zpty -r shell text '*END*'
print -r -- $text
"""


class Completions(unittest.TestCase):
    """Each shell offers the words of the help, and nothing else."""

    @classmethod
    def setUpClass(cls):
        cls.usage = Usage()
        cls.share = stage.root / "usr/share"

    def check(self, offered):
        self.assertEqual(offered("ostrel -"), self.usage.option_names())
        for command in self.usage.commands:
            self.assertEqual(offered(f"ostrel {command} -"), self.usage.option_names(command), command)
        self.assertEqual(offered("ostrel "), set(self.usage.commands))
        self.assertIn("plugin", offered("ostrel show "))
        self.assertNotIn("plugin", offered("ostrel list "))

    def test_bash(self):
        """bash"""
        def offered(line):
            script = ('source "$1"; COMP_WORDS=($2); [[ $2 != *" " ]] || COMP_WORDS+=("")\n'
                      'COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _ostrel; printf "%s\\n" "${COMPREPLY[@]}"')
            return set(stage.run("bash", "-c", script, "bash", self.share / "bash-completion/completions/ostrel",
                                 line).split())
        self.check(offered)

    def test_fish(self):
        """fish"""
        def offered(line):
            text = stage.run("fish", "--no-config", "--command", "source $argv[1]; complete --do-complete $argv[2]",
                             self.share / "fish/vendor_completions.d/ostrel.fish", line,
                             env={"HOME": str(stage.work), "PATH": "/usr/bin:/bin"})
            return {entry.split("\t")[0] for entry in text.splitlines()}
        self.check(offered)

    def test_zsh(self):
        """zsh"""
        def offered(line):
            text = stage.run("zsh", "-f", "-c", ZSH, "zsh", self.share / "zsh/vendor-completions", line)
            text = re.sub(r"\x1b\[[0-9;?]*[A-Za-z]|[\a\r]", lambda match: "\n" if match[0] == "\r" else "", text)
            listed = re.findall(r"^(\S.*?) +-- ", text, re.MULTILINE)
            # A choice without a description is listed alone, or completed at once if it is the only one.
            return {name for entry in listed for name in entry.split()} | set(re.findall(r"(?<!-)\bplugin\b", text))
        self.check(offered)
